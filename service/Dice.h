#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace job_service {

/// Random numbers that are the same everywhere for a seed; the standard's distributions are not.
class Dice
{
public:
    explicit Dice(std::uint32_t seed) : m_engine(seed) { }

    std::size_t below(std::size_t bound) { return m_engine() % bound; }
    bool oneIn(std::size_t bound) { return below(bound) == 0; }
    template <typename List> auto pick(const List& list) { return list[below(list.size())]; }

private:
    std::mt19937 m_engine;
};

} // namespace job_service
