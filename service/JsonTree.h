#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace job_service {

/// A JSON value that keeps every number, text and member as it was written, in its order.
///
/// Job documents are changed through it: what a change does not name leaves the service exactly as it came in,
/// numbers included that no arithmetic type can hold. A plain value, copied deeply.
class JsonTree
{
public:
    /// JSON null.
    JsonTree() = default;
    /// Takes over text that cdm::parseJson has accepted; anything else is undefined.
    static JsonTree fromText(std::string_view acceptedText);
    static JsonTree fromString(std::string_view utf8);
    static JsonTree fromBool(bool value);
    /// An object without members.
    static JsonTree emptyObject();
    /// An array without items.
    static JsonTree emptyArray();

    /// Compact JSON text.
    std::string text() const;

    bool isObject() const { return m_kind == Kind::Object; }
    bool isArray() const { return m_kind == Kind::Array; }
    /// The text of a string value; empty for any other kind.
    std::string stringValue() const;
    /// The items of an array, or the values of an object's members.
    std::vector<JsonTree>& values() { return m_values; }
    const std::vector<JsonTree>& values() const { return m_values; }

    /// The member of an object, the last one if several have the name; null if there is none or this is no object.
    JsonTree* find(std::string_view name);
    const JsonTree* find(std::string_view name) const;
    /// Replaces the member that `find` gives or appends one, and returns it. Only for objects.
    JsonTree& set(std::string_view name, JsonTree value);
    /// Takes away every member of that name.
    void remove(std::string_view name);

private:
    class Reader;
    enum class Kind { Scalar, Array, Object };

    Kind m_kind = Kind::Scalar;
    /// The JSON text of a scalar.
    std::string m_scalar = "null";
    /// The JSON texts of an object's names, quotes included.
    std::vector<std::string> m_names;
    /// Items of an array, or the values that belong to `m_names`.
    std::vector<JsonTree> m_values;

    std::size_t indexOf(std::string_view name) const;
    void appendTo(std::string& text) const;
};

} // namespace job_service
