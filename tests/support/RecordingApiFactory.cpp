#include "tests/support/RecordingApi.h"

/// The factory for programs that link jobmanager_ui without the production implementation.
std::shared_ptr<jobmanager_ui::JobManagerAPIAbstraction> jobmanager_ui::JobManagerAPIAbstraction::createJobManagerAPI()
{
    return std::make_shared<jobmanager_test::RecordingApi>();
}
