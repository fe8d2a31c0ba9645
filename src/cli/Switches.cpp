#include "cli/Switches.h"

#include "cli/Analyze.h"
#include "cli/AppIconFile.h"
#include "cli/CompileFile.h"
#include "cli/ExportWeb.h"
#include "cli/HorizonTest.h"
#include "cli/OgImage.h"
#include "cli/Rehearse.h"
#include "cli/SonyProbe.h"
#include "cli/UsbHolders.h"
#include "cli/UsbNames.h"
#include "cli/Validate.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zenka::cli {

namespace {

using Values = std::span<const std::string>;

/// A switch takes the values behind it, and is passed over when they are fewer than it needs or make no sense
/// to it.
struct Switch {
    std::string_view name;
    std::size_t needs;
    void (*run)(Values values);
    bool (*accepts)(Values values) = [](Values) { return true; };
};

// The order is fixed: of several switches given, the first of this table is run.
constexpr std::array<Switch, 11> switches{{
    {"--sony", 0, [](Values) { probeSony(); }},
    {"--usb-names", 0, [](Values) { printUsbNames(); }},
    {"--usb-holders", 0, [](Values values) { printUsbHolders(values.empty() ? "" : values[0]); }},
    {"--validate", 0, [](Values) { runValidation(); }},
    {"--compile", 1, [](Values values) { compileFile(values[0]); }},
    {"--horizon-test", 2, [](Values values) { printHorizon(*placeIn(values)); },
     [](Values values) { return placeIn(values).has_value(); }},
    {"--icon", 1, [](Values values) { renderAppIcon(values[0], 1024); }},
    {"--og", 1, [](Values values) { renderOGImage(values[0]); }},
    {"--analyze", 2, [](Values values) { analyzeCLI(values[0], values[1]); }},
    {"--export-web", 1, [](Values values) { exportWeb(values[0]); }},
    {"--rehearse", 1, [](Values values) { rehearse(values[0], values.subspan(1)); }},
}};

} // namespace

bool runSwitch(std::span<const std::string> arguments) {
    for (const Switch& known : switches) {
        const auto found = std::ranges::find(arguments, known.name);
        if (found == arguments.end())
            continue;
        const Values values = arguments.subspan(static_cast<std::size_t>(found - arguments.begin()) + 1);
        if (values.size() < known.needs || !known.accepts(values))
            continue;
        known.run(values);
        return true;
    }
    return false;
}

} // namespace zenka::cli
