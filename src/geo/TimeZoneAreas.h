#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zenka::geo {

/// Which time zone a point of the Earth is in. Any thread; nothing is kept between questions.
///
/// It reads the bytes of data/timezones.bin in place. After the frame of Bytes.h (letters "ZKTZ", version 1,
/// extra: number of zones) come:
///   1. names: u16 end of each name, counted from the first name, after a leading 0; then the names.
///   2. rows: u32 number of the first run of each of 512 rows from south to north, and the number of runs.
///   3. runs: u16 first column, u16 value; a run goes on to the next one or to the row's end. Columns go
///      from west to east. A value is 0 for no zone, 1 + number of a zone, or 0x8000 + number of the run's
///      first cell; its further columns have the cells that follow.
///   4. cell offsets: u32 start of each cell within 5, and the end.
///   5. cells, all numbers varints: number of zones, zones; number of lines; of each line a mask of those
///      zones (bit 0 the first) that have it as an edge, number of points, and of each point the signed steps
///      from the one before, x then y, the first from the south-west corner. A cell is 4096 by 2048 steps.
/// A zone has a point when a ray from it to the east meets an odd number of the zone's edges; edges that no
/// such ray can meet are left out. Of several zones the first counts. The grid covers ±179.9999 and ±89.9999
/// degrees; what is beyond belongs to its outermost row and column.
class TimeZoneAreas {
public:
    /// The bytes must outlive this. Of bytes that are no such file, or a damaged one, the answer is nothing
    /// or, when the damage cannot be seen, a wrong one.
    explicit TimeZoneAreas(std::string_view bytes);

    /// Whether the frame of the bytes is sound.
    bool readable() const { return zoneCount_ > 0; }

    /// The IANA identifier at a point in degrees; nothing at sea beyond 12 nautical miles, in no man's land,
    /// or for a latitude that is none. Longitudes may be of any turn. Borders are right to about 40 m.
    std::optional<std::string> zoneAt(double lat, double lon) const;

private:
    std::optional<std::string> name(std::size_t zone) const;
    std::uint32_t gridValue(std::size_t column, std::size_t row) const;
    std::optional<std::size_t> zoneInCell(std::size_t cell, double x, double y) const;

    std::size_t zoneCount_ = 0;
    std::string_view names_;
    std::string_view rows_;
    std::string_view runs_;
    std::string_view cellOffsets_;
    std::string_view cells_;
};

} // namespace zenka::geo
