// A run log may hold anything: what is read of it is whole, and a damaged row costs no sound row behind it.
#include "Check.h"
#include "analysis/CsvRows.h"
#include "analysis/RunLogTables.h"
#include "base/Text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using namespace zenka::analysis;

constexpr std::string_view head = "camera_token,offset_sec,iso,f_number,shutter,result,comp_ev\n";
constexpr std::string_view soundRow = "CAM1,123456.789,320,5.6,1/500,ok,-2\n";
constexpr int soundKey = 12345679;

std::string quoted(std::string_view text) {
    return '"' + zenka::base::replacedAll(text, "\"", "\"\"") + '"';
}

void checkTables(std::string_view csv) {
    const auto lines = static_cast<std::size_t>(std::ranges::count(csv, '\n')) + 1;
    check(RunLogTables::parseRunLogVerdict(csv, "CAM1").size() <= lines);
    const auto compensated = RunLogTables::parseRunLogCompensated(csv, "CAM1");
    check(compensated.size() <= lines);
    for (const auto& [key, exposure] : compensated)
        check(std::isfinite(exposure.aperture) && std::isfinite(exposure.shutterSec) &&
              exposure.shutterSec >= 0 && (!exposure.bulb || exposure.shutterSec == 0));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    checkTables(text);

    // Whatever stands between the header and a sound row, the row counts.
    const std::string damaged = std::string(head) + std::string(text) + "\n" + std::string(soundRow);
    checkTables(damaged);
    check(RunLogTables::parseRunLogVerdict(damaged, "CAM1").at(soundKey));
    check(RunLogTables::parseRunLogCompensated(damaged, "CAM1").at(soundKey) ==
          LoggedExposure{.iso = 320, .aperture = 5.6, .shutterSec = 1 / 500.0, .bulb = false});

    CsvRows rows(text);
    while (const auto* row = rows.next())
        check(!row->empty());

    // Any text goes through a quoted field and comes out as it was.
    constexpr std::size_t longestField = 30'000;
    if (size > longestField)
        return 0;
    const std::string written = "a,b\n" + quoted(text) + ",x\r\ny," + quoted(text);
    CsvRows fields(written);
    for (const std::size_t place : {std::size_t{0}, std::size_t{1}}) {
        const auto* row = fields.next();
        check(row != nullptr && row->size() == 2 && (*row)[place] == text);
    }
    check(fields.next() == nullptr);
    return 0;
}
