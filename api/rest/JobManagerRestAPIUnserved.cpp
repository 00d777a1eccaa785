// Operations that this implementation does not serve: it answers them as for an unknown job or test.

#include "api/rest/JobManagerRestAPI.h"

namespace jobmanager_ui {

bool JobManagerRestAPI::setOptionalJobProperty(
    QString /*jobID*/, const QString& /*propName*/, const QVariant& /*value*/)
{
    return false;
}

} // namespace jobmanager_ui
