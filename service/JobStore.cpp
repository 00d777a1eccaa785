#include "service/JobStore.h"

#include "service/JobDocument.h"
#include "service/SqliteStatement.h"
#include "service/SqliteTransaction.h"
#include "service/StoreFile.h"
#include "service/UtcTime.h"

#include <chrono>

namespace job_service {

namespace {

constexpr const char* fileName = "jobs.sqlite";
constexpr unsigned countMask = 0x7fffffff;

int moved(int count, unsigned by)
{
    return static_cast<int>((static_cast<unsigned>(count) + by) & countMask);
}

/// Where the count of a new store begins. Not at nought: a client that has seen the store before this one
/// must not take the new one for the old.
int firstCount()
{
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch());
    return static_cast<int>(static_cast<unsigned long long>(seconds.count()) & countMask);
}

std::optional<std::string> queryOne(SqliteDatabase& database, const char* sql, std::string_view key)
{
    SqliteStatement statement(database, sql);
    if (!statement.bind(1, key).step())
        return std::nullopt;
    return statement.text(0);
}

std::string stateValue(SqliteDatabase& database, const char* name, const std::string& otherwise)
{
    return queryOne(database, "SELECT value FROM state WHERE name=?1", name).value_or(otherwise);
}

void storeState(SqliteDatabase& database, const char* name, std::string_view value)
{
    SqliteStatement(database, "INSERT INTO state VALUES(?1,?2) ON CONFLICT(name) DO UPDATE SET value=?2")
        .bind(1, name)
        .bind(2, value)
        .run();
}

bool insertJob(SqliteDatabase& database, const StoredJob& job)
{
    SqliteStatement insertion(database, "INSERT INTO job VALUES(?1,?2,?3) ON CONFLICT DO NOTHING");
    if (insertion.bind(1, job.id).bind(2, job.modifiedOn).bind(3, job.summary).run() == 0)
        return false;
    SqliteStatement(database, "INSERT INTO job_document VALUES(?1,?2)").bind(1, job.id).bind(2, job.document).run();
    return true;
}

void updateJob(SqliteDatabase& database, const StoredJob& job)
{
    SqliteStatement(database, "UPDATE job SET modified_on=?2, summary=?3 WHERE id=?1")
        .bind(1, job.id)
        .bind(2, job.modifiedOn)
        .bind(3, job.summary)
        .run();
    SqliteStatement(database, "UPDATE job_document SET text=?2 WHERE id=?1")
        .bind(1, job.id)
        .bind(2, job.document)
        .run();
}

std::optional<std::string> documentOf(SqliteDatabase& database, const std::string& id)
{
    return queryOne(database, "SELECT text FROM job_document WHERE id=?1", id);
}

bool hasJob(SqliteDatabase& database, const std::string& id)
{
    return queryOne(database, "SELECT id FROM job WHERE id=?1", id).has_value();
}

} // namespace

/// A transaction that moves the count. The count is published after the commit: who sees it move
/// sees the change.
class JobStore::CountedChange
{
public:
    explicit CountedChange(JobStore& store) : m_store(store), m_transaction(store.m_writer) { }

    void commit(unsigned steps = 1)
    {
        const int count = moved(m_store.changeCount(), steps);
        storeState(m_store.m_writer, "change_count", std::to_string(count));
        m_transaction.commit();
        m_store.m_changeCount.store(count, std::memory_order_release);
    }

private:
    JobStore& m_store;
    SqliteTransaction m_transaction;
};

JobStore::JobStore(const std::filesystem::path& folder) : JobStore(folder / fileName, openStoreFile(folder / fileName))
{
}

JobStore::JobStore(const std::filesystem::path& file, OpenedStore opened)
    : m_writer(std::move(opened.database))
    , m_reader(openStoreReader(file))
    , m_state{ opened.replaced ? StoreState::Kind::Replaced : StoreState::Kind::Ok, utcNow() }
{
    moveCountAtStart(opened.created);
}

JobStore::~JobStore()
{
    try {
        m_writer.queryInteger("PRAGMA wal_checkpoint(TRUNCATE)");
    } catch (const SqliteError&) {
        // What is committed is safe in the log beside the file, and goes into it at the next start.
    }
}

void JobStore::moveCountAtStart(bool created)
{
    SqliteTransaction transaction(m_writer);
    const int last = std::atoi(stateValue(m_writer, "change_count", "0").c_str());
    // A single step would look like a change that a client has asked for itself.
    const int count = created ? firstCount() : moved(last, 2);
    storeState(m_writer, "change_count", std::to_string(count));
    transaction.commit();
    m_changeCount.store(count, std::memory_order_release);
}

template <typename Operation> auto JobStore::read(Operation operation) const
{
    const std::lock_guard<std::mutex> lock(m_readMutex);
    try {
        return operation(m_reader);
    } catch (const SqliteError& error) {
        noteDamage(error);
        throw;
    }
}

template <typename Operation> auto JobStore::write(Operation operation)
{
    const std::lock_guard<std::mutex> lock(m_writeMutex);
    try {
        return operation(m_writer);
    } catch (const SqliteError& error) {
        noteDamage(error);
        throw;
    }
}

void JobStore::noteDamage(const SqliteError& error) const
{
    const std::lock_guard<std::mutex> lock(m_stateMutex);
    if (error.isDamage() && m_state.kind != StoreState::Kind::Damaged)
        m_state = { StoreState::Kind::Damaged, utcNow() };
}

StoreState JobStore::state() const
{
    const std::lock_guard<std::mutex> lock(m_stateMutex);
    return m_state;
}

std::string JobStore::jobList() const
{
    return read([](SqliteDatabase& database) {
        std::string list = "[";
        SqliteStatement statement(database, "SELECT summary FROM job ORDER BY modified_on DESC, id");
        while (statement.step()) {
            if (list.size() > 1)
                list += ',';
            list += statement.text(0);
        }
        return list + "]";
    });
}

std::optional<std::string> JobStore::document(const std::string& id) const
{
    return read([&](SqliteDatabase& database) { return documentOf(database, id); });
}

bool JobStore::createJob(const StoredJob& job)
{
    return write([&](SqliteDatabase& database) {
        CountedChange change(*this);
        if (!insertJob(database, job))
            return false;
        change.commit();
        return true;
    });
}

std::size_t JobStore::addJobs(const std::function<std::optional<StoredJob>()>& next,
    const std::function<void(const std::string& id)>& kept, const MayReplace& mayReplace)
{
    return write([&](SqliteDatabase& database) {
        CountedChange change(*this);
        std::size_t added = 0;
        while (const std::optional<StoredJob> job = next()) {
            if (insertJob(database, *job)) {
                ++added;
            } else if (mayReplace(documentOf(database, job->id).value(), *job)) {
                updateJob(database, *job);
                ++added;
            } else {
                kept(job->id);
            }
        }
        if (added > 0)
            change.commit();
        return added;
    });
}

JobStore::Change JobStore::changeJob(const std::string& id, const std::function<void(JsonTree& document)>& patch)
{
    return changeJobInSteps(id, [&patch](JsonTree& document) {
        patch(document);
        return 1u;
    });
}

JobStore::Change JobStore::changeJobInSteps(
    const std::string& id, const std::function<unsigned(JsonTree& document)>& patch)
{
    return write([&](SqliteDatabase& database) {
        CountedChange change(*this);
        const std::optional<std::string> text = documentOf(database, id);
        if (!text)
            return Change::NoSuchJob;
        JsonTree document = JsonTree::fromText(*text);
        const unsigned steps = patch(document);
        detailsOf(document).set("modifiedOn", JsonTree::fromString(utcNow()));
        updateJob(database, storedJob(document));
        change.commit(steps);
        return Change::Done;
    });
}

JobStore::Change JobStore::removeJob(const std::string& id)
{
    return write([&](SqliteDatabase& database) {
        CountedChange change(*this);
        if (SqliteStatement(database, "DELETE FROM job WHERE id=?1").bind(1, id).run() == 0)
            return Change::NoSuchJob;
        if (stateValue(database, "active_job", "") == id)
            storeState(database, "active_job", "");
        change.commit();
        return Change::Done;
    });
}

std::string JobStore::activeJob() const
{
    return read([](SqliteDatabase& database) { return stateValue(database, "active_job", ""); });
}

JobStore::Change JobStore::setActiveJob(const std::string& id)
{
    return write([&](SqliteDatabase& database) {
        CountedChange change(*this);
        if (!id.empty() && !hasJob(database, id))
            return Change::NoSuchJob;
        storeState(database, "active_job", id);
        change.commit();
        return Change::Done;
    });
}

std::map<std::string, std::string> JobStore::settings() const
{
    return read([](SqliteDatabase& database) {
        std::map<std::string, std::string> settings;
        SqliteStatement statement(database, "SELECT id, value FROM setting");
        while (statement.step())
            settings.emplace(statement.text(0), statement.text(1));
        return settings;
    });
}

void JobStore::writeSetting(const std::string& id, const std::string& value)
{
    write([&](SqliteDatabase& database) {
        SqliteStatement(database, "INSERT INTO setting VALUES(?1,?2) ON CONFLICT(id) DO UPDATE SET value=?2")
            .bind(1, id)
            .bind(2, value)
            .run();
    });
}

std::string JobStore::groupType() const
{
    return read([](SqliteDatabase& database) { return stateValue(database, "group_type", "job_order"); });
}

void JobStore::setGroupType(const std::string& groupType)
{
    write([&](SqliteDatabase& database) { storeState(database, "group_type", groupType); });
}

std::vector<std::string> JobStore::templateDocuments() const
{
    return read([](SqliteDatabase& database) {
        std::vector<std::string> documents;
        SqliteStatement statement(database, "SELECT document FROM template ORDER BY name");
        while (statement.step())
            documents.push_back(statement.text(0));
        return documents;
    });
}

std::optional<std::string> JobStore::templateDocument(const std::string& name) const
{
    return read([&](SqliteDatabase& database) {
        return queryOne(database, "SELECT document FROM template WHERE name=?1", name);
    });
}

void JobStore::putTemplate(const std::string& name, const std::string& document)
{
    write([&](SqliteDatabase& database) {
        SqliteStatement(database, "INSERT INTO template VALUES(?1,?2) ON CONFLICT(name) DO UPDATE SET document=?2")
            .bind(1, name)
            .bind(2, document)
            .run();
    });
}

} // namespace job_service
