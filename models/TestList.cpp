#include "models/TestList.h"

#include "api/Logging.h"
#include "models/TestGrouping.h"

#include <algorithm>
#include <iterator>
#include <QQmlEngine>
#include <QRegExp>
#include <QScopedValueRollback>
#include <utility>

namespace jobmanager_ui {

namespace {

/// What a test without a location has for one.
QString noLocation()
{
    return QStringLiteral("~");
}

} // namespace

TestList::TestList(std::shared_ptr<JobManagerAPIAbstraction> api, QString jobID, TestSubset testSubset)
    : m_api(std::move(api))
    , m_testSubset(testSubset)
    , m_jobID(std::move(jobID))
{
    // A member of its job and without a parent: never the JavaScript collector's.
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
}

int TestList::rowCount(const QModelIndex& /*parent*/) const
{
    return testsCount();
}

QVariant TestList::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= testsCount()) {
        return {};
    }
    const long long testID = m_testIDs[static_cast<std::size_t>(index.row())];
    if (role == JobID) {
        return m_jobID;
    }
    if (role == TestID) {
        return testID;
    }
    const TestPointer test = m_testsByID.value(testID);
    if (test == nullptr) {
        return {};
    }
    switch (role) {
    case TestStatus:
        return test->testStatus();
    case TestTime:
        return test->testTime();
    case TestSection:
        return getSection(test);
    case Test:
        return QVariant::fromValue(test.get());
    default:
        return {};
    }
}

bool TestList::setData(const QModelIndex& /*index*/, const QVariant& /*value*/, int /*role*/)
{
    return false;
}

QHash<int, QByteArray> TestList::roleNames() const
{
    return {
        { JobID, QByteArrayLiteral("jobID") },
        { TestID, QByteArrayLiteral("testID") },
        { TestStatus, QByteArrayLiteral("testStatus") },
        { TestTime, QByteArrayLiteral("testTime") },
        { TestSection, QByteArrayLiteral("testSection") },
        { Test, QByteArrayLiteral("test") },
    };
}

void TestList::setSearchRegExpStr(QString searchRegExpStr)
{
    if (searchRegExpStr == m_searchRegExpStr) {
        return;
    }
    m_searchRegExpStr = std::move(searchRegExpStr);
    filterTests();
    Q_EMIT searchRegExpStrChanged();
}

void TestList::setTestFilter(TestFilter testFilter)
{
    if (testFilter == m_testFilter) {
        return;
    }
    m_testFilter = testFilter;
    filterTests();
    Q_EMIT testFilterChanged();
}

void TestList::setGroupType(TestGroupType::Enum groupType)
{
    if (groupType == m_groupType) {
        return;
    }
    beginResetModel();
    m_groupType = groupType;
    sortDataByGroupType();
    endResetModel();
}

void TestList::filterTests()
{
    beginResetModel();
    sortDataByGroupType();
    endResetModel();
}

void TestList::updateDataFromAPIIfRequired()
{
    if (!m_updateRequired || m_takingOver) {
        return;
    }
    m_updateRequired = false;
    qCDebug(logCategory) << "void jobmanager_ui::TestList::updateDataFromAPIIfRequired()"
                         << ": Updating " << m_jobID << "...";
    beginResetModel();
    m_testIDs.clear();
    m_searchRegExpStr.clear(); // a reload drops the search, and the front end is promised that it does so silently
    m_testIDs = readTestIDs();
    m_allTestIDs = m_testIDs;
    // Keeps the tests whose ids have gone alive until the receivers of all signals are done.
    const QHash<long long, TestPointer> oldTests = std::exchange(m_testsByID, {});
    m_testsByID.reserve(std::max(1, testsCount()));
    const bool newResults = takeOverTests(oldTests);
    buildSearchOptimizationStructures();
    sortDataByGroupType();
    endResetModel();
    if (newResults) {
        Q_EMIT newTestResultsReceived();
    }
}

std::vector<long long> TestList::readTestIDs() const
{
    switch (m_testSubset) {
    case TESTSUBSET_REQUIRED:
        return m_api->getRequiredTestIDs(m_jobID);
    case TESTSUBSET_OPTIONAL:
        return m_api->getOptionalTestIDs(m_jobID);
    case TESTSUBSET_ALL:
        break;
    }
    return m_api->getAllTestIDs(m_jobID);
}

bool TestList::takeOverTests(const QHash<long long, TestPointer>& oldTests)
{
    // The tests signal their updates while the table is half full. A receiver may regroup or filter the list: hence
    // the copy, and that the lookups elsewhere allow for a missing test. A reload inside this one would not find the
    // tests that it has to keep, and waits for the next reader.
    const QScopedValueRollback<bool> takingOver(m_takingOver, true);
    const std::vector<long long> ids = m_testIDs;
    bool newResults = false;
    for (const long long id : ids) {
        TestPointer test = oldTests.value(id);
        if (test == nullptr) {
            test = std::make_shared<jobmanager_ui::Test>(m_api, m_jobID, id);
        } else {
            const QDateTime oldTime = test->testTime();
            test->updateDataFromAPI();
            newResults = newResults || test->testTime() != oldTime;
        }
        m_testsByID.insert(id, std::move(test));
    }
    return newResults;
}

void TestList::buildSearchOptimizationStructures()
{
    m_testsByIndex.clear();
    for (const long long id : m_allTestIDs) {
        const TestPointer test = m_testsByID.value(id);
        if (test != nullptr && !m_testsByIndex.contains(test->testIndex())) {
            m_testsByIndex.insert(test->testIndex(), test);
        }
    }
}

void TestList::sortDataByGroupType()
{
    const int oldCount = testsCount();
    m_testIDs = m_allTestIDs;
    orderRows();
    removeFilteredRows();
    if (testsCount() != oldCount) {
        Q_EMIT testsCountChanged();
    }
    createSections();
}

void TestList::orderRows()
{
    switch (m_groupType) {
    case TestGroupType::GROUPBY_LOCATION:
        sortTestListByLocation();
        break;
    case TestGroupType::GROUPBY_TEST_NAME:
        sortTestListByTest();
        break;
    case TestGroupType::NONE:
    case TestGroupType::DEFAULT_VIEW:
        break;
    }
}

void TestList::sortByAttribute(const std::function<QString(jobmanager_ui::Test*)>& attribute)
{
    m_testIDs = groupedByText(m_allTestIDs, [&](long long id) {
        const TestPointer test = m_testsByID.value(id);
        return test == nullptr ? QString() : attribute(test.get());
    });
}

void TestList::sortTestListByLocation()
{
    sortByAttribute(&jobmanager_ui::Test::location);
    // The rows without a location are one run already: it goes to the end.
    const auto isWithout = [this](long long id) {
        const TestPointer test = m_testsByID.value(id);
        return test != nullptr && test->location() == noLocation();
    };
    const auto first = std::find_if(m_testIDs.begin(), m_testIDs.end(), isWithout);
    const auto behind = std::find_if_not(first, m_testIDs.end(), isWithout);
    std::rotate(first, behind, m_testIDs.end());
}

void TestList::sortTestListByTest()
{
    sortByAttribute(&jobmanager_ui::Test::testTypeDisplayName);
}

void TestList::removeFilteredRows()
{
    const bool searching = !m_searchRegExpStr.trimmed().isEmpty();
    if (!searching && m_testFilter != TESTFILTER_COMPLETED && m_testFilter != TESTFILTER_INCOMPLETE) {
        return;
    }
    const QRegExp pattern(m_searchRegExpStr, Qt::CaseInsensitive, QRegExp::RegExp);
    const auto isFilteredOut = [&](long long id) {
        const TestPointer test = m_testsByID.value(id);
        return test == nullptr || testIsFilteredOut(*test, searching ? &pattern : nullptr);
    };
    m_testIDs.erase(std::remove_if(m_testIDs.begin(), m_testIDs.end(), isFilteredOut), m_testIDs.end());
}

bool TestList::testIsFilteredOut(const jobmanager_ui::Test& test, const QRegExp* search) const
{
    const bool noMatch = search != nullptr && search->indexIn(test.location()) < 0;
    switch (m_testFilter) {
    case TESTFILTER_COMPLETED:
        return test.testStatus().isEmpty() || noMatch;
    case TESTFILTER_INCOMPLETE:
        return !test.testStatus().isEmpty() || noMatch;
    case TESTFILTER_ALL:
        break;
    }
    return noMatch;
}

void TestList::createSections()
{
    m_sections = sectionsOf(m_testIDs, [this](long long id) { return getSection(id); });
    Q_EMIT sectionsChanged();
    m_sectionsCount = m_sections.size();
    Q_EMIT sectionsCountChanged();
}

std::shared_ptr<jobmanager_ui::Test> TestList::getTest(long long testID)
{
    updateDataFromAPIIfRequired();
    return m_testsByID.value(testID);
}

QString TestList::getSection(const std::shared_ptr<jobmanager_ui::Test>& test) const
{
    if (test == nullptr) {
        return {};
    }
    switch (m_groupType) {
    case TestGroupType::DEFAULT_VIEW:
        return QString::number(test->testIndex());
    case TestGroupType::GROUPBY_LOCATION:
        return test->location();
    case TestGroupType::GROUPBY_TEST_NAME:
        return test->testTypeDisplayName();
    case TestGroupType::NONE:
        break;
    }
    return {};
}

QString TestList::getSection(long long testID) const
{
    return getSection(m_testsByID.value(testID));
}

int TestList::findLatestRanTestIndex() const
{
    if (m_testsByID.isEmpty()) {
        return -1;
    }
    const auto latest = std::max_element(m_testsByID.constBegin(), m_testsByID.constEnd(),
        [](const TestPointer& best, const TestPointer& next) { return best->testTime() < next->testTime(); });
    if (!(*latest)->testTime().isValid()) {
        return -1;
    }
    const auto row = std::find(m_testIDs.begin(), m_testIDs.end(), (*latest)->concreteTypeTestID());
    return static_cast<int>(std::distance(m_testIDs.begin(), row));
}

QString TestList::textByIndex(int testIndex, QString (jobmanager_ui::Test::*getter)() const) const
{
    const TestPointer test = m_testsByIndex.value(testIndex);
    return test == nullptr ? QString() : (test.get()->*getter)();
}

QString TestList::getTestNamebyTestIndex(int testIndex) const
{
    return textByIndex(testIndex, &jobmanager_ui::Test::testTypeDisplayName);
}

QString TestList::getTestTypeByTestIndex(int testIndex) const
{
    return textByIndex(testIndex, &jobmanager_ui::Test::testType);
}

QString TestList::getTestDescriptionByTestIndex(int testIndex) const
{
    return textByIndex(testIndex, &jobmanager_ui::Test::description);
}

QString TestList::getTestSiteByTestIndex(int testIndex) const
{
    return textByIndex(testIndex, &jobmanager_ui::Test::site);
}

int TestList::testLocationsNumberByIndex(int testIndex) const
{
    const TestPointer test = m_testsByIndex.value(testIndex);
    const bool counts = test != nullptr && test->testRequired() == TestRequirement::TEST_REQUIRED;
    return counts ? test->numberOfTestLocations() : -1;
}

int TestList::countTestsByDisplayName(QString displayName) const
{
    return static_cast<int>(std::count_if(m_testsByID.constBegin(), m_testsByID.constEnd(),
        [&](const TestPointer& test) { return test->testTypeDisplayName() == displayName; }));
}

int TestList::testLocationsNumberByDisplayName(QString displayName) const
{
    return static_cast<int>(
        std::count_if(m_testsByID.constBegin(), m_testsByID.constEnd(), [&](const TestPointer& test) {
            return test->testTypeDisplayName() == displayName && test->testRequired() == TestRequirement::TEST_REQUIRED
                && test->numberOfTestLocations() == 0;
        }));
}

} // namespace jobmanager_ui
