#pragma once

#include "base/Text.h"
#include "gps/GPSReceiver.h"
#include "support/NmeaSentences.h"

#include <absl/strings/str_format.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace zenka::test {

/// Streams of tests/data/nmea, and what a receiver shall make of them.
struct NmeaStream {
    std::string name;
    std::string bytes;
    std::vector<std::string> fixes; ///< a line for each update
};

inline std::vector<NmeaStream> nmeaStreams() {
    namespace fs = std::filesystem;
    const auto content = [](const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    std::vector<NmeaStream> streams;
    for (const auto& entry : fs::directory_iterator(ZENKA_SOURCE_DIR "/tests/data/nmea")) {
        fs::path path = entry.path();
        if (path.extension() != ".nmea")
            continue;
        NmeaStream stream{.name = path.stem(), .bytes = content(path), .fixes = {}};
        const std::string lines = content(path.replace_extension(".fixes"));
        for (const std::string_view line : base::splitPieces(lines, '\n'))
            stream.fixes.emplace_back(line);
        streams.push_back(std::move(stream));
    }
    return streams;
}

/// An update as a line of the files.
inline std::string fixLine(const gps::GPSFix& fix, bool timed) {
    const auto number = [](const std::optional<double>& value, int digits) {
        return value ? absl::StrFormat("%.*f", digits, *value) : std::string("-");
    };
    const std::string utc = fix.utc ? nmea::toMilliseconds("%Y-%m-%dT%H:%M:%S", *fix.utc) : "-";
    return absl::StrFormat("%s utc=%s lat=%s lon=%s alt=%s used=%d view=%d hdop=%s%s",
                           fix.hasFix ? "fix" : "no fix", utc, number(fix.lat, 6), number(fix.lon, 6),
                           number(fix.altitudeM, 1), fix.satsUsed, fix.satsInView, number(fix.hdop, 2),
                           timed ? " timed" : "");
}

/// A main loop that runs a function right where it is posted, so that no update waits for another.
class InlineLoop final : public ports::MainLoop {
public:
    void post(Function function) override { function(); }
    TimerId after(base::Seconds, Function) override { return TimerId::none; }
    TimerId every(base::Seconds, Function) override { return TimerId::none; }
    void cancel(TimerId) override {}
    bool onMainThread() const override { return true; }
};

} // namespace zenka::test
