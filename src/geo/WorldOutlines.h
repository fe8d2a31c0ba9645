#pragma once

#include "geo/GeoPoint.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace zenka::geo {

/// Degrees. A west beyond the east spans the date line; 360 degrees or more from west to east are all round.
struct GeoBox {
    double south = -90;
    double west = -180;
    double north = 90;
    double east = 180;
};

using Polyline = std::vector<GeoPoint>;

/// A piece of land: closed rings (the last point is the first), to be filled by the even-odd rule.
struct LandArea {
    std::vector<Polyline> rings;
};

/// Scales of about 1:110 million, 1:50 million and 1:10 million.
enum class Detail { coarse, medium, fine };

/// The least detail that looks right when a pixel is so many degrees high.
Detail detailFor(double degreesPerPixel);

/// Coastlines and country borders for a map. Any thread; nothing is kept between questions.
///
/// The world is cut into tiles, so that an answer costs what lies in the box and not the whole of a
/// continent: land comes in pieces that fit together along the tiles, and no line runs on from one tile to
/// the next. Fill `land` without an outline and draw `coasts` over it, which leave out the cuts. Nothing
/// crosses the date line: for a view over it, shift one side by 360 degrees.
///
/// It reads the bytes of data/outlines.bin in place. After the frame of Bytes.h (letters "ZKOL", version 1,
/// extra: 3) come for each detail, the coarse one first:
///   1. u32 degrees that a tile is wide and high.
///   2. u32 start of each tile within 3, row by row from the south, each from the west, and the end.
///   3. tiles, all numbers varints; an empty one has no bytes: number of land areas, of each its number of
///      rings and the rings; number of borders, and the borders. A line is its number of points and of each
///      the signed steps of 1/400 degree from the one before, to the east and to the north, the first from
///      the tile's south-west corner.
class WorldOutlines {
public:
    /// The bytes must outlive this. Of bytes that are no such file the answers are empty; of a damaged one,
    /// what can be read, with no point outside its tile.
    explicit WorldOutlines(std::string_view bytes);

    /// What may be seen in a box: it may reach beyond it, and its extent overlaps the box.
    std::vector<LandArea> land(Detail detail, const GeoBox& box) const;
    std::vector<Polyline> coasts(Detail detail, const GeoBox& box) const;
    std::vector<Polyline> borders(Detail detail, const GeoBox& box) const;

private:
    struct Level {
        std::size_t tileDegrees = 0;
        std::string_view offsets;
        std::string_view tiles;
    };
    template <typename Visit>
    void forEachTile(Detail detail, const GeoBox& box, Visit visit) const;

    std::array<Level, 3> levels_;
};

} // namespace zenka::geo
