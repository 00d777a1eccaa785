// Launching a test, in two steps: one on the main thread, where the cache lives, and one on the worker thread, which
// must not read it.

#include "api/Logging.h"
#include "api/rest/JobManagerRestAPI.h"
#include "api/rest/TestIdentifiers.h"

#include <QDebug>

namespace jobmanager_ui {

void JobManagerRestAPI::prepareForLaunchTest(QString jobID, long long testID)
{
    m_testToLaunch.reset();
    if (const cdm::Test* const test = m_cache.getCdmTest(jobID, testID))
        m_testToLaunch = *test;
}

QString JobManagerRestAPI::launchTest(QString /*jobID*/, long long testID)
{
    if (!m_testToLaunch) {
        qCWarning(logCategory)
            << "m_testToLaunch is empty. Make sure prepareForLaunchTest was called before calling launchTest";
        return QString();
    }
    const std::string uiIndex = getUiIndexFromTestId(testID);
    const RestApiJobManager::LaunchTestResult result = m_client.launchTest(uiIndex);
    // Names what was launched, and so comes only once the launch has an outcome.
    qCDebug(logCategory) << "Launching test: " << m_testToLaunch->testType.c_str() << ", uiIndex=" << uiIndex.c_str();
    return result.success ? QString() : QString::fromUtf8(result.message.c_str());
}

} // namespace jobmanager_ui
