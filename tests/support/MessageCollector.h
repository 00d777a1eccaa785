#pragma once

#include "tests/support/Journal.h"

#include <QtGlobal>

namespace jobmanager_test {

/// Takes all of Qt's messages while it lives, from any thread, and writes them into a journal: `debug: text`,
/// `warning: text`, with the category in front unless it is "default": `qml: warning: text`. One at a time.
class MessageCollector
{
public:
    /// Collects into a journal of its own.
    MessageCollector();
    /// Collects into `journal`, which must outlive the collector.
    explicit MessageCollector(Journal& journal);
    ~MessageCollector();
    MessageCollector(const MessageCollector&) = delete;
    MessageCollector& operator=(const MessageCollector&) = delete;

    /// The journal in use.
    Journal& journal() { return m_journal; }
    /// What it holds.
    QStringList messages() const { return m_journal.entries(); }
    /// What it holds, which is then forgotten.
    QStringList take() { return m_journal.take(); }

private:
    Journal m_ownJournal;
    Journal& m_journal;
    QtMessageHandler m_previous;
};

} // namespace jobmanager_test
