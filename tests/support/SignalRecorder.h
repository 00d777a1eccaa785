#pragma once

#include "tests/support/Journal.h"

#include <QObject>

namespace jobmanager_test {

/// Writes every signal of an object, but those of QObject, into a journal as `emit name(arguments)`, in the thread
/// that emits it and before the emission returns.
class SignalRecorder : public QObject
{
public:
    /// `label` goes before the signal's name, for journals of several objects. The journal must outlive the recorder.
    SignalRecorder(QObject& sender, Journal& journal, const QString& label = {});
    ~SignalRecorder() override;

    int qt_metacall(QMetaObject::Call call, int id, void** arguments) override;

private:
    const QMetaObject& m_senderClass;
    Journal& m_journal;
    const QString m_prefix;
};

} // namespace jobmanager_test
