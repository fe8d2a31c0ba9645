#include "cameras/canon/CanonValues.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zenka::cameras::CanonValues {

namespace {

/// A value, and EDSDK's code for it. The order of the rows matters where two are equally near.
struct Row {
    double value;
    std::uint32_t code;
};

// clang-format off
constexpr std::array<Row, 35> isoRows{{ 
    {50, 0x40}, {100, 0x48}, {125, 0x4b}, {160, 0x4d}, {200, 0x50}, {250, 0x53}, {320, 0x55}, {400, 0x58},
    {500, 0x5b}, {640, 0x5d}, {800, 0x60}, {1000, 0x63}, {1250, 0x65}, {1600, 0x68}, {2000, 0x6b},
    {2500, 0x6d}, {3200, 0x70}, {4000, 0x73}, {5000, 0x75}, {6400, 0x78}, {8000, 0x7b}, {10000, 0x7d},
    {12800, 0x80}, {16000, 0x83}, {20000, 0x85}, {25600, 0x88}, {32000, 0x8b}, {40000, 0x8d}, {51200, 0x90},
    {64000, 0x93}, {80000, 0x95}, {102400, 0x98}, {204800, 0xa0}, {409600, 0xa8}, {819200, 0xb0},
}};
// clang-format on

// clang-format off
constexpr std::array<Row, 54> apertureRows{{ // f-number times 100
    {100, 0x08}, {110, 0x0b}, {120, 0x0c}, {120, 0x0d}, {140, 0x10}, {160, 0x13}, {180, 0x14}, {180, 0x15},
    {200, 0x18}, {220, 0x1b}, {250, 0x1c}, {250, 0x1d}, {280, 0x20}, {320, 0x23}, {340, 0x85}, {350, 0x24},
    {350, 0x25}, {400, 0x28}, {450, 0x2b}, {450, 0x2c}, {500, 0x2d}, {560, 0x30}, {630, 0x33}, {670, 0x34},
    {710, 0x35}, {800, 0x38}, {900, 0x3b}, {950, 0x3c}, {1000, 0x3d}, {1100, 0x40}, {1300, 0x43},
    {1300, 0x44}, {1400, 0x45}, {1600, 0x48}, {1800, 0x4b}, {1900, 0x4c}, {2000, 0x4d}, {2200, 0x50},
    {2500, 0x53}, {2700, 0x54}, {2900, 0x55}, {3200, 0x58}, {3600, 0x5b}, {3800, 0x5c}, {4000, 0x5d},
    {4500, 0x60}, {5100, 0x63}, {5400, 0x64}, {5700, 0x65}, {6400, 0x68}, {7200, 0x6b}, {7600, 0x6c},
    {8000, 0x6d}, {9100, 0x70},
}};
// clang-format on

// clang-format off
constexpr std::array<Row, 72> shutterRows{{ // seconds
    {30, 0x10}, {25, 0x13}, {20, 0x14}, {20, 0x15}, {15, 0x18}, {13, 0x1b}, {10, 0x1c}, {10, 0x1d},
    {8, 0x20}, {6, 0x23}, {6, 0x24}, {5, 0x25}, {4, 0x28}, {3.2, 0x2b}, {3, 0x2c}, {2.5, 0x2d}, {2, 0x30},
    {1.6, 0x33}, {1.5, 0x34}, {1.3, 0x35}, {1, 0x38}, {0.8, 0x3b}, {0.7, 0x3c}, {0.6, 0x3d}, {0.5, 0x40},
    {0.4, 0x43}, {0.3, 0x44}, {0.3, 0x45}, {1.0 / 4, 0x48}, {1.0 / 5, 0x4b}, {1.0 / 6, 0x4c},
    {1.0 / 6, 0x4d}, {1.0 / 8, 0x50}, {1.0 / 10, 0x53}, {1.0 / 13, 0x55}, {1.0 / 15, 0x58},
    {1.0 / 20, 0x5b}, {1.0 / 25, 0x5d}, {1.0 / 30, 0x60}, {1.0 / 40, 0x63}, {1.0 / 45, 0x64},
    {1.0 / 50, 0x65}, {1.0 / 60, 0x68}, {1.0 / 80, 0x6b}, {1.0 / 90, 0x6c}, {1.0 / 100, 0x6d},
    {1.0 / 125, 0x70}, {1.0 / 160, 0x73}, {1.0 / 180, 0x74}, {1.0 / 200, 0x75}, {1.0 / 250, 0x78},
    {1.0 / 320, 0x7b}, {1.0 / 350, 0x7c}, {1.0 / 400, 0x7d}, {1.0 / 500, 0x80}, {1.0 / 640, 0x83},
    {1.0 / 750, 0x84}, {1.0 / 800, 0x85}, {1.0 / 1000, 0x88}, {1.0 / 1250, 0x8b}, {1.0 / 1500, 0x8c},
    {1.0 / 1600, 0x8d}, {1.0 / 2000, 0x90}, {1.0 / 2500, 0x93}, {1.0 / 3000, 0x94}, {1.0 / 3200, 0x95},
    {1.0 / 4000, 0x98}, {1.0 / 5000, 0x9b}, {1.0 / 6000, 0x9c}, {1.0 / 6400, 0x9d}, {1.0 / 8000, 0xa0},
    {1.0 / 10000, 0xa3},
}};
// clang-format on

// clang-format off
constexpr std::array<Row, 41> expCompRows{{ // stops
    {0, 0x00}, {1.0 / 3, 0x03}, {1.0 / 2, 0x04}, {2.0 / 3, 0x05}, {1, 0x08}, {4.0 / 3, 0x0b},
    {3.0 / 2, 0x0c}, {5.0 / 3, 0x0d}, {2, 0x10}, {7.0 / 3, 0x13}, {5.0 / 2, 0x14}, {8.0 / 3, 0x15},
    {3, 0x18}, {10.0 / 3, 0x1b}, {7.0 / 2, 0x1c}, {11.0 / 3, 0x1d}, {4, 0x20}, {13.0 / 3, 0x23},
    {9.0 / 2, 0x24}, {14.0 / 3, 0x25}, {5, 0x28}, {-1.0 / 3, 0xfd}, {-1.0 / 2, 0xfc}, {-2.0 / 3, 0xfb},
    {-1, 0xf8}, {-4.0 / 3, 0xf5}, {-3.0 / 2, 0xf4}, {-5.0 / 3, 0xf3}, {-2, 0xf0}, {-7.0 / 3, 0xed},
    {-5.0 / 2, 0xec}, {-8.0 / 3, 0xeb}, {-3, 0xe8}, {-10.0 / 3, 0xe5}, {-7.0 / 2, 0xe4}, {-11.0 / 3, 0xe3},
    {-4, 0xe0}, {-13.0 / 3, 0xdd}, {-9.0 / 2, 0xdc}, {-14.0 / 3, 0xdb}, {-5, 0xd8},
}};
// clang-format on

template <typename Rows, typename Distance>
std::uint32_t nearest(const Rows& rows, Distance distance) {
    return std::ranges::min_element(rows, {}, distance)->code;
}

} // namespace

std::uint32_t isoCode(int iso) {
    return nearest(isoRows, [&](const Row& row) { return std::abs(row.value - iso); });
}

std::uint32_t apertureCode(double fNumber) {
    return nearest(apertureRows, [&](const Row& row) { return std::abs(row.value - fNumber * 100); });
}

std::uint32_t shutterCode(double seconds) {
    return nearest(shutterRows,
                   [&](const Row& row) { return std::abs(std::log(row.value) - std::log(seconds)); });
}

std::uint32_t expCompCode(double stops) {
    return nearest(expCompRows, [&](const Row& row) { return std::abs(row.value - stops); });
}

} // namespace zenka::cameras::CanonValues
