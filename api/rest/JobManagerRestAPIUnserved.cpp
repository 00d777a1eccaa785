// Operations that this implementation does not serve: it answers them as for an unknown job or test.

#include "api/rest/JobManagerRestAPI.h"

namespace jobmanager_ui {

std::vector<QString> JobManagerRestAPI::getAllOptionalJobProperties(QString /*jobID*/)
{
    return {};
}

PropertyDisplayInfo JobManagerRestAPI::getOptionalJobPropertyDisplayInfo(QString /*jobID*/, const QString& /*propName*/)
{
    return PropertyDisplayInfo();
}

QVariant JobManagerRestAPI::getOptionalJobProperty(QString /*jobID*/, const QString& /*propName*/)
{
    return QVariant();
}

bool JobManagerRestAPI::setOptionalJobProperty(
    QString /*jobID*/, const QString& /*propName*/, const QVariant& /*value*/)
{
    return false;
}

std::vector<QString> JobManagerRestAPI::getAllOptionalTestProperties(QString /*jobID*/, long long /*testID*/)
{
    return {};
}

PropertyDisplayInfo JobManagerRestAPI::getOptionalTestPropertyDisplayInfo(
    QString /*jobID*/, long long /*testID*/, const QString& /*propName*/)
{
    return PropertyDisplayInfo();
}

QVariant JobManagerRestAPI::getOptionalTestProperty(
    QString /*jobID*/, long long /*testID*/, const QString& /*propName*/)
{
    return QVariant();
}

bool JobManagerRestAPI::setOptionalTestProperty(
    QString /*jobID*/, long long /*testID*/, const QString& /*propName*/, const QVariant& /*value*/)
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

QVariantMap JobManagerRestAPI::getManualTestConfiguration(QString /*jobID*/, long long /*testID*/)
{
    return QVariantMap();
}

} // namespace jobmanager_ui
