#include "geo/Gazetteer.h"

#include "base/Text.h"
#include "geo/Bytes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zenka::geo {
namespace {

constexpr std::uint32_t version = 1;
constexpr std::size_t recordSize = 16;
constexpr std::size_t letterSize = 8;
constexpr int bandCount = 180;
constexpr double kmPerDegree = 111.19;

/// The index of the first of `count` numbers for which a rule does not hold.
template <typename Rule>
std::size_t partitionPoint(std::size_t first, std::size_t last, Rule holds) {
    while (first < last) {
        const std::size_t middle = first + (last - first) / 2;
        if (holds(middle)) {
            first = middle + 1;
        } else {
            last = middle;
        }
    }
    return first;
}

constexpr std::uint32_t noLetter = UINT32_MAX;

/// A letter of UTF-8 at the front of a text: its code point and its bytes. A byte that begins none is
/// no letter.
struct Letter {
    std::uint32_t point = 0;
    std::size_t size = 1;
};

Letter firstLetter(std::string_view text) {
    const auto byte = [&](std::size_t at) {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : std::uint32_t{0};
    };
    const std::uint32_t lead = byte(0);
    const std::size_t size = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : lead >= 0xc0 ? 2 : 1;
    if (size == 1 || size > text.size()) {
        return {lead < 0x80 ? lead : noLetter, 1};
    }
    std::uint32_t point = lead & (0xffU >> (size + 1));
    for (std::size_t i = 1; i < size; ++i) {
        point = point << 6 | (byte(i) & 0x3fU);
    }
    return {point, size};
}

/// The longitudes within a distance of a point, on either side of it.
double halfWidthDegrees(double lat, double km) {
    const double angle = km / kmPerDegree * std::numbers::pi / 180;
    const double ratio =
        std::sin(std::min(angle, std::numbers::pi / 2)) / std::cos(lat * std::numbers::pi / 180);
    return ratio < 1 ? std::asin(ratio) * 180 / std::numbers::pi : 180;
}

} // namespace

Gazetteer::Gazetteer(std::string_view bytes) {
    const auto file = readSections<8>(bytes, "ZKPL", version);
    if (!file || file->sections[0].size() / recordSize < file->extra) {
        return;
    }
    count_ = file->extra;
    records_ = file->sections[0];
    nameOffsets_ = file->sections[1];
    names_ = file->sections[2];
    foldedOffsets_ = file->sections[3];
    foldedNames_ = file->sections[4];
    bandStarts_ = file->sections[5];
    bandPlaces_ = file->sections[6];
    letters_ = file->sections[7];
}

std::optional<Place> Gazetteer::nearest(double lat, double lon, double maxKm) const {
    if (!std::isfinite(lon) || !(std::abs(lat) <= 90) || !(maxKm >= 0)) {
        return std::nullopt;
    }
    const GeoPoint here{lat, wrappedLongitude(lon)};
    const double reach = std::min(maxKm / kmPerDegree, 180.0);
    const int south = std::clamp(static_cast<int>(std::floor(lat - reach)) + 90, 0, bandCount - 1);
    const int north = std::clamp(static_cast<int>(std::floor(lat + reach)) + 90, 0, bandCount - 1);
    const double width = halfWidthDegrees(lat, maxKm);
    Nearest best{count_, maxKm};
    for (int band = south; band <= north; ++band) {
        // A stretch of longitudes and what of it lies beyond the date line.
        for (const double turn : {-360.0, 0.0, 360.0}) {
            searchBand(static_cast<std::size_t>(band), here, here.lon + turn - width, here.lon + turn + width,
                       best);
        }
    }
    return best.place < count_ ? std::optional<Place>(placeAt(best.place)) : std::nullopt;
}

void Gazetteer::searchBand(std::size_t band, const GeoPoint& here, double west, double east,
                           Nearest& best) const {
    const std::size_t end = std::min<std::size_t>(u32At(bandStarts_, 4 * band + 4), bandPlaces_.size() / 2);
    const std::size_t start = std::min<std::size_t>(u32At(bandStarts_, 4 * band), end);
    const auto isWestOfIt = [&](std::size_t entry) {
        return positionOf(u16At(bandPlaces_, 2 * entry)).lon < west;
    };
    for (std::size_t entry = partitionPoint(start, end, isWestOfIt); entry < end; ++entry) {
        const std::size_t place = u16At(bandPlaces_, 2 * entry);
        const GeoPoint there = positionOf(place);
        if (place >= count_ || there.lon > east) {
            return;
        }
        const double km = distanceKm(here, there);
        // Of two at one distance the bigger, wherever it stands.
        if (km < best.km || (km == best.km && place < best.place)) {
            best = {place, km};
        }
    }
}

std::vector<Place> Gazetteer::search(std::string_view text, std::size_t limit) const {
    const std::size_t comma = text.find(',');
    const std::string wanted = folded(text.substr(0, comma));
    const std::string country =
        comma == std::string_view::npos ? "" : base::uppered(base::trimmed(text.substr(comma + 1)));
    if (wanted.empty() || limit == 0) {
        return {};
    }
    std::vector<std::size_t> beginning;
    std::vector<std::size_t> holding;
    std::size_t place = 0;
    for (std::size_t at = foldedNames_.find(wanted);
         at != std::string_view::npos && beginning.size() < limit;) {
        // Names stand in the order of size, so what is found is found in that order.
        place = partitionPoint(place, count_, [&](std::size_t candidate) {
            return u32At(foldedOffsets_, 4 * candidate + 4) <= at;
        });
        if (place >= count_) {
            break;
        }
        if (countryOf(place).starts_with(country)) {
            if (u32At(foldedOffsets_, 4 * place) == at) {
                beginning.push_back(place);
            } else if (holding.size() < limit) {
                holding.push_back(place);
            }
        }
        ++place;
        at = foldedNames_.find(wanted, std::max<std::size_t>(u32At(foldedOffsets_, 4 * place), at + 1));
    }
    beginning.insert(beginning.end(), holding.begin(), holding.end());
    beginning.resize(std::min(beginning.size(), limit));
    std::vector<Place> found;
    std::transform(beginning.begin(), beginning.end(), std::back_inserter(found),
                   [&](std::size_t number) { return placeAt(number); });
    return found;
}

std::vector<Place> Gazetteer::biggest(std::uint32_t population) const {
    std::vector<Place> found;
    for (std::size_t place = 0; place < count_; ++place) {
        if (u32At(records_, recordSize * place + 8) < population) {
            break;
        }
        if (u16At(records_, recordSize * place + 14) == 0) {
            found.push_back(placeAt(place));
        }
    }
    return found;
}

GeoPoint Gazetteer::positionOf(std::size_t place) const {
    const auto degrees = [&](std::size_t offset) {
        return static_cast<std::int32_t>(u32At(records_, recordSize * place + offset)) / 1e5;
    };
    return {degrees(0), degrees(4)};
}

std::string_view Gazetteer::countryOf(std::size_t place) const {
    const std::size_t at = recordSize * place + 12;
    return slice(records_, at, at + 2);
}

Place Gazetteer::placeAt(std::size_t place) const {
    const std::string_view name =
        slice(names_, u32At(nameOffsets_, 4 * place), u32At(nameOffsets_, 4 * place + 4));
    return {std::string(name), std::string(countryOf(place)), positionOf(place),
            u32At(records_, recordSize * place + 8)};
}

std::string Gazetteer::folded(std::string_view text) const {
    std::string result;
    while (!text.empty()) {
        const Letter letter = firstLetter(text);
        // Newlines stand between the names.
        std::string_view replacement = letter.point < ' ' ? " " : text.substr(0, letter.size);
        const std::size_t count = letters_.size() / letterSize;
        const std::size_t found = partitionPoint(
            0, count, [&](std::size_t i) { return u32At(letters_, letterSize * i) < letter.point; });
        if (found < count && u32At(letters_, letterSize * found) == letter.point) {
            replacement = slice(letters_, letterSize * found + 4, letterSize * found + 8);
            replacement = replacement.substr(0, replacement.find('\0'));
        }
        if (replacement != " " || !result.ends_with(' ')) {
            result += replacement;
        }
        text.remove_prefix(letter.size);
    }
    return std::string(base::trimmed(result));
}

} // namespace zenka::geo
