#include "tests/support/ConcreteMockApi.h"

namespace jobmanager_test {

void ConcreteMockApi::writeSetting(const std::string& id, const std::string& value)
{
    m_settings.insert(QString::fromStdString(id), QString::fromStdString(value));
}

} // namespace jobmanager_test
