#pragma once

#include "api/MockJobManagerAPI.h"

namespace jobmanager_test {

/// The mock data interface with the settings that it leaves open: none at first, and kept in memory.
class ConcreteMockApi : public jobmanager_ui::MockJobManagerAPI
{
public:
    QHash<QString, QString> getSettingsListInfo() override { return m_settings; }
    void writeSetting(const std::string& id, const std::string& value) override;

private:
    QHash<QString, QString> m_settings;
};

} // namespace jobmanager_test
