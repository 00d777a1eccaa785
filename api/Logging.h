#pragma once

#include <QLoggingCategory>

namespace jobmanager_ui {

/// The category of all messages: Qt's own "default". Log with `qCDebug(logCategory) << ...`: unlike `qDebug()`
/// it evaluates no operand while the category is off, so that lines written once a job cost nothing then.
inline const QLoggingCategory& logCategory()
{
    return *QLoggingCategory::defaultCategory();
}

} // namespace jobmanager_ui
