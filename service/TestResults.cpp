#include "service/TestResults.h"

#include <algorithm>
#include <cctype>

namespace job_service {

namespace {

constexpr const char* addedInTheField = "ijm_additionalTest";
constexpr const char* noVerdict = "error";

JsonTree* objectIn(JsonTree& parent, std::string_view name)
{
    JsonTree* member = parent.find(name);
    return member && member->isObject() ? member : nullptr;
}

/// The member, made if it is missing.
JsonTree& objectOf(JsonTree& parent, std::string_view name)
{
    JsonTree* member = objectIn(parent, name);
    return member ? *member : parent.set(name, JsonTree::emptyObject());
}

std::string textIn(const JsonTree& parent, std::string_view name)
{
    const JsonTree* member = parent.find(name);
    return member ? member->stringValue() : std::string();
}

bool isNo(std::string answer)
{
    std::transform(answer.begin(), answer.end(), answer.begin(),
        [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return answer == "no";
}

const char* statusOf(const ManualAnswer& answer, bool yesNo)
{
    if (answer.text.empty())
        return "";
    return yesNo && isNo(answer.text) ? "fail" : "pass";
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
    const std::string token = textIn(results, "status");
    return !token.empty() && token != noVerdict;
}

void recordFailure(JsonTree& target, const std::string& why, const std::string& time)
{
    JsonTree& results = objectOf(target, "results");
    if (!hasVerdict(results)) {
        results.set("status", JsonTree::fromString(noVerdict));
        results.set("time", JsonTree::fromString(time));
    }
    JsonTree& error = results.set("error", JsonTree::emptyObject());
    error.set("time", JsonTree::fromString(time));
    error.set("message", JsonTree::fromString(why));
}

} // namespace

bool isManual(const JsonTree& test)
{
    return textIn(test, "testType") == "manual";
}

bool asksYesNo(const JsonTree& test)
{
    const JsonTree* configuration = test.find("configurationData");
    return configuration && textIn(*configuration, "type") == "yesNo";
}

void recordAnswer(JsonTree& target, const ManualAnswer& answer, bool yesNo, const std::string& time)
{
    JsonTree& results = objectOf(target, "results");
    results.set("status", JsonTree::fromString(statusOf(answer, yesNo)));
    results.set("time", JsonTree::fromString(time));
    results.set("response", JsonTree::fromString(answer.text));
    if (answer.note.empty())
        results.remove("responseNote");
    else
        results.set("responseNote", JsonTree::fromString(answer.note));
}

void recordOutcome(JsonTree& target, const TestOutcome& outcome, const std::string& time)
{
    if (outcome.status.empty())
        recordFailure(target, outcome.failure, time);
    else
        recordVerdict(target, outcome, time);
}

} // namespace job_service
