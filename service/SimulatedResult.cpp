#include "service/SimulatedResult.h"

#include "api/cdm/JsonText.h"
#include "service/Dice.h"

#include <array>
#include <nlohmann/json.hpp>
#include <string_view>

namespace job_service {

namespace {

using nlohmann::json;

/// One figure of the result data, in tenths.
struct Measure
{
    const char* name;
    int lowest;
    int highest;
};

/// The figures of a family of tests, and the types that belong to it: those whose token holds one of the words.
struct Family
{
    std::array<std::string_view, 8> words;
    std::array<Measure, 3> measures;
};

constexpr std::array<Family, 4> families{ {
    { { "otdr", "olts", "splice", "inspection", "returnLoss", "mpo", "vfl", "fiber" },
        { { { "lengthKm", 2, 400 }, { "lossDb", 1, 120 }, { "returnLossDb", 300, 550 } } } },
    { { "pon", "opm", "cwdm", "optical", "otn", "", "", "" },
        { { { "levelDbm", -290, -30 }, { "wavelengthShiftNm", 0, 9 }, { "driftDb", 0, 5 } } } },
    { { "eth", "y1564", "rfc2544", "l2cp", "ptp", "syncE", "Delay", "Ber" },
        { { { "throughputMbps", 1000, 10000 }, { "latencyUs", 5, 900 }, { "frameLossPercent", 0, 1 } } } },
    { { "coax", "docsis", "sweep", "ingress", "hum", "noise", "leakage", "wifi" },
        { { { "levelDbuV", 550, 780 }, { "merDb", 280, 420 }, { "tiltDb", 0, 60 } } } },
} };

constexpr std::array<Measure, 3> otherMeasures{ { { "value", 0, 1000 }, { "resistanceOhm", 1, 900 },
    { "noiseDb", 0, 90 } } };

bool belongsTo(const Family& family, std::string_view testType)
{
    for (const std::string_view word : family.words) {
        if (!word.empty() && testType.find(word) != std::string_view::npos)
            return true;
    }
    return false;
}

const std::array<Measure, 3>& measuresOf(std::string_view testType)
{
    for (const Family& family : families) {
        if (belongsTo(family, testType))
            return family.measures;
    }
    return otherMeasures;
}

/// FNV-1a. The parts are kept apart, so that "1" and "23" give another number than "12" and "3".
std::uint32_t hashOf(std::initializer_list<std::string> parts)
{
    std::uint32_t hash = 2166136261u;
    for (const std::string& part : parts) {
        for (const char character : part + '\0')
            hash = (hash ^ static_cast<unsigned char>(character)) * 16777619u;
    }
    return hash;
}

/// How many simulated runs the results count.
unsigned runsOf(const JsonTree& target)
{
    const JsonTree* results = target.find("results");
    const JsonTree* data = results ? results->find("data") : nullptr;
    const JsonTree* run = data ? data->find("run") : nullptr;
    const json count = run ? json::parse(run->text()) : json();
    constexpr unsigned most = 1000000;
    return count.is_number_unsigned() && count.get<std::uint64_t>() < most ? count.get<unsigned>() : 0;
}

double tenths(Dice& dice, const Measure& measure)
{
    const auto span = static_cast<std::size_t>(measure.highest - measure.lowest + 1);
    return (measure.lowest + static_cast<int>(dice.below(span))) / 10.0;
}

} // namespace

TestOutcome simulatedOutcome(std::uint32_t seed, const TestToRun& test)
{
    const JsonTree* typeMember = test.test.find("testType");
    const std::string testType = typeMember ? typeMember->stringValue() : std::string();
    const unsigned run = runsOf(test.target()) + 1;
    Dice dice(hashOf({ std::to_string(seed), test.jobId, test.uiIndex, testType, std::to_string(run) }));
    const bool passed = !dice.oneIn(7);

    json data{ { "simulated", true }, { "run", run } };
    for (const Measure& measure : measuresOf(testType))
        data[measure.name] = tenths(dice, measure);
    data["marginDb"] = tenths(dice, passed ? Measure{ "", 1, 60 } : Measure{ "", -60, -1 });
    return { passed ? "pass" : "fail", JsonTree::fromText(cdm::dumpJson(data)), {} };
}

} // namespace job_service
