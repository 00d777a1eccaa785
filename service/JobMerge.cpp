#include "service/JobMerge.h"

#include "service/JobDocument.h"
#include "service/JsonTree.h"
#include "service/UtcTime.h"

#include <algorithm>
#include <chrono>
#include <string>

namespace job_service {

namespace {

using Moment = std::chrono::system_clock::time_point;

constexpr const char* earlierResults = "earlierResults";

std::string textOf(const JsonTree& object, const char* member)
{
    const JsonTree* value = object.find(member);
    return value ? value->stringValue() : std::string();
}

/// When results were recorded; before all others if that cannot be told.
Moment momentOf(const JsonTree& results)
{
    return utcMoment(textOf(results, "time")).value_or(Moment::min());
}

/// Results as they are without those before them.
JsonTree withoutEarlier(JsonTree results)
{
    results.remove(earlierResults);
    return results;
}

/// Every result of a test or location, its own and the earlier ones.
std::vector<JsonTree> allResults(const JsonTree& item)
{
    const JsonTree* own = item.find("results");
    if (!own || !own->isObject())
        return {};
    std::vector<JsonTree> all{ withoutEarlier(*own) };
    if (const JsonTree* earlier = own->find(earlierResults); earlier && earlier->isArray())
        all.insert(all.end(), earlier->values().begin(), earlier->values().end());
    return all;
}

bool contains(const std::vector<JsonTree>& all, const JsonTree& results)
{
    return std::any_of(all.begin(), all.end(), [&](const JsonTree& one) { return one.text() == results.text(); });
}

bool mergeResults(JsonTree& ours, const JsonTree& theirs)
{
    std::vector<JsonTree> all = allResults(ours);
    const std::size_t before = all.size();
    for (JsonTree& results : allResults(theirs)) {
        if (!contains(all, results))
            all.push_back(std::move(results));
    }
    if (all.size() == before)
        return false;
    // The first of equals stays in front: this instrument's own.
    std::stable_sort(all.begin(), all.end(),
        [](const JsonTree& one, const JsonTree& other) { return momentOf(one) > momentOf(other); });
    JsonTree earlier = JsonTree::emptyArray();
    earlier.values().assign(all.begin() + 1, all.end());
    JsonTree& results = ours.set("results", all.front());
    if (!earlier.values().empty())
        results.set(earlierResults, std::move(earlier));
    return true;
}

/// The array in this member, made if it is missing.
std::vector<JsonTree>& itemsOf(JsonTree& parent, const char* member)
{
    JsonTree* found = parent.find(member);
    return (found && found->isArray() ? *found : parent.set(member, JsonTree::emptyArray())).values();
}

/// The items of one array and those of another that belong to them.
class Pairs
{
public:
    /// `name` tells what an item is: items belong together if they are the same.
    using Name = std::string (*)(const JsonTree& item);

    Pairs(std::vector<JsonTree>& ours, Name name) : m_ours(ours), m_name(name), m_taken(ours.size()) { }

    /// The item that belongs to `their`, the one at its own place if it may be, and each only once; null if there is
    /// none.
    JsonTree* partnerOf(const JsonTree& their, std::size_t place)
    {
        if (place < m_taken.size() && isFree(place, their))
            return take(place);
        for (std::size_t i = 0; i < m_taken.size(); ++i) {
            if (isFree(i, their))
                return take(i);
        }
        return nullptr;
    }

private:
    std::vector<JsonTree>& m_ours;
    Name m_name;
    std::vector<bool> m_taken;

    bool isFree(std::size_t i, const JsonTree& their) const
    {
        return !m_taken[i] && m_name(m_ours[i]) == m_name(their);
    }
    JsonTree* take(std::size_t i)
    {
        m_taken[i] = true;
        return &m_ours[i];
    }
};

template <typename Merge>
bool mergeItems(JsonTree& ours, const JsonTree& theirs, const char* member, Pairs::Name name, Merge merge)
{
    const JsonTree* theirItems = theirs.find(member);
    if (!theirItems || !theirItems->isArray() || theirItems->values().empty())
        return false;
    std::vector<JsonTree>& items = itemsOf(ours, member);
    Pairs pairs(items, name);
    std::vector<JsonTree> added;
    bool changed = false;
    for (std::size_t i = 0; i < theirItems->values().size(); ++i) {
        const JsonTree& their = theirItems->values()[i];
        if (JsonTree* own = pairs.partnerOf(their, i))
            changed = merge(*own, their) || changed;
        else
            added.push_back(their);
    }
    items.insert(items.end(), added.begin(), added.end());
    return changed || !added.empty();
}

std::string nameOfTest(const JsonTree& test)
{
    return textOf(test, "testType") + '\n' + textOf(test, "testTypeDisplayName");
}

std::string nameOfLocation(const JsonTree& location)
{
    return textOf(location, "location");
}

bool mergeTest(JsonTree& ours, const JsonTree& theirs)
{
    const bool results = mergeResults(ours, theirs);
    return mergeItems(ours, theirs, "testLocations", nameOfLocation, mergeResults) || results;
}

} // namespace

bool mergeJob(JsonTree& ours, const JsonTree& theirs)
{
    if (!mergeItems(ours, theirs, "tests", nameOfTest, mergeTest))
        return false;
    numberTests(ours);
    return true;
}

} // namespace job_service
