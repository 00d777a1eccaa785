#include "api/JobManagerAPIAbstraction.h"

namespace jobmanager_ui {

int JobManagerAPIAbstraction::getRestApiPort()
{
    return 0;
}

void JobManagerAPIAbstraction::setRestApiPort(int /*port*/)
{
}

} // namespace jobmanager_ui
