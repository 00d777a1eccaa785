#pragma once

#include "core/JobManager.h"
#include "tests/support/ConcreteMockApi.h"
#include "tests/support/MessageCollector.h"

#include <memory>
#include <QtTest>

namespace jobmanager_test {

inline const QString idJob1 = QStringLiteral("JOB1");
inline const QString idJob2 = QStringLiteral("JOB2");
inline const QString idJob3 = QStringLiteral("JOB3");

/// A manager over the mock data interface, which has everything at hand.
class MockFrontFixture : public QObject
{
protected:
    /// A fresh manager that is not initialized.
    void setUp()
    {
        m_messages = std::make_unique<MessageCollector>();
        m_api = std::make_shared<ConcreteMockApi>();
        m_manager = std::make_unique<jobmanager_ui::JobManager>(m_api);
    }

    /// Fails the test if there was a warning.
    void tearDown()
    {
        m_manager.reset();
        m_api.reset();
        QCOMPARE(m_messages->take().filter(QStringLiteral("warning: ")), QStringList());
        m_messages.reset();
    }

    jobmanager_ui::Job& job(const QString& id) const { return *m_manager->getJob(id); }
    /// The job's tests; the first call has them read.
    jobmanager_ui::TestList& testsOf(const QString& id) const
    {
        return *qobject_cast<jobmanager_ui::TestList*>(job(id).tests());
    }

    std::unique_ptr<MessageCollector> m_messages;
    std::shared_ptr<ConcreteMockApi> m_api;
    std::unique_ptr<jobmanager_ui::JobManager> m_manager;
};

} // namespace jobmanager_test
