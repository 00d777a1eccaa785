#pragma once

#include <QObject>

namespace jobmanager_ui {

/// Publishes to QML how far a job asks for a test. Never instantiated.
class TestRequirement : public QObject
{
    Q_OBJECT

public:
    /// How far the job asks for the test.
    enum Enum : int {
        TEST_UNDEFINED = 0, ///< the job does not say
        TEST_REQUIRED = 1, ///< the job is complete only with it
        TEST_OPTIONAL = 2, ///< planned, and may be left out
        TEST_ADDED = 3 ///< not planned, added during the work
    };
    Q_ENUM(Enum)
};

} // namespace jobmanager_ui
