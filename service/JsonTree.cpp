#include "service/JsonTree.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace job_service {

namespace {

constexpr std::size_t notFound = static_cast<std::size_t>(-1);

std::string decoded(const std::string& quoted)
{
    if (quoted.find('\\') == std::string::npos)
        return quoted.substr(1, quoted.size() - 2);
    return nlohmann::json::parse(quoted).get<std::string>();
}

std::string quoted(std::string_view text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace

/// Walks over accepted text. Recursion is bounded by the depth that was accepted.
class JsonTree::Reader
{
public:
    explicit Reader(std::string_view text) : m_text(text) { }

    JsonTree value()
    {
        skipSpace();
        JsonTree tree;
        if (peek() == '{')
            readObject(tree);
        else if (peek() == '[')
            readArray(tree);
        else
            tree.m_scalar = peek() == '"' ? string() : literal();
        return tree;
    }

private:
    std::string_view m_text;
    std::size_t m_position = 0;

    char peek() const { return m_position < m_text.size() ? m_text[m_position] : '\0'; }

    void skipSpace() { m_position = std::min(m_text.find_first_not_of(" \t\r\n", m_position), m_text.size()); }

    /// Steps over a separator and tells whether another item follows.
    bool separated()
    {
        skipSpace();
        return m_text[m_position++] == ',';
    }

    bool closesAtOnce(char closing)
    {
        ++m_position;
        skipSpace();
        if (peek() != closing)
            return false;
        ++m_position;
        return true;
    }

    void readObject(JsonTree& tree)
    {
        tree.m_kind = Kind::Object;
        if (closesAtOnce('}'))
            return;
        do {
            skipSpace();
            tree.m_names.push_back(string());
            skipSpace();
            ++m_position; // the colon
            tree.m_values.push_back(value());
        } while (separated());
    }

    void readArray(JsonTree& tree)
    {
        tree.m_kind = Kind::Array;
        if (closesAtOnce(']'))
            return;
        do
            tree.m_values.push_back(value());
        while (separated());
    }

    std::string string()
    {
        const std::size_t start = m_position++;
        while (peek() != '"')
            m_position += peek() == '\\' ? 2 : 1;
        ++m_position;
        return std::string(m_text.substr(start, m_position - start));
    }

    std::string literal()
    {
        const std::size_t start = m_position;
        m_position = std::min(m_text.find_first_of(",]} \t\r\n", start), m_text.size());
        return std::string(m_text.substr(start, m_position - start));
    }
};

JsonTree JsonTree::fromText(std::string_view acceptedText)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (acceptedText.substr(0, byteOrderMark.size()) == byteOrderMark)
        acceptedText.remove_prefix(byteOrderMark.size());
    return Reader(acceptedText).value();
}

JsonTree JsonTree::fromString(std::string_view utf8)
{
    JsonTree tree;
    tree.m_scalar = quoted(utf8);
    return tree;
}

JsonTree JsonTree::fromBool(bool value)
{
    JsonTree tree;
    tree.m_scalar = value ? "true" : "false";
    return tree;
}

JsonTree JsonTree::emptyObject()
{
    JsonTree tree;
    tree.m_kind = Kind::Object;
    return tree;
}

JsonTree JsonTree::emptyArray()
{
    JsonTree tree;
    tree.m_kind = Kind::Array;
    return tree;
}

std::string JsonTree::text() const
{
    std::string text;
    appendTo(text);
    return text;
}

void JsonTree::appendTo(std::string& text) const
{
    if (m_kind == Kind::Scalar) {
        text += m_scalar;
        return;
    }
    text += isObject() ? '{' : '[';
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        if (i > 0)
            text += ',';
        if (isObject())
            text.append(m_names[i]).append(1, ':');
        m_values[i].appendTo(text);
    }
    text += isObject() ? '}' : ']';
}

std::string JsonTree::stringValue() const
{
    return m_kind == Kind::Scalar && m_scalar.front() == '"' ? decoded(m_scalar) : std::string();
}

std::size_t JsonTree::indexOf(std::string_view name) const
{
    for (std::size_t i = m_names.size(); i-- > 0;) {
        if (decoded(m_names[i]) == name)
            return i;
    }
    return notFound;
}

JsonTree* JsonTree::find(std::string_view name)
{
    const std::size_t index = indexOf(name);
    return index == notFound ? nullptr : &m_values[index];
}

const JsonTree* JsonTree::find(std::string_view name) const
{
    const std::size_t index = indexOf(name);
    return index == notFound ? nullptr : &m_values[index];
}

JsonTree& JsonTree::set(std::string_view name, JsonTree value)
{
    std::size_t index = indexOf(name);
    if (index == notFound) {
        index = m_values.size();
        m_names.push_back(quoted(name));
        m_values.emplace_back();
    }
    return m_values[index] = std::move(value);
}

void JsonTree::remove(std::string_view name)
{
    for (std::size_t index = indexOf(name); index != notFound; index = indexOf(name)) {
        m_names.erase(m_names.begin() + static_cast<std::ptrdiff_t>(index));
        m_values.erase(m_values.begin() + static_cast<std::ptrdiff_t>(index));
    }
}

} // namespace job_service
