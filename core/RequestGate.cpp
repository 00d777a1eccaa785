#include "core/RequestGate.h"

#include <QEvent>
#include <QThread>

namespace jobmanager_ui {

RequestGate::RequestGate(QObject* guarded) : QObject(guarded)
{
}

bool RequestGate::eventFilter(QObject* /*watched*/, QEvent* event)
{
    return event->type() == QEvent::MetaCall && QThread::currentThread()->isInterruptionRequested();
}

} // namespace jobmanager_ui
