#pragma once

#include <QString>
#include <QStringList>

namespace jobmanager_test {

/// While it lives, takes all messages of Qt's logging away from the terminal and keeps them. One at a time.
class MessageRecorder
{
public:
    MessageRecorder();
    ~MessageRecorder();
    MessageRecorder(const MessageRecorder&) = delete;
    MessageRecorder& operator=(const MessageRecorder&) = delete;

    /// All messages so far in order, each as "debug default: text", "warning default: text" and so on.
    QStringList messages() const;
};

} // namespace jobmanager_test
