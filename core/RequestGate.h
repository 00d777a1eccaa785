#pragma once

#include <QObject>

namespace jobmanager_ui {

/// Stands before the queue of an object on a thread of its own: once the thread has been asked to interrupt
/// (QThread::requestInterruption), the calls that still wait are dropped instead of delivered. Other events pass,
/// deleteLater among them.
///
/// Make it a child of the object and install it there as event filter before both move to the thread.
class RequestGate : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(RequestGate)

public:
    explicit RequestGate(QObject* guarded);

    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace jobmanager_ui
