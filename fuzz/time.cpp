#include "Check.h"
#include "script/ZenkaScript.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto seconds = zenka::script::ZenkaScript::parseTimeMMSS(text);
    check(!seconds || std::isfinite(*seconds));
    check(text.find_first_not_of(':') != text.npos || !seconds);
    return 0;
}
