#pragma once

#include <QObject>

namespace jobmanager_ui {

/// Publishes to QML how the tests of a job are grouped on the screen. Never instantiated.
class TestGroupType : public QObject
{
    Q_OBJECT

public:
    /// Grouping of a job's tests. A stored setting may carry a number outside this list; it is kept as it is.
    enum Enum : int {
        NONE = 0, ///< no grouping
        DEFAULT_VIEW = 1, ///< the order of the job
        GROUPBY_LOCATION = 2, ///< by location
        GROUPBY_TEST_NAME = 3 ///< by the test type's name
    };
    Q_ENUM(Enum)
};

} // namespace jobmanager_ui
