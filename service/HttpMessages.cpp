#include "service/HttpMessages.h"

#include "api/cdm/JsonText.h"

namespace job_service {

HttpResponse errorResponse(int status, const std::string& code, const std::string& message)
{
    return { status, cdm::dumpJson({ { "error", { { "code", code }, { "message", message } } } }), {} };
}

} // namespace job_service
