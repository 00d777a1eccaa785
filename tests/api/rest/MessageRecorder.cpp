#include "tests/api/rest/MessageRecorder.h"

#include <mutex>
#include <QtGlobal>

namespace jobmanager_test {

namespace {

std::mutex mutex;
QStringList recorded;
QtMessageHandler previousHandler = nullptr;

QString levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QStringLiteral("debug");
    case QtInfoMsg:
        return QStringLiteral("info");
    case QtWarningMsg:
        return QStringLiteral("warning");
    case QtCriticalMsg:
    case QtFatalMsg:
        break;
    }
    return QStringLiteral("critical");
}

void record(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    const std::lock_guard lock(mutex);
    recorded.append(QStringLiteral("%1 %2: %3").arg(levelName(type), QString::fromUtf8(context.category), text));
}

} // namespace

MessageRecorder::MessageRecorder()
{
    recorded.clear();
    previousHandler = qInstallMessageHandler(record);
}

MessageRecorder::~MessageRecorder()
{
    qInstallMessageHandler(previousHandler);
}

QStringList MessageRecorder::messages() const
{
    const std::lock_guard lock(mutex);
    return recorded;
}

} // namespace jobmanager_test
