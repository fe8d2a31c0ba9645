#pragma once

#include "geo/GeoPoint.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::geo {

struct Place {
    std::string name;    ///< as locals write it in Latin letters, or the English name where there is one
    std::string country; ///< two letters of ISO 3166-1
    GeoPoint at;
    std::uint32_t population = 0; ///< 0 when unknown

    /// "Zaragoza, ES"
    std::string label() const { return name + ", " + country; }

    bool operator==(const Place&) const = default;
};

/// The places of the world with 5,000 people or more, and all capitals. Any thread; nothing is kept between
/// questions.
///
/// It reads the bytes of data/places.bin in place. After the frame of Bytes.h (letters "ZKPL", version 1,
/// extra: number of places) come, the biggest place first:
///   1. places of 16 bytes: i32 latitude and longitude in 1e-5 degrees, u32 population, two letters of the
///      country, u16 1 for a part of a place (a district), else 0.
///   2. u32 start of each name within 3, and the end.   3. names, UTF-8.
///   4. u32 start of each searched name within 5, and the end.
///   5. searched names, each between newlines: the names folded by the table of 8.
///   6. u32 number of the first entry of each of 180 bands of a degree from south to north, and the end.
///   7. u16 numbers of the places of a band from west to east; parts of places are left out.
///   8. letters of 8 bytes in order: u32 code point, four bytes of UTF-8 (filled up with 0) to search
///   instead.
class Gazetteer {
public:
    /// The bytes must outlive this. Of bytes that are no such file, or a damaged one, the answers are empty
    /// or, when the damage cannot be seen, wrong.
    explicit Gazetteer(std::string_view bytes);

    std::size_t size() const { return count_; }

    /// The nearest place within a distance; parts of a place do not count.
    std::optional<Place> nearest(double lat, double lon, double maxKm) const;

    /// Places by name, at most `limit`: those that begin with the text, then those that hold it, the bigger
    /// ones first each time. Case, accents, apostrophes and points do not matter and a hyphen is a blank. A
    /// comma and letters behind it ask for a country: "valencia, es". An empty text finds nothing.
    std::vector<Place> search(std::string_view text, std::size_t limit) const;

    /// The places with so many people or more, the biggest first; parts of a place are left out.
    std::vector<Place> biggest(std::uint32_t population) const;

private:
    /// The best so far; `place` is size() as long as there is none.
    struct Nearest {
        std::size_t place = 0;
        double km = 0;
    };
    void searchBand(std::size_t band, const GeoPoint& here, double west, double east, Nearest& best) const;
    GeoPoint positionOf(std::size_t place) const;
    std::string_view countryOf(std::size_t place) const;
    Place placeAt(std::size_t place) const;
    /// The text as names are searched, without blanks at the ends.
    std::string folded(std::string_view text) const;

    std::size_t count_ = 0;
    std::string_view records_;
    std::string_view nameOffsets_;
    std::string_view names_;
    std::string_view foldedOffsets_;
    std::string_view foldedNames_;
    std::string_view bandStarts_;
    std::string_view bandPlaces_;
    std::string_view letters_;
};

} // namespace zenka::geo
