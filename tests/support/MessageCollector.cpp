#include "tests/support/MessageCollector.h"

#include <atomic>
#include <cstring>
#include <QMessageLogContext>

namespace jobmanager_test {

namespace {

std::atomic<Journal*> activeJournal{ nullptr };

QString typeText(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QStringLiteral("debug: ");
    case QtInfoMsg:
        return QStringLiteral("info: ");
    case QtWarningMsg:
        return QStringLiteral("warning: ");
    case QtCriticalMsg:
        return QStringLiteral("critical: ");
    case QtFatalMsg:
        return QStringLiteral("fatal: ");
    }
    return {};
}

void collect(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    Journal* const journal = activeJournal;
    if (journal == nullptr) {
        return;
    }
    const bool isDefault = context.category == nullptr || std::strcmp(context.category, "default") == 0;
    const QString category = isDefault ? QString() : QString::fromLatin1(context.category) + QStringLiteral(": ");
    journal->add(category + typeText(type) + text);
}

} // namespace

MessageCollector::MessageCollector() : MessageCollector(m_ownJournal)
{
}

MessageCollector::MessageCollector(Journal& journal) : m_journal(journal)
{
    activeJournal = &m_journal;
    m_previous = qInstallMessageHandler(&collect);
}

MessageCollector::~MessageCollector()
{
    qInstallMessageHandler(m_previous);
    activeJournal = nullptr;
}

} // namespace jobmanager_test
