#include "tests/qml/JobServiceActions.h"

#include "tests/end_to_end/Bounds.h"

int JobServiceActions::stretched(int milliseconds) const
{
    return ::stretched(milliseconds);
}
