#include "cameras/CameraCatalog.h"

#include <array>

namespace zenka::cameras::CameraCatalog {

namespace {

constexpr auto lumix =
    std::to_array<std::string_view>({"DC-G9M2", "DC-GH7", "DC-GH6", "DC-GH5M2", "DC-GH5", "DC-G9", "DC-S1R",
                                     "DC-S1H", "DC-S1", "DC-S5M2", "DC-S5", "DC-S9"});
constexpr auto sony = std::to_array<std::string_view>(
    {"a1", "a9 III", "a7R V", "a7R IV", "a7 IV", "a7 III", "a7C II", "a7S III", "a6700", "a6400"});
constexpr auto nikon =
    std::to_array<std::string_view>({"Z9", "Z8", "Z6 III", "Z7 II", "Z6 II", "Zf", "Zfc", "D850", "D780"});
constexpr auto canon =
    std::to_array<std::string_view>({"EOS R5 II", "EOS R5", "EOS R6 II", "EOS R3", "EOS R8", "EOS R7",
                                     "EOS R10", "EOS 5D Mark IV", "EOS 90D", "EOS Ra"});
constexpr auto fujifilm =
    std::to_array<std::string_view>({"GFX 100 II", "GFX 100S", "X-T5", "X-H2", "X-H2S", "X-T4", "X-S20"});
constexpr auto olympus =
    std::to_array<std::string_view>({"OM-1 Mark II", "OM-1", "OM-5", "E-M1 Mark III", "E-M1X"});

constexpr std::array<Brand, 6> brands{{{"LUMIX", lumix},
                                       {"Sony", sony},
                                       {"Nikon", nikon},
                                       {"Canon", canon},
                                       {"Fujifilm", fujifilm},
                                       {"OM System / Olympus", olympus}}};

} // namespace

std::span<const Brand> byBrand() {
    return brands;
}

} // namespace zenka::cameras::CameraCatalog
