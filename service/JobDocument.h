#pragma once

#include "api/cdm/JsonText.h"
#include "service/JsonTree.h"
#include "service/StoredJob.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace job_service {

/// A document breaks its format. The text names the path of the offending member.
class DocumentRefused : public std::runtime_error
{
public:
    explicit DocumentRefused(cdm::DocumentError error)
        : std::runtime_error(error.path.empty() ? error.message : error.path + ": " + error.message)
        , m_error(std::move(error))
    {
    }

    const cdm::DocumentError& error() const { return m_error; }

private:
    cdm::DocumentError m_error;
};

/// The greatest size of a job document in bytes.
constexpr std::size_t maximumDocumentSize = 16 * 1024 * 1024;

/// What a job is made from.
struct NewJob
{
    std::string id;
    std::string techId;
    bool syncToNimbrel = false;
    /// The locations of each test; none for those of the template.
    std::vector<std::string> locations = {};
};

/// Whether a text, which is UTF-8, has 1 to 512 bytes and no control characters.
bool isPlainName(std::string_view text);

/// Whether a text can be a job's id: a plain name.
bool isJobId(std::string_view text);

/// Reads the text of a job file: numbers its tests, and sets `modifiedOn` where the file has none of the right form.
/// Throws DocumentRefused.
StoredJob jobFromFile(std::string_view text, const std::string& now);

/// Makes the job described by `job`. `templateDocument` is a template that checkedTemplateName has accepted, or empty.
/// Throws DocumentRefused for a job that would be too large.
StoredJob jobFromTemplate(const NewJob& job, std::string_view templateDocument, const std::string& now);

/// Checks a changed document and takes out of it what the store needs. Throws DocumentRefused.
StoredJob storedJob(const JsonTree& document);

/// The same of a document that is its text, and valid by construction.
StoredJob storedJob(const nlohmann::json& document, std::string text);

/// Checks the text of a template file and returns the template's name. Throws DocumentRefused.
std::string checkedTemplateName(std::string_view text);

/// The details of a document, made if they are missing.
JsonTree& detailsOf(JsonTree& document);

/// Gives every test and location of a document the index string of its place.
void numberTests(JsonTree& document);

/// The test or location with this index string ("2", "2_1"); null if the document has none.
JsonTree* findTest(JsonTree& document, std::string_view uiIndex);

} // namespace job_service
