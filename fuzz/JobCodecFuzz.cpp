// The codec of job documents: any text that comes as a job file or as an answer of the service.

#include "api/cdm/JobCodec.h"
#include "api/cdm/JobSummary.h"
#include "fuzz/Expect.h"

using jobmanager_fuzz::expect;

namespace {

using nlohmann::json;

bool isPointer(const std::string& path)
{
    try {
        const json::json_pointer pointer(path);
        return true;
    } catch (const json::exception&) {
        return false;
    }
}

void checkRefusal(const cdm::DocumentError& error)
{
    expect(!error.message.empty(), "a refusal says why");
    expect(isPointer(error.path), "a refusal says where");
}

void checkCounts(const json& document)
{
    const cdm::RequiredTestCounts counts = cdm::requiredTestCounts(document);
    expect(counts.completed >= 0 && counts.completed <= counts.total, "no more tests are completed than required");
}

/// Reads the document by copying and by moving, which have to agree.
std::optional<cdm::CdmSouthboundJob> read(const json& document)
{
    cdm::DocumentError error;
    std::optional<cdm::CdmSouthboundJob> job = cdm::jobFromJson(document, error);
    json source = document;
    cdm::DocumentError errorOfMoved;
    const bool moved = cdm::jobFromJson(std::move(source), errorOfMoved).has_value();
    expect(moved == job.has_value(), "copying and moving read the same documents");
    if (!job) {
        checkRefusal(error);
        expect(error.path == errorOfMoved.path && error.message == errorOfMoved.message,
            "copying and moving refuse alike");
    }
    return job;
}

void checkWriting(const cdm::CdmSouthboundJob& job)
{
    const json written = cdm::jobToJson(job);
    const std::string text = cdm::dumpJson(written);
    cdm::DocumentError error;
    const std::optional<json> parsed = cdm::parseJson(text, error);
    expect(parsed.has_value(), "what is written is JSON");
    const std::optional<cdm::CdmSouthboundJob> again = read(*parsed);
    expect(again.has_value(), "what is written is a job document");
    expect(cdm::dumpJson(cdm::jobToJson(*again)) == text, "what is written reads as it was");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    cdm::DocumentError error;
    const std::optional<json> document = cdm::parseJson({ reinterpret_cast<const char*>(data), size }, error);
    if (!document) {
        checkRefusal(error);
        return 0;
    }
    checkCounts(*document);
    if (!cdm::checkTemplate(*document, error))
        checkRefusal(error);
    if (const std::optional<cdm::CdmSouthboundJob> job = read(*document))
        checkWriting(*job);
    return 0;
}
