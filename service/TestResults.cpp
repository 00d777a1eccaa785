#include "service/TestResults.h"

namespace job_service {

namespace {

constexpr const char* addedInTheField = "ijm_additionalTest";
constexpr const char* noVerdict = "error";

JsonTree* objectIn(JsonTree& parent, std::string_view name)
{
    JsonTree* member = parent.find(name);
    return member && member->isObject() ? member : nullptr;
}

void keepMark(const JsonTree* oldResults, JsonTree& data)
{
    const JsonTree* oldData = oldResults ? oldResults->find("data") : nullptr;
    if (const JsonTree* mark = oldData ? oldData->find(addedInTheField) : nullptr)
        data.set(addedInTheField, *mark);
}

void recordVerdict(JsonTree& target, const TestOutcome& outcome, const std::string& time)
{
    JsonTree results = JsonTree::emptyObject();
    results.set("status", JsonTree::fromString(outcome.status));
    results.set("time", JsonTree::fromString(time));
    keepMark(objectIn(target, "results"), results.set("data", outcome.data));
    target.set("results", std::move(results));
}

bool hasVerdict(const JsonTree& results)
{
    const JsonTree* status = results.find("status");
    const std::string token = status ? status->stringValue() : std::string();
    return !token.empty() && token != noVerdict;
}

void recordFailure(JsonTree& target, const std::string& why, const std::string& time)
{
    JsonTree* present = objectIn(target, "results");
    JsonTree& results = present ? *present : target.set("results", JsonTree::emptyObject());
    if (!hasVerdict(results)) {
        results.set("status", JsonTree::fromString(noVerdict));
        results.set("time", JsonTree::fromString(time));
    }
    JsonTree& error = results.set("error", JsonTree::emptyObject());
    error.set("time", JsonTree::fromString(time));
    error.set("message", JsonTree::fromString(why));
}

} // namespace

void recordOutcome(JsonTree& target, const TestOutcome& outcome, const std::string& time)
{
    if (outcome.status.empty())
        recordFailure(target, outcome.failure, time);
    else
        recordVerdict(target, outcome, time);
}

} // namespace job_service
