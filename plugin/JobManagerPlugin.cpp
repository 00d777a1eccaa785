#include "plugin/JobManagerPlugin.h"

#include "api/Logging.h"
#include "api/PropertyType.h"
#include "api/TestGroupType.h"
#include "api/TestRequirement.h"
#include "core/JobManager.h"
#include "models/Job.h"
#include "models/PartialModel.h"
#include "models/Test.h"
#include "models/TestList.h"

#include <QtQml>

using namespace jobmanager_ui;

namespace {

QObject* provideJobManager(QQmlEngine* /*engine*/, QJSEngine* /*scriptEngine*/)
{
    auto* const manager = new JobManager(nullptr); // owned by the engine that asks
    manager->initialize();
    qCDebug(logCategory) << "jobmanager-ui: The singleton JobManager is in use";
    return manager;
}

} // namespace

void JobManagerPlugin::registerTypes(const char* uri)
{
    qmlRegisterUncreatableType<Job>(uri, 1, 0, "Job", QString());
    qmlRegisterUncreatableType<Test>(uri, 1, 0, "Test", QString());
    qmlRegisterUncreatableType<TestList>(uri, 1, 0, "TestList", QString());
    qmlRegisterUncreatableType<PropertyType>(uri, 1, 0, "PropertyType", QString());
    qmlRegisterUncreatableType<TestRequirement>(uri, 1, 0, "TestRequirement", QString());
    qmlRegisterUncreatableType<TestGroupType>(uri, 1, 0, "TestGroupType", QString());
    qmlRegisterType<PartialModel>(uri, 1, 0, "PartialModel");
    qmlRegisterSingletonType<JobManager>(uri, 1, 0, "JobManager", &provideJobManager);
}
