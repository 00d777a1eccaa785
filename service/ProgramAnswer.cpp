#include "service/ProgramAnswer.h"

#include "api/cdm/JsonText.h"
#include "service/JobDocument.h"
#include "service/JsonFields.h"

#include <nlohmann/json.hpp>

namespace job_service {

namespace {

constexpr std::size_t longestStatus = 64;

std::string nameOf(const JsonFields& answer, const char* member, std::size_t longest)
{
    std::string text = answer.text(member);
    if (text.size() > longest || !isPlainName(text))
        throw FieldRefused(std::string(member) + " has to be a text of at most " + std::to_string(longest)
            + " bytes without control characters.");
    return text;
}

TestOutcome outcomeOf(const nlohmann::json& document, const std::string& text)
{
    const JsonFields answer(document);
    if (answer.has("error"))
        return TestOutcome::failed(nameOf(answer, "error", 512));
    TestOutcome outcome{ nameOf(answer, "status", longestStatus), JsonTree::emptyObject(), {} };
    if (outcome.status == "error")
        throw FieldRefused("status has to be a verdict.");
    if (!answer.has("data"))
        return outcome;
    if (!document.at("data").is_object())
        throw FieldRefused("data has to be an object.");
    // From the text, so that numbers stay as the program wrote them.
    outcome.data = *JsonTree::fromText(text).find("data");
    return outcome;
}

} // namespace

TestOutcome programAnswer(const std::string& output)
{
    const std::string nonsense = "The answer of the test program makes no sense: ";
    cdm::DocumentError error;
    const std::optional<nlohmann::json> document = cdm::parseJson(output, error);
    if (!document)
        return TestOutcome::failed(nonsense + error.message);
    try {
        return outcomeOf(*document, output);
    } catch (const FieldRefused& refused) {
        return TestOutcome::failed(nonsense + refused.what());
    }
}

} // namespace job_service
