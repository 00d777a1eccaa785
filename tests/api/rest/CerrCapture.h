#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace jobmanager_test {

/// Takes what is written to std::cerr while it lives.
class CerrCapture
{
public:
    CerrCapture() : m_previous(std::cerr.rdbuf(m_text.rdbuf())) { }
    ~CerrCapture() { std::cerr.rdbuf(m_previous); }
    CerrCapture(const CerrCapture&) = delete;
    CerrCapture& operator=(const CerrCapture&) = delete;

    std::string text() const { return m_text.str(); }

private:
    std::ostringstream m_text;
    std::streambuf* m_previous;
};

/// Makes every write to std::cerr throw while it lives: the one way in which a read of a bad attribute can.
class CerrThatThrows
{
public:
    CerrThatThrows() : m_previous(std::cerr.rdbuf(&m_full)) { std::cerr.exceptions(std::ios::badbit); }
    ~CerrThatThrows()
    {
        std::cerr.exceptions(std::ios::goodbit);
        std::cerr.rdbuf(m_previous);
        std::cerr.clear();
    }
    CerrThatThrows(const CerrThatThrows&) = delete;
    CerrThatThrows& operator=(const CerrThatThrows&) = delete;

private:
    class Full : public std::streambuf
    {
        int_type overflow(int_type /*character*/) override { throw std::ios_base::failure("full"); }
        std::streamsize xsputn(const char* /*text*/, std::streamsize /*size*/) override
        {
            throw std::ios_base::failure("full");
        }
    };

    Full m_full;
    std::streambuf* m_previous;
};

/// What cdm::Attributes writes about an attribute that does not parse.
inline const std::string badAttributeText =
    "cdm::Attribute cdm::Attributes::getAttribute(const string&) const failed to parse attribute\n";

} // namespace jobmanager_test
