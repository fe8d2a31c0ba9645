#include "Check.h"
#include "exposure/ExposureScales.h"
#include "script/ZenkaScript.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto shutter = zenka::script::ZenkaScript::parseShutter(text);
    check(std::isfinite(shutter.seconds) && (!shutter.bulb || shutter.seconds == 0));
    const auto choice = zenka::exposure::readShutterChoice(text);
    check(!choice || std::isfinite(*choice));
    check(!zenka::exposure::shutterLabel(shutter.seconds).empty());
    check(zenka::exposure::shutterSeconds(zenka::exposure::snapToStandard(shutter.seconds)) > 0);
    return 0;
}
