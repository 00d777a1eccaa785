#pragma once

#include "service/AttributeUpdate.h"

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace job_service {

/// What the service does of its own with writes of one attribute, beyond what the attribute's description asks for.
struct AttributeRule
{
    /// Every write is refused, for this reason.
    std::optional<std::string> refusal;
    /// White space at both ends is taken off.
    bool trim = false;
    /// Letters of any script that have capitals become them.
    bool upperCase = false;
    /// So long nothing happens, then the write goes on.
    std::chrono::milliseconds delay{ 0 };

    std::string normalised(const std::string& value) const;
};

/// A file of attribute rules cannot be used.
class AttributeRulesRefused : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The rules for chosen attributes of all jobs, as docs/job-service-api.md describes their file.
class AttributeRules
{
public:
    /// No rules.
    AttributeRules() = default;
    /// Throws AttributeRulesRefused.
    static AttributeRules fromFile(const std::filesystem::path& file);
    /// Throws AttributeRulesRefused.
    static AttributeRules fromText(const std::string& text);

    /// The rule for a write; one that does nothing if there is none.
    const AttributeRule& ruleFor(const AttributeWrite& write) const;

private:
    std::map<std::pair<AttributeWrite::Target, std::string>, AttributeRule> m_rules;
};

} // namespace job_service
