#include "geo/TimeZoneAreas.h"

#include "geo/Bytes.h"
#include "geo/GeoPoint.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace zenka::geo {
namespace {

constexpr std::uint32_t timeZonesVersion = 1;
constexpr std::size_t gridSize = 512;
constexpr double edgeLon = 179.9999;
constexpr double edgeLat = 89.9999;
constexpr double stepsX = 4096;
constexpr double stepsY = 2048;
constexpr std::uint32_t firstCellValue = 0x8000;
constexpr std::size_t runSize = 4;
// One mask bit each.
constexpr std::size_t mostZonesInCell = 32;

/// Where a coordinate falls on an axis of the grid, in cells.
double gridPosition(double value, double edge) {
    return (std::clamp(value, -edge, edge) + edge) / (2 * edge) * gridSize;
}

std::size_t cellOf(double position) {
    return std::min(gridSize - 1, static_cast<std::size_t>(position));
}

} // namespace

TimeZoneAreas::TimeZoneAreas(std::string_view bytes) {
    if (const auto file = readSections<5>(bytes, "ZKTZ", timeZonesVersion)) {
        zoneCount_ = file->extra;
        names_ = file->sections[0];
        rows_ = file->sections[1];
        runs_ = file->sections[2];
        cellOffsets_ = file->sections[3];
        cells_ = file->sections[4];
    }
}

std::optional<std::string> TimeZoneAreas::zoneAt(double lat, double lon) const {
    if (!readable() || !std::isfinite(lon) || !(std::abs(lat) <= 90)) {
        return std::nullopt;
    }
    const double x = gridPosition(wrappedLongitude(lon), edgeLon);
    const double y = gridPosition(lat, edgeLat);
    const std::size_t column = cellOf(x);
    const std::size_t row = cellOf(y);
    const std::uint32_t value = gridValue(column, row);
    if (value == 0) {
        return std::nullopt;
    }
    if (value < firstCellValue) {
        return name(value - 1);
    }
    const auto zone = zoneInCell(value - firstCellValue, (x - static_cast<double>(column)) * stepsX,
                                 (y - static_cast<double>(row)) * stepsY);
    return zone ? name(*zone) : std::nullopt;
}

std::optional<std::string> TimeZoneAreas::name(std::size_t zone) const {
    if (zone >= zoneCount_) {
        return std::nullopt;
    }
    const std::size_t text = 2 * (zoneCount_ + 1);
    const std::string_view found =
        slice(names_, text + u16At(names_, 2 * zone), text + u16At(names_, 2 * zone + 2));
    return found.empty() ? std::nullopt : std::optional<std::string>(found);
}

std::uint32_t TimeZoneAreas::gridValue(std::size_t column, std::size_t row) const {
    const std::size_t runCount = runs_.size() / runSize;
    std::size_t low = u32At(rows_, 4 * row);
    std::size_t high = std::min<std::size_t>(u32At(rows_, 4 * row + 4), runCount);
    if (low >= high) {
        return 0;
    }
    // the last run that begins at the column or before
    while (high - low > 1) {
        const std::size_t middle = low + (high - low) / 2;
        (u16At(runs_, middle * runSize) <= column ? low : high) = middle;
    }
    const std::size_t start = u16At(runs_, low * runSize);
    const std::uint32_t value = u16At(runs_, low * runSize + 2);
    if (start > column) {
        return 0;
    }
    return value < firstCellValue ? value : value + static_cast<std::uint32_t>(column - start);
}

std::optional<std::size_t> TimeZoneAreas::zoneInCell(std::size_t cell, double x, double y) const {
    ByteCursor in(slice(cells_, u32At(cellOffsets_, 4 * cell), u32At(cellOffsets_, 4 * cell + 4)));
    const std::size_t count = in.varint();
    if (count > mostZonesInCell) {
        return std::nullopt;
    }
    std::array<std::uint32_t, mostZonesInCell> zones{};
    std::generate_n(zones.begin(), count, [&] { return in.varint(); });

    std::uint32_t inside = 0;
    for (std::uint32_t line = in.varint(); line > 0 && in.ok(); --line) {
        const std::uint32_t mask = in.varint();
        std::uint32_t points = in.varint();
        double ax = static_cast<double>(in.signedVarint());
        double ay = static_cast<double>(in.signedVarint());
        for (; points > 1 && in.ok(); --points) {
            const double bx = ax + static_cast<double>(in.signedVarint());
            const double by = ay + static_cast<double>(in.signedVarint());
            if ((ay > y) != (by > y) && x < ax + (y - ay) / (by - ay) * (bx - ax)) {
                inside ^= mask;
            }
            ax = bx;
            ay = by;
        }
    }
    const auto first = static_cast<std::size_t>(std::countr_zero(inside));
    if (!in.ok() || first >= count) {
        return std::nullopt;
    }
    return zones[first];
}

} // namespace zenka::geo
