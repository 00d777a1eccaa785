#include "service/JobGenerator.h"

#include "api/cdm/JsonText.h"
#include "service/Dice.h"
#include "service/JobDocument.h"
#include "service/UtcTime.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace job_service {

namespace {

using nlohmann::json;

struct TestKind
{
    const char* type;
    const char* name;
    const char* description;
    const char* configuration;
};

constexpr std::array<TestKind, 8> testKinds{ {
    { "otdr", "OTDR", "Measure the span from both ends", "wavelength=1310 nm\nwavelength=1550 nm\nrange=20 km" },
    { "opticalPower", "Optical power", "Check the level at the splitter", "wavelength=1490 nm\nlimit=-27 dBm" },
    { "fiberInspection", "Fiber inspection", "Inspect the end face before mating", "profile=SM UPC" },
    { "copperTdr", "Copper TDR", "Find bridged taps", "cable=0.4 mm PE\nrange=2 km" },
    { "ethernetThroughput", "Ethernet throughput", "Run the service activation test",
        "rate=1000 Mbit/s\nframe=64,512,1518" },
    { "coaxLevel", "Coax level", "Sweep the downstream channels", "plan=EU 8 MHz" },
    { "wifiSurvey", "Wi-Fi survey", "Survey every room with the gateway in place", "bands=2.4,5 GHz" },
    { "manual", "Visual check", "Take a picture of the finished work", "" },
} };

constexpr std::array<const char*, 8> customers{ "Nordwind Netze", "Harbour Cable Co.", "Câble du Midi",
    "Stadtwerke Lindental", "Blue Ridge Fiber", "Telefónica Rural Sur", "Øresund Bredbånd", "Kowalski i Synowie" };
constexpr std::array<const char*, 5> workflows{ "Installation", "Repair", "Service activation", "Acceptance",
    "Preventive maintenance" };
constexpr std::array<const char*, 4> states{ "assigned", "accepted", "inProgress", "completed" };
constexpr std::array<const char*, 6> technicians{ "t-0107", "t-0112", "t-0131", "t-0140", "t-0166", "t-0201" };
constexpr std::array<const char*, 6> sites{ "Central office", "Street cabinet 14", "Splitter 3B", "Riser, floor 2",
    "Customer premises", "Manhole 77" };

/// 37 minutes from job to job, in a past that does not move.
std::string timeOf(std::size_t number, std::size_t minutesLater)
{
    using namespace std::chrono;
    const auto begin = system_clock::time_point(seconds(1767254400)); // 2026-01-01T08:00:00Z
    return utcText(begin + minutes(37 * number + minutesLater));
}

std::string idOf(std::size_t number)
{
    char id[32];
    std::snprintf(id, sizeof id, "GEN-%07zu", number);
    return id;
}

json attribute(const std::string& label, const std::string& value, const char* valueType, std::size_t order)
{
    return { { "label", label }, { "value", value }, { "valueType", valueType }, { "editable", true },
        { "visible", true }, { "orderIndex", order } };
}

json jobAttributes(Dice& dice)
{
    json attributes = json::object();
    attributes["accessCode"] = attribute("Access code", std::to_string(1000 + dice.below(9000)), "string", 0);
    attributes["fiberCount"] = attribute("Fibers", std::to_string(12 * (1 + dice.below(8))), "number", 1);
    json priority = attribute("Priority", dice.oneIn(4) ? "high" : "normal", "string", 2);
    priority["validValues"] = { "low", "normal", "high" };
    attributes["priority"] = std::move(priority);
    return attributes;
}

json results(Dice& dice, std::size_t number, std::size_t minutesLater)
{
    const bool passed = !dice.oneIn(7);
    return { { "status", passed ? "pass" : "fail" }, { "time", timeOf(number, minutesLater) },
        { "data", { { "margin", static_cast<double>(dice.below(120)) / 10.0 }, { "verdict", passed } } } };
}

json generatedTest(Dice& dice, std::size_t number, std::size_t index, std::size_t percentDone)
{
    const TestKind& kind = testKinds[dice.below(testKinds.size())];
    const std::string uiIndex = std::to_string(index);
    json test{ { "testType", kind.type }, { "testTypeDisplayName", kind.name }, { "description", kind.description },
        { "site", dice.pick(sites) }, { "configuration", kind.configuration }, { "required", !dice.oneIn(5) },
        { "uiIndex", uiIndex } };
    const bool done = dice.below(100) < percentDone;
    if (!dice.oneIn(3)) {
        if (done)
            test["results"] = results(dice, number, index);
        return test;
    }
    json locations = json::array();
    for (std::size_t l = 0, count = 1 + dice.below(3); l < count; ++l) {
        json location{ { "location", "Port " + std::to_string(l + 1) },
            { "uiIndex", uiIndex + "_" + std::to_string(l) } };
        if (done)
            location["results"] = results(dice, number, index + l);
        locations.push_back(std::move(location));
    }
    test["testLocations"] = std::move(locations);
    return test;
}

} // namespace

json generatedJob(std::size_t number, std::size_t tests)
{
    Dice dice(static_cast<std::uint32_t>(20260301 + number));
    constexpr std::array<std::size_t, 4> progress{ 0, 0, 50, 100 };
    const std::size_t percentDone = dice.pick(progress);
    const char* technician = dice.pick(technicians);
    json details{ { "id", idOf(number) }, { "timestamp", timeOf(number, 0) },
        { "techInfo", { { "techId", technician } } }, { "contractorId", "c-" + std::to_string(10 + dice.below(90)) },
        { "workOrderLabel", "Work order" }, { "workflowTypeName", dice.pick(workflows) },
        { "customerName", dice.pick(customers) }, { "managedByInfo", "Dispatch" },
        { "managementState", dice.pick(states) }, { "teamTechIds", { technician, dice.pick(technicians) } },
        { "archived", dice.oneIn(8) }, { "modifiedOn", timeOf(number, 25) },
        { "jobManagerAttributes", jobAttributes(dice) } };
    json list = json::array();
    for (std::size_t index = 0; index < tests; ++index)
        list.push_back(generatedTest(dice, number, index, percentDone));
    return { { "cdmVersion", "2.2" }, { "details", std::move(details) }, { "tests", std::move(list) } };
}

std::size_t generateJobs(JobStore& store, const GenerateSize& size, const std::function<void()>& beforeEach)
{
    std::size_t number = 0;
    const auto next = [&]() -> std::optional<StoredJob> {
        if (number == size.jobs)
            return std::nullopt;
        beforeEach();
        const json document = generatedJob(number++, size.tests);
        return storedJob(document, cdm::dumpJson(document));
    };
    return store.addJobs(next, [](const std::string&) {});
}

} // namespace job_service
