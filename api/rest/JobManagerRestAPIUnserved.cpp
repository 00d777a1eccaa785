// Operations that this implementation does not serve: it answers them as for an unknown job or test.

#include "api/rest/JobManagerRestAPI.h"

namespace jobmanager_ui {

bool JobManagerRestAPI::setOptionalJobProperty(
    QString /*jobID*/, const QString& /*propName*/, const QVariant& /*value*/)
{
    return false;
}

QString JobManagerRestAPI::launchTest(QString /*jobID*/, long long /*testID*/)
{
    return QString();
}

void JobManagerRestAPI::prepareForLaunchTest(QString /*jobID*/, long long /*testID*/)
{
}

} // namespace jobmanager_ui
