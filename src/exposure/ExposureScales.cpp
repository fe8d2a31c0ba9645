#include "exposure/ExposureScales.h"

#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace zenka::exposure {

namespace {

// The third-stop scales as cameras mark them (ISO 517, ISO 2720 and ISO 12232 preferred values), with the
// marks that camera makers add beyond the ends.
constexpr std::array<std::string_view, 64> shutterTable{
    "1/32000", "1/25000", "1/20000", "1/16000", "1/12800", "1/10000", "1/8000", "1/6400", "1/5000", "1/4000",
    "1/3200",  "1/2500",  "1/2000",  "1/1600",  "1/1250",  "1/1000",  "1/800",  "1/640",  "1/500",  "1/400",
    "1/320",   "1/250",   "1/200",   "1/160",   "1/125",   "1/100",   "1/80",   "1/60",   "1/50",   "1/40",
    "1/30",    "1/25",    "1/20",    "1/15",    "1/13",    "1/10",    "1/8",    "1/6",    "1/5",    "1/4",
    "0.3",     "0.4",     "0.5",     "0.6",     "0.8",     "1",       "1.3",    "1.6",    "2",      "2.5",
    "3",       "4",       "5",       "6",       "8",       "10",      "13",     "15",     "20",     "25",
    "30",      "40",      "50",      "60"};

constexpr std::array<int, 33> thirdStopISOs{50,    64,    80,    100,   125,   160,   200,   250,   320,
                                            400,   500,   640,   800,   1000,  1250,  1600,  2000,  2500,
                                            3200,  4000,  5000,  6400,  8000,  10000, 12800, 16000, 20000,
                                            25600, 32000, 40000, 51200, 64000, 102400};

constexpr std::array<int, 12> wholeStopISOs{50,   100,  200,   400,   800,   1600,
                                            3200, 6400, 12800, 25600, 51200, 102400};

constexpr std::array<std::string_view, 31> apertureTable{
    "1.4", "1.6", "1.8", "2.0", "2.2", "2.5", "2.8", "3.2", "3.5", "4.0", "4.5",
    "5.0", "5.6", "6.3", "7.1", "8.0", "9",   "10",  "11",  "13",  "14",  "16",
    "18",  "20",  "22",  "25",  "29",  "32",  "36",  "40",  "45"};

std::vector<double> logsOf(std::span<const std::string_view> table) {
    std::vector<double> logs;
    for (const std::string_view text : table)
        logs.push_back(std::log(shutterSeconds(text)));
    return logs;
}

std::vector<double> logsOf(std::span<const int> table) {
    std::vector<double> logs;
    for (const int value : table)
        logs.push_back(std::log(value));
    return logs;
}

/// The row nearest in log distance, the first of equals. The logs ascend.
std::size_t nearestRow(const std::vector<double>& logs, double value) {
    const double wanted = std::clamp(std::log(value), logs.front(), logs.back());
    std::size_t best = 0;
    for (std::size_t row = 1; row < logs.size(); ++row)
        if (std::abs(logs[row] - wanted) < std::abs(logs[best] - wanted))
            best = row;
    return best;
}

} // namespace

std::span<const std::string_view> standardShutters() {
    return shutterTable;
}

std::span<const int> standardISOs(bool wholeStops) {
    if (wholeStops)
        return wholeStopISOs;
    return thirdStopISOs;
}

std::span<const std::string_view> standardApertures() {
    return apertureTable;
}

std::string_view snapToStandard(double seconds) {
    static const std::vector<double> logs = logsOf(shutterTable);
    return seconds > 0 ? shutterTable[nearestRow(logs, seconds)] : "1/1000";
}

double shutterSeconds(std::string_view text) {
    const std::vector<std::string_view> parts = base::split(text, '/');
    if (parts.size() == 2) {
        const auto numerator = base::readNumber(parts[0]);
        const auto denominator = base::readNumber(parts[1]);
        const double seconds = numerator && denominator && *denominator != 0 ? *numerator / *denominator : 0;
        return std::isfinite(seconds) ? seconds : 0;
    }
    return base::readNumber(text).value_or(0);
}

int snapISO(double iso, bool wholeStops) {
    static const std::vector<double> thirdLogs = logsOf(thirdStopISOs);
    static const std::vector<double> wholeLogs = logsOf(wholeStopISOs);
    if (!(iso > 0))
        return 100;
    return standardISOs(wholeStops)[nearestRow(wholeStops ? wholeLogs : thirdLogs, iso)];
}

std::string_view snapAperture(double fNumber) {
    static const std::vector<double> logs = logsOf(apertureTable);
    return fNumber > 0 ? apertureTable[nearestRow(logs, fNumber)] : "8.0";
}

std::string shutterLabel(double seconds) {
    if (!(seconds > 0))
        return "-";
    if (seconds >= 1)
        return seconds == std::floor(seconds) ? absl::StrFormat("%.0fs", seconds)
                                              : absl::StrFormat("%.1fs", seconds);
    const double reciprocal = std::round(1 / seconds);
    if (reciprocal >= 2 && std::abs(1 / seconds - reciprocal) < 0.02)
        return absl::StrFormat("1/%.0f", reciprocal);
    return absl::StrFormat("%gs", seconds);
}

std::optional<double> readShutterChoice(std::string_view text) {
    std::string choice = base::replacedAll(base::trimmed(text), ",", ".");
    if (choice.ends_with('s'))
        choice.pop_back();
    if (choice.find('/') == choice.npos)
        return base::readNumber(choice);
    const std::vector<std::string_view> parts = base::split(choice, '/');
    if (parts.size() != 2)
        return std::nullopt;
    const auto numerator = base::readNumber(parts[0]);
    const auto denominator = base::readNumber(parts[1]);
    if (!numerator || !denominator || *denominator == 0 || *numerator > 1000)
        return std::nullopt;
    const double seconds = *numerator / *denominator;
    return std::isfinite(seconds) ? std::optional(seconds) : std::nullopt;
}

} // namespace zenka::exposure
