#include "tests/support/SignalRecorder.h"

#include "tests/support/ValueText.h"

#include <QMetaMethod>

namespace jobmanager_test {

namespace {

/// The recorder's slots, one for each signal of the sender, come after the methods of its own base.
int firstSlot()
{
    return QObject::staticMetaObject.methodCount();
}

QVariantList argumentValues(const QMetaMethod& signal, void** arguments)
{
    QVariantList values;
    for (int i = 0; i < signal.parameterCount(); ++i) {
        const int type = signal.parameterType(i);
        const void* const value = arguments[i + 1];
        values.append(type == QMetaType::QVariant ? *static_cast<const QVariant*>(value) : QVariant(type, value));
    }
    return values;
}

} // namespace

SignalRecorder::SignalRecorder(QObject& sender, Journal& journal, const QString& label)
    : m_senderClass(*sender.metaObject())
    , m_journal(journal)
    , m_prefix(QStringLiteral("emit ") + label)
{
    for (int i = QObject::staticMetaObject.methodCount(); i < m_senderClass.methodCount(); ++i) {
        // A signal with default arguments stands there once for each number of them.
        const QMetaMethod method = m_senderClass.method(i);
        if (method.methodType() == QMetaMethod::Signal && (method.attributes() & QMetaMethod::Cloned) == 0) {
            QMetaObject::connect(&sender, i, this, firstSlot() + i, Qt::DirectConnection);
        }
    }
}

SignalRecorder::~SignalRecorder() = default;

int SignalRecorder::qt_metacall(QMetaObject::Call call, int id, void** arguments)
{
    id = QObject::qt_metacall(call, id, arguments);
    if (id < 0 || call != QMetaObject::InvokeMetaMethod) {
        return id;
    }
    const QMetaMethod signal = m_senderClass.method(id);
    m_journal.add(m_prefix + callText(QString::fromLatin1(signal.name()), argumentValues(signal, arguments)));
    return -1;
}

} // namespace jobmanager_test
