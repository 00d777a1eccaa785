#include "client/ChangeCounter.h"

namespace job_client {

ChangeCounter::ChangeCounter(std::atomic<int>& given) : m_given(given)
{
}

int ChangeCounter::answered(std::int64_t counted, bool afterOutage)
{
    const auto ownCount = static_cast<std::uint32_t>(counted);
    if (afterOutage) {
        const auto given = static_cast<std::uint32_t>(m_given.load());
        // Unsigned, the steps -1, 0 and 1 lie side by side.
        const bool looksLikeOwnChange = ownCount + m_shift - given + 1 <= 2;
        if (looksLikeOwnChange)
            m_shift = given + 2 - ownCount;
    }
    m_last = ownCount + m_shift;
    return give(*m_last);
}

int ChangeCounter::unanswered()
{
    return give(m_last.value_or(0));
}

int ChangeCounter::give(std::uint32_t count)
{
    const auto given = static_cast<std::int32_t>(count);
    m_given = given;
    return given;
}

} // namespace job_client
