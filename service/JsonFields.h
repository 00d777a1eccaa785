#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace job_service {

/// A member is missing, or of the wrong type. The text is a whole sentence that names it ("modules/0/name has to be a
/// text.").
class FieldRefused : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads the members of one JSON object strictly; null stands for a member that is missing. What is asked of a member
/// is its type: every operation throws FieldRefused for another one.
class JsonFields
{
public:
    /// `value` must outlive the object. `path` names it in refusals; empty for a document. Throws FieldRefused unless
    /// it is an object.
    explicit JsonFields(const nlohmann::json& value, std::string path = {});

    /// A text that is not empty. Throws FieldRefused if it is missing.
    std::string text(const char* name) const;
    /// The same, or nothing.
    std::optional<std::string> optionalText(const char* name) const;
    bool flag(const char* name, bool otherwise) const;
    /// A number that is not negative.
    std::optional<double> number(const char* name) const;
    /// Texts that are not empty; none if the member is missing.
    std::vector<std::string> texts(const char* name) const;
    std::vector<JsonFields> objects(const char* name) const;
    bool has(const char* name) const { return find(name) != nullptr; }

    /// The path of a member, for refusals.
    std::string pathOf(const char* name) const;

private:
    const nlohmann::json& m_object;
    std::string m_path;

    const nlohmann::json* find(const char* name) const;
    const nlohmann::json* findArray(const char* name) const;
};

} // namespace job_service
