#include "service/LaunchCheck.h"

#include "service/Instrument.h"
#include "service/JsonFields.h"
#include "service/LaunchStatus.h"
#include "service/TestNeeds.h"

namespace job_service {

namespace {

std::string obstacleOfModule(const Instrument& instrument, const TestNeeds::Module& needed)
{
    const Instrument::Module* module = instrument.module(needed.name);
    if (!module)
        return launch_status::module(needed.name);
    if (needed.version && module->version < needed.version->version)
        return launch_status::solutionVersion(needed.version->text, needed.name);
    if (!module->ready)
        return launch_status::unknown(needed.name);
    return {};
}

std::string obstacleOf(const Instrument& instrument, const TestNeeds& needs)
{
    if (needs.fieldmate)
        return launch_status::requiresFieldmate();
    if (needs.platformVersion && instrument.platformVersion < needs.platformVersion->version)
        return launch_status::platformVersion(needs.platformVersion->text);
    for (const std::string& option : needs.options) {
        if (instrument.options.count(option) == 0)
            return launch_status::option(option);
    }
    for (const TestNeeds::Module& module : needs.modules) {
        const std::string obstacle = obstacleOfModule(instrument, module);
        if (!obstacle.empty())
            return obstacle;
    }
    for (const std::string& file : needs.configurationFiles) {
        if (instrument.configurationFiles.count(file) == 0)
            return launch_status::configurationFile(file);
    }
    if (needs.power && instrument.availablePower && *instrument.availablePower < *needs.power)
        return launch_status::power();
    return {};
}

} // namespace

std::string launchObstacle(const Instrument& instrument, const nlohmann::json& test)
{
    if (!instrument.fault.empty())
        return launch_status::customFatal(instrument.fault);
    try {
        if (instrument.testTypes && instrument.testTypes->count(JsonFields(test).text("testType")) == 0)
            return launch_status::testNotFound();
        return obstacleOf(instrument, TestNeeds::of(test));
    } catch (const FieldRefused& refused) {
        return launch_status::invalidTestConfiguration(refused.what());
    }
}

} // namespace job_service
