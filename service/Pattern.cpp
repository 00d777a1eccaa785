#include "service/Pattern.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <memory>
#include <pcre2.h>

namespace job_service {

namespace {

constexpr std::size_t longestPattern = 16 * 1024;
/// Some tens of milliseconds; patterns that people write need a few hundred steps.
constexpr std::uint32_t mostSteps = 500000;

template <typename T> using Owned = std::unique_ptr<T, void (*)(T*)>;

PCRE2_SPTR8 bytes(const std::string& text)
{
    return reinterpret_cast<PCRE2_SPTR8>(text.data());
}

Owned<pcre2_code> compile(const std::string& pattern)
{
    // As the screens understand a pattern: it stands for the whole text, a dot for any character, \w for a letter
    // of any script.
    const std::uint32_t options = PCRE2_UTF | PCRE2_UCP | PCRE2_DOTALL | PCRE2_ANCHORED | PCRE2_ENDANCHORED;
    if (pattern.size() > longestPattern)
        return { nullptr, pcre2_code_free };
    int error = 0;
    PCRE2_SIZE position = 0;
    return { pcre2_compile(bytes(pattern), pattern.size(), options, &error, &position, nullptr), pcre2_code_free };
}

} // namespace

PatternMatch matchWhole(const std::string& pattern, const std::string& text)
{
    const Owned<pcre2_code> code = compile(pattern);
    if (!code)
        return PatternMatch::NoPattern;
    const Owned<pcre2_match_context> limits(pcre2_match_context_create(nullptr), pcre2_match_context_free);
    const Owned<pcre2_match_data> match(pcre2_match_data_create(1, nullptr), pcre2_match_data_free);
    if (!limits || !match)
        return PatternMatch::TooCostly;
    pcre2_set_match_limit(limits.get(), mostSteps);
    const int result = pcre2_match(code.get(), bytes(text), text.size(), 0, 0, match.get(), limits.get());
    if (result == PCRE2_ERROR_NOMATCH)
        return PatternMatch::No;
    return result < 0 ? PatternMatch::TooCostly : PatternMatch::Yes;
}

} // namespace job_service
