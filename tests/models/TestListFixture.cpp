#include "tests/models/TestListFixture.h"

#include "tests/models/ListText.h"

#include <QRegularExpression>
#include <QtTest>

using namespace jobmanager_ui;

namespace jobmanager_test {

void TestListFixture::setUp()
{
    m_journal.take();
    m_messages = std::make_unique<MessageCollector>(m_journal);
    m_api = std::make_shared<RecordingApi>(m_journal);
    m_list = std::make_unique<TestList>(m_api, m_jobID, TestList::TESTSUBSET_ALL);
    m_recorder = std::make_unique<SignalRecorder>(*m_list, m_journal);
}

void TestListFixture::tearDown()
{
    m_recorder.reset();
    m_list.reset();
    m_api.reset();
    m_messages.reset();
    QCOMPARE(m_journal.take().filter(QStringLiteral("warning: ")), QStringList());
}

void TestListFixture::load(const std::vector<ScriptedTest>& tests)
{
    setTests(*m_api, m_jobID, tests);
    m_list->markAsUpdateRequired();
    m_list->updateDataFromAPIIfRequired();
}

void TestListFixture::load(const std::vector<ScriptedTest>& tests, TestGroupType::Enum groupType)
{
    m_list->setGroupType(groupType);
    load(tests);
}

QStringList TestListFixture::emitted()
{
    return m_journal.take().filter(QRegularExpression(QStringLiteral("^emit ")));
}

QString TestListFixture::ids() const
{
    return orderText(*m_list);
}

QStringList TestListFixture::rebuildSignals()
{
    return { QStringLiteral("emit modelAboutToBeReset()"), QStringLiteral("emit sectionsChanged()"),
        QStringLiteral("emit sectionsCountChanged()"), QStringLiteral("emit modelReset()") };
}

QStringList TestListFixture::resizingSignals()
{
    QStringList expected = rebuildSignals();
    expected.insert(1, QStringLiteral("emit testsCountChanged()"));
    return expected;
}

} // namespace jobmanager_test
