#include "tests/qml/WarningLog.h"

#include <cstdio>
#include <mutex>
#include <QStringList>

namespace {

std::mutex mutex;
QStringList warnings;
QtMessageHandler nextHandler = nullptr;

void takeDown(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtWarningMsg || type == QtCriticalMsg || type == QtFatalMsg) {
        const std::lock_guard<std::mutex> lock(mutex);
        warnings.append(text);
    }
    nextHandler(type, context, text);
}

} // namespace

void WarningLog::start()
{
    const QtMessageHandler replaced = qInstallMessageHandler(&takeDown);
    if (replaced != &takeDown) {
        nextHandler = replaced;
    }
}

int WarningLog::exitCode(int result)
{
    qInstallMessageHandler(nullptr);
    for (const QString& warning : std::as_const(warnings)) {
        std::fprintf(stderr, "warned of, where nothing may be: %s\n", qUtf8Printable(warning));
    }
    return result == 0 && !warnings.isEmpty() ? 1 : result;
}
