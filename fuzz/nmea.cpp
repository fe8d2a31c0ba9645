// A receiver's stream may hold anything: no fix leaves the Earth or the calendar, and what is no sound
// sentence changes nothing.
#include "gps/NMEA.h"

#include "Check.h"
#include "gps/SentenceLines.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using namespace zenka;

constexpr double y2000 = 946684800;
constexpr double y2100 = 4102444800;

void checkFix(const gps::GPSFix& fix) {
    check(!fix.lat || std::abs(*fix.lat) <= 90);
    check(!fix.lon || std::abs(*fix.lon) <= 180);
    check(!fix.utc || (fix.utc->epochSec >= y2000 && fix.utc->epochSec < y2100));
    check(!fix.altitudeM || std::abs(*fix.altitudeM) <= 20'000);
    check(!fix.hdop || (*fix.hdop >= 0 && *fix.hdop <= 100));
    check(fix.satsUsed >= 0 && fix.satsUsed <= 200 && fix.satsInView >= 0 && fix.satsInView <= 200);
}

void checkLine(std::string_view line, gps::GPSFix& fix) {
    const gps::GPSFix before = fix;
    const bool understood = gps::NMEA::apply(line, fix);
    checkFix(fix);
    check(understood || fix == before);
    check(!understood || gps::NMEA::checksumOK(line));
    const gps::GPSFix once = fix;
    check(gps::NMEA::apply(line, fix) == understood && fix == once);
}

/// The line with the sum that its bytes up to the first "*" have.
std::string mended(std::string_view line) {
    std::string body(line.substr(line.starts_with('$') ? 1 : 0));
    body = body.substr(0, body.find('*'));
    unsigned sum = 0;
    for (const char c : body)
        sum ^= static_cast<unsigned char>(c);
    constexpr std::string_view digits = "0123456789ABCDEF";
    return "$" + body + "*" + digits[sum >> 4] + digits[sum & 15];
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);

    gps::GPSFix asSent;
    gps::GPSFix sound; // of the same lines with their sums put right, so that the fields get their turn
    std::string inOne;
    gps::SentenceLines lines;
    lines.feed(text, [&](std::string_view line) {
        check(line.size() <= gps::SentenceLines::longest && line.find('\n') == line.npos);
        inOne.append(line) += '\n';
        checkLine(line, asSent);
        const std::string whole = mended(line);
        check(gps::NMEA::checksumOK(whole));
        checkLine(whole, sound);
    });

    // The same lines, however the bytes come.
    std::string inPieces;
    gps::SentenceLines again;
    for (std::size_t at = 0; at < size; at += 3)
        again.feed(text.substr(at, 3), [&](std::string_view line) { inPieces.append(line) += '\n'; });
    check(inOne == inPieces);
    return 0;
}
