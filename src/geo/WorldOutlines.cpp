#include "geo/WorldOutlines.h"

#include "geo/Bytes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace zenka::geo {
namespace {

constexpr std::uint32_t outlinesVersion = 1;
constexpr std::int64_t unitsPerDegree = 400;

struct Span {
    double low = 0;
    double high = 0;

    bool meets(double from, double to) const { return from <= high && to >= low; }
};

/// A box with its longitudes in one or two stretches of -180 to 180.
class View {
public:
    explicit View(const GeoBox& box) : lats_{box.south, box.north} {
        if (!std::isfinite(box.west) || !std::isfinite(box.east) || !(box.south <= box.north)) {
            return;
        }
        if (box.east - box.west >= 360) {
            lons_ = {Span{-180, 180}};
            return;
        }
        const double west = wrappedLongitude(box.west);
        const double east = wrappedLongitude(box.east);
        if (west <= east) {
            lons_ = {Span{west, east}};
        } else {
            lons_ = {Span{west, 180}, Span{-180, east}};
        }
    }

    bool meets(double south, double west, double north, double east) const {
        return lats_.meets(south, north) && std::any_of(lons_.begin(), lons_.end(), [&](const Span& lons) {
                   return lons.meets(west, east);
               });
    }

    bool meets(const Polyline& line) const {
        if (line.empty()) {
            return false;
        }
        const auto [south, north] =
            std::minmax_element(line.begin(), line.end(), [](auto& a, auto& b) { return a.lat < b.lat; });
        const auto [west, east] =
            std::minmax_element(line.begin(), line.end(), [](auto& a, auto& b) { return a.lon < b.lon; });
        return meets(south->lat, west->lon, north->lat, east->lon);
    }

private:
    Span lats_;
    std::vector<Span> lons_;
};

/// Reads the lines of one tile.
class Tile {
public:
    Tile(std::string_view bytes, double south, double west, std::size_t degrees)
        : in_(bytes), south_(south), west_(west), side_(static_cast<std::int64_t>(degrees) * unitsPerDegree) {
    }

    bool ok() const { return in_.ok(); }
    std::uint32_t count() { return in_.varint(); }

    Polyline line() {
        Polyline points;
        std::int64_t x = 0;
        std::int64_t y = 0;
        for (std::uint32_t left = count(); left > 0; --left) {
            x += in_.signedVarint();
            y += in_.signedVarint();
            if (!in_.ok() || x < 0 || x > side_ || y < 0 || y > side_) {
                return {};
            }
            points.push_back({south_ + static_cast<double>(y) / unitsPerDegree,
                              west_ + static_cast<double>(x) / unitsPerDegree});
        }
        return points;
    }

    /// The next land area; only its closed rings.
    LandArea area() {
        LandArea land;
        for (std::uint32_t left = count(); left > 0 && ok(); --left) {
            Polyline ring = line();
            if (ring.size() > 3 && ring.front() == ring.back()) {
                land.rings.push_back(std::move(ring));
            }
        }
        return land;
    }

    /// Whether both points are on one side of the tile: the line between them is no coast but a cut.
    bool isCut(const GeoPoint& a, const GeoPoint& b) const {
        const double size = static_cast<double>(side_) / unitsPerDegree;
        return (a.lon == b.lon && (a.lon == west_ || a.lon == west_ + size)) ||
               (a.lat == b.lat && (a.lat == south_ || a.lat == south_ + size));
    }

private:
    ByteCursor in_;
    double south_;
    double west_;
    std::int64_t side_;
};

/// A ring without its cuts, as the lines that are left.
void addCoasts(const Polyline& ring, const Tile& tile, const View& view, std::vector<Polyline>& coasts) {
    Polyline piece;
    const auto finish = [&] {
        if (piece.size() > 1 && view.meets(piece)) {
            coasts.push_back(piece);
        }
        piece.clear();
    };
    for (std::size_t i = 0; i < ring.size(); ++i) {
        if (i > 0 && tile.isCut(ring[i - 1], ring[i])) {
            finish();
        }
        piece.push_back(ring[i]);
    }
    finish();
}

} // namespace

Detail detailFor(double degreesPerPixel) {
    return degreesPerPixel > 0.15 ? Detail::coarse : degreesPerPixel > 0.02 ? Detail::medium : Detail::fine;
}

WorldOutlines::WorldOutlines(std::string_view bytes) {
    const auto file = readSections<9>(bytes, "ZKOL", outlinesVersion);
    if (!file || file->extra != levels_.size()) {
        return;
    }
    for (std::size_t i = 0; i < levels_.size(); ++i) {
        const std::size_t degrees = u32At(file->sections[3 * i], 0);
        if (degrees > 0 && 180 % degrees == 0) {
            levels_[i] = {degrees, file->sections[3 * i + 1], file->sections[3 * i + 2]};
        }
    }
}

std::vector<LandArea> WorldOutlines::land(Detail detail, const GeoBox& box) const {
    std::vector<LandArea> found;
    forEachTile(detail, box, [&](Tile& tile, const View& view) {
        for (std::uint32_t left = tile.count(); left > 0 && tile.ok(); --left) {
            LandArea area = tile.area();
            if (std::any_of(area.rings.begin(), area.rings.end(),
                            [&](const Polyline& ring) { return view.meets(ring); })) {
                found.push_back(std::move(area));
            }
        }
    });
    return found;
}

std::vector<Polyline> WorldOutlines::coasts(Detail detail, const GeoBox& box) const {
    std::vector<Polyline> found;
    forEachTile(detail, box, [&](Tile& tile, const View& view) {
        for (std::uint32_t left = tile.count(); left > 0 && tile.ok(); --left) {
            for (const Polyline& ring : tile.area().rings) {
                addCoasts(ring, tile, view, found);
            }
        }
    });
    return found;
}

std::vector<Polyline> WorldOutlines::borders(Detail detail, const GeoBox& box) const {
    std::vector<Polyline> found;
    forEachTile(detail, box, [&](Tile& tile, const View& view) {
        for (std::uint32_t left = tile.count(); left > 0 && tile.ok(); --left) {
            tile.area();
        }
        for (std::uint32_t left = tile.count(); left > 0 && tile.ok(); --left) {
            Polyline line = tile.line();
            if (line.size() > 1 && view.meets(line)) {
                found.push_back(std::move(line));
            }
        }
    });
    return found;
}

template <typename Visit>
void WorldOutlines::forEachTile(Detail detail, const GeoBox& box, Visit visit) const {
    const Level& level = levels_[static_cast<std::size_t>(detail)];
    if (level.tileDegrees == 0) {
        return;
    }
    const View view(box);
    const auto size = static_cast<double>(level.tileDegrees);
    const std::size_t columns = 360 / level.tileDegrees;
    for (std::size_t number = 0; number < columns * columns / 2; ++number) {
        const std::size_t row = number / columns;
        const double south = -90 + size * static_cast<double>(row);
        const double west = -180 + size * static_cast<double>(number % columns);
        if (!view.meets(south, west, south + size, west + size)) {
            continue;
        }
        Tile tile(slice(level.tiles, u32At(level.offsets, 4 * number), u32At(level.offsets, 4 * number + 4)),
                  south, west, level.tileDegrees);
        visit(tile, view);
    }
}

} // namespace zenka::geo
