#include "gps/NMEA.h"

#include "base/CivilTime.h"
#include "base/Text.h"

#include <algorithm>
#include <vector>

namespace zenka::gps::NMEA {

namespace {

using Fields = std::vector<std::string_view>;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Digits with one point at most, as fields of this format have them: no sign and no exponent.
bool isUnsignedDecimal(std::string_view text) {
    return !text.empty() && isDigit(text.front()) &&
           std::ranges::all_of(text, [](char c) { return isDigit(c) || c == '.'; });
}

std::optional<int> wholeWithin(std::string_view text, int lowest, int highest) {
    if (text.empty() || !std::ranges::all_of(text, isDigit))
        return std::nullopt;
    const auto value = base::readInteger(text);
    return value && *value >= lowest && *value <= highest ? value : std::nullopt;
}

std::optional<double> numberWithin(std::string_view text, double lowest, double highest) {
    if (!isUnsignedDecimal(text.substr(lowest < 0 && text.starts_with('-') ? 1 : 0)))
        return std::nullopt;
    const auto value = base::readNumber(text);
    return value && *value >= lowest && *value <= highest ? value : std::nullopt;
}

/// More satellites than all systems together have up.
constexpr int mostSatellites = 200;
/// Receivers write 99.99 for "unknown".
constexpr double worstHdop = 100;
/// Metres. A bad fix of a receiver on the ground can lie some hundred metres below it.
constexpr double lowestAltitudeM = -2000;
constexpr double highestAltitudeM = 20'000;

template <typename T>
void takeInto(std::optional<T>& target, std::optional<T> value) {
    if (value)
        target = value;
}

void takePosition(const Fields& fields, std::size_t first, GPSFix& fix) {
    takeInto(fix.lat, coord(fields[first], fields[first + 1], 2));
    takeInto(fix.lon, coord(fields[first + 2], fields[first + 3], 3));
}

// $GPRMC,123519.50,A,4807.038,N,01131.000,E,022.4,084.4,230326,003.1,W*40
//        time      status lat       lon       speed course date  variation
bool applyRMC(const Fields& fields, GPSFix& fix) {
    if (fields.size() <= 9)
        return false;
    fix.hasFix = fields[2] == "A";
    if (!fix.hasFix)
        return true;
    takeInto(fix.utc, rmcDate(fields[1], fields[9]));
    takePosition(fields, 3, fix);
    return true;
}

// $GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47
//        time   lat        lon         quality, satellites, HDOP, altitude, geoid
bool applyGGA(const Fields& fields, GPSFix& fix) {
    if (fields.size() <= 10)
        return false;
    if (const auto used = wholeWithin(fields[7], 0, mostSatellites))
        fix.satsUsed = *used;
    takeInto(fix.hdop, numberWithin(fields[8], 0, worstHdop));
    constexpr int lastQuality = 9;
    if (wholeWithin(fields[6], 1, lastQuality)) {
        fix.hasFix = true;
        takePosition(fields, 2, fix);
        takeInto(fix.altitudeM, numberWithin(fields[9], lowestAltitudeM, highestAltitudeM));
    }
    return true;
}

// $GPGSV,2,1,08,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45*75
//        messages, number, in view, then four satellites
bool applyGSV(const Fields& fields, GPSFix& fix) {
    if (fields.size() < 4)
        return false;
    if (const auto inView = wholeWithin(fields[3], 0, mostSatellites))
        fix.satsInView = *inView;
    return true;
}

std::optional<unsigned> hexDigit(char c) {
    if (isDigit(c))
        return static_cast<unsigned>(c - '0');
    if (c >= 'A' && c <= 'F')
        return static_cast<unsigned>(c - 'A') + 10;
    if (c >= 'a' && c <= 'f')
        return static_cast<unsigned>(c - 'a') + 10;
    return std::nullopt;
}

} // namespace

bool apply(std::string_view line, GPSFix& fix) {
    if (!checksumOK(line))
        return false;
    const std::string_view body = line.substr(1, line.find('*') - 1);
    const Fields fields = base::split(body, ',');
    constexpr std::size_t talkerLength = 2;
    constexpr std::size_t addressLength = 5;
    if (fields.front().size() != addressLength)
        return false;
    const std::string_view name = fields.front().substr(talkerLength);
    if (name == "RMC")
        return applyRMC(fields, fix);
    if (name == "GGA")
        return applyGGA(fields, fix);
    return name == "GSV" && applyGSV(fields, fix);
}

bool checksumOK(std::string_view line) {
    const auto star = line.find('*');
    if (!line.starts_with('$') || star == line.npos || line.size() < star + 3)
        return false;
    const auto high = hexDigit(line[star + 1]);
    const auto low = hexDigit(line[star + 2]);
    unsigned sum = 0;
    for (const char c : line.substr(1, star - 1))
        sum ^= static_cast<unsigned char>(c);
    return high && low && sum == (*high << 4 | *low);
}

std::optional<double> coord(std::string_view value, std::string_view hemi, int degWidth) {
    const bool latitude = degWidth == 2;
    const bool positive = hemi == (latitude ? "N" : "E");
    const bool negative = hemi == (latitude ? "S" : "W");
    const auto width = static_cast<std::size_t>(degWidth);
    if ((!positive && !negative) || value.size() <= width || value.find('.') == value.npos)
        return std::nullopt;
    const int most = latitude ? 90 : 180;
    const auto degrees = wholeWithin(value.substr(0, width), 0, most);
    const auto minutes = numberWithin(value.substr(width), 0, 60);
    if (!degrees || !minutes || *minutes >= 60)
        return std::nullopt;
    const double size = *degrees + *minutes / 60;
    if (size > most)
        return std::nullopt;
    return negative ? -size : size;
}

std::optional<base::Instant> rmcDate(std::string_view time, std::string_view date) {
    if (time.size() < 6 || date.size() != 6)
        return std::nullopt;
    const auto hour = wholeWithin(time.substr(0, 2), 0, 23);
    const auto minute = wholeWithin(time.substr(2, 2), 0, 59);
    const auto second = numberWithin(time.substr(4), 0, 60);
    const auto day = wholeWithin(date.substr(0, 2), 1, 31);
    const auto month = wholeWithin(date.substr(2, 2), 1, 12);
    const auto year = wholeWithin(date.substr(4, 2), 0, 99);
    // A leap second is no instant of its own in our time: that sentence tells no time.
    if (!hour || !minute || !second || *second >= 60 || !day || !month || !year)
        return std::nullopt;
    const absl::CivilDay civil(2000 + *year, *month, *day);
    if (civil.day() != *day) // it ran over into the next month
        return std::nullopt;
    const absl::CivilSecond minuteStart(civil.year(), civil.month(), civil.day(), *hour, *minute);
    return base::instantOf(minuteStart, absl::UTCTimeZone()) + base::Seconds{*second};
}

} // namespace zenka::gps::NMEA
