#include "base/CivilTime.h"
#include "eclipse/Besselian.h"
#include "eclipse/Calendar.h"

#include <cmath>
#include <numbers>

namespace zenka::eclipse {

namespace {

constexpr double degree = std::numbers::pi / 180;

double sinDeg(double angle) {
    return std::sin(angle * degree);
}

double cosDeg(double angle) {
    return std::cos(angle * degree);
}

double within(double value, double cycle) {
    const double rest = std::fmod(value, cycle);
    return rest < 0 ? rest + cycle : rest;
}

enum class SunEvent { rise, set };

/// UT in hours of the date with the given number in the year. The method of the Almanac for Computers
/// (US Naval Observatory, 1990): good to a minute or two, refraction and half the Sun's disc included.
std::optional<double> almanacHour(SunEvent event, int dayNumber, double lat, double lon) {
    constexpr double cosZenith = -0.014538080502496963; // 90.833 degrees
    const double lngHour = lon / 15;
    const double base = event == SunEvent::rise ? 6 : 18;
    const double t = dayNumber + (base - lngHour) / 24;
    const double meanAnomaly = 0.9856 * t - 3.289;
    const double longitude =
        within(meanAnomaly + 1.916 * sinDeg(meanAnomaly) + 0.020 * sinDeg(2 * meanAnomaly) + 282.634, 360);
    const double sinDec = 0.39782 * sinDeg(longitude);
    const double cosDec = std::cos(std::asin(sinDec));
    const double cosH = (cosZenith - sinDec * sinDeg(lat)) / (cosDec * cosDeg(lat));
    if (!(std::abs(cosH) <= 1)) {
        return std::nullopt;
    }
    // the right ascension belongs in the quadrant of the longitude
    double ascension = within(std::atan(0.91764 * std::tan(longitude * degree)) / degree, 360);
    ascension += std::floor(longitude / 90) * 90 - std::floor(ascension / 90) * 90;
    ascension /= 15;
    const double fromNoon = std::acos(cosH) / degree;
    const double hourAngle = (event == SunEvent::rise ? 360 - fromNoon : fromNoon) / 15;
    return within(hourAngle + ascension - 0.06571 * t - 6.622 - lngHour, 24);
}

} // namespace

Eclipse::SunTimes Eclipse::sunriseSunset(double lat, double lon) const {
    const absl::CivilDay date = detail::dateOf(rec.dateUTC);
    const base::Instant midnight = base::instantOf(absl::CivilSecond(date), absl::UTCTimeZone());
    const int dayNumber = dayOfYear(static_cast<int>(date.year()), date.month(), date.day());
    const auto instant = [&](SunEvent event) -> std::optional<base::Instant> {
        const std::optional<double> hour = almanacHour(event, dayNumber, lat, lon);
        return hour ? std::optional(midnight + base::Seconds(*hour * 3600)) : std::nullopt;
    };
    return {.rise = instant(SunEvent::rise), .set = instant(SunEvent::set)};
}

double julianDay(int year, int month, int day) {
    if (month < 3) {
        year -= 1;
        month += 12;
    }
    const double century = std::floor(year / 100.0);
    return 2 - century + std::floor(century / 4) + std::floor(30.6001 * (month + 1)) +
           std::floor(365.25 * (year + 4716)) + day - 1524.5;
}

int dayOfYear(int year, int month, int day) {
    return 275 * month / 9 - (month + 9) / 12 * ((year - 4 * (year / 4) + 2) / 3 + 1) + day - 30;
}

} // namespace zenka::eclipse
