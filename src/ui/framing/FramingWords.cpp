#include "ui/framing/FramingWords.h"

#include "exposure/ExposureScales.h"
#include "ui/kit/QtText.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace zenka::ui {

namespace {

/// One digit behind the point for small numbers.
std::string shortNumber(double value) {
    const int digits = value < 9.95 ? 1 : 0;
    return absl::StrFormat("%.*f", digits, value);
}

/// Room is not rounded up.
double cut(double radii) {
    return std::floor(radii * 10) / 10;
}

std::string spanWords(double seconds) {
    const long whole = std::lround(seconds);
    if (whole < 90)
        return absl::StrFormat("%d s", whole);
    if (whole < 3600)
        return absl::StrFormat("%d min %d s", whole / 60, whole % 60);
    return absl::StrFormat("%d h %d min", whole / 3600, whole / 60 % 60);
}

/// One of eight directions; 0 is right, 90 up.
std::string sideWords(double right, double up) {
    static constexpr std::array<const char*, 8> names{
        "to the right", "to the upper right", "up",   "to the upper left",
        "to the left",  "to the lower left",  "down", "to the lower right"};
    const double eighths = std::round(std::atan2(up, right) / std::atan(1.0));
    return names[static_cast<std::size_t>(eighths + 8) % 8];
}

QString sunWarning(const rig::CircleInFrame& sun) {
    if (!sun.atFirst)
        return sun.atLast ? QStringLiteral("✖ The Sun is not whole in the frame at the first frame.")
                          : QStringLiteral("✖ The Sun is not whole in the frame at either end.");
    if (sun.atLast)
        return {};
    return sun.leavesAfterSec
               ? qt(absl::StrFormat("✖ The Sun leaves the frame after %s.", spanWords(*sun.leavesAfterSec)))
               : QStringLiteral("✖ The Sun is not whole in the frame at the last frame.");
}

QString coronaWarning(const rig::CircleInFrame& corona, double radii) {
    if (!corona.atFirst)
        return qt(absl::StrFormat("▲ The corona to %.0f radii is cut at the first frame.", radii));
    if (corona.atLast)
        return {};
    return qt(absl::StrFormat("▲ The corona to %.0f radii reaches the edge after %s.", radii,
                              spanWords(corona.leavesAfterSec.value_or(0))));
}

QString shutterWords(const FramingFrame& frame) {
    if (frame.tracking)
        return QStringLiteral("the mount follows the Sun");
    const double perSecond = eclipse::Framing::pixelsPerSecond(frame.optics, frame.speed);
    if (perSecond <= 0)
        return QStringLiteral("the sensor's pixels are not known");
    const std::string shutter = shutterWithin(frame.trailPx / perSecond);
    return qt(absl::StrFormat("%s for %s px; the Sun moves %s px/s", shutter.empty() ? "none" : shutter,
                              shortNumber(frame.trailPx), shortNumber(perSecond)));
}

} // namespace

double FramingFrame::room() const {
    return std::min(facts.radiiAlongWidth, facts.radiiAlongHeight);
}

std::string shutterWithin(double seconds) {
    std::string slowest;
    for (const std::string_view shutter : exposure::standardShutters()) {
        const double length = exposure::shutterSeconds(shutter);
        if (length <= seconds)
            slowest = exposure::shutterLabel(length);
    }
    return slowest.empty() || slowest.ends_with('s') ? slowest : slowest + " s";
}

std::vector<FramingNumber> framingNumbers(const FramingFrame& frame) {
    const auto& facts = frame.facts;
    const bool portrait = frame.optics.portrait();
    const double across = portrait ? facts.fieldHeightDeg : facts.fieldWidthDeg;
    const double upright = portrait ? facts.fieldWidthDeg : facts.fieldHeightDeg;
    const bool pixels = frame.optics.pixelsKnown();
    const std::string sun =
        (pixels ? absl::StrFormat("%.0f px across (%.1f mm)", facts.sunPx, facts.sunMm)
                : absl::StrFormat("%.1f mm across", facts.sunMm)) +
        absl::StrFormat(", %s %% of the frame's height", shortNumber(facts.sunOfHeight * 100));
    return {{QStringLiteral("Field of view"),
             qt(absl::StrFormat("%.2f° × %.2f°", across, upright) +
                (pixels ? absl::StrFormat(", %.2f″ a pixel", facts.arcsecPerPx) : ", pixels not known"))},
            {QStringLiteral("The Sun"), qt(sun)},
            {QStringLiteral("Room"),
             qt(absl::StrFormat("%.1f solar radii, %.1f to the farther edges", cut(frame.room()),
                                cut(std::max(facts.radiiAlongWidth, facts.radiiAlongHeight))))},
            {QStringLiteral("Longest shutter"), shutterWords(frame)}};
}

QString moonWords(const SkyScene& sky) {
    const std::string size = absl::StrFormat(", %.3f of its size", sky.moonRadius);
    if (sky.separation < 0.005)
        return qt("in the middle of the Sun" + size);
    const SkyOffset moon = sky.moon();
    return qt(
        absl::StrFormat("%.2f solar radii from the Sun, %s", sky.separation, sideWords(moon.right, moon.up)) +
        size);
}

QString framingVerdict(const FramingFrame& frame) {
    const double room = frame.room();
    if (room < 1)
        return QStringLiteral("✖ The Sun does not fit into the frame.");
    if (room < frame.wantedRadii)
        return qt(absl::StrFormat("▲ The corona fits to %.1f radii only; %.0f are wanted.", cut(room),
                                  frame.wantedRadii));
    return qt(absl::StrFormat("✓ The corona fits to %.0f radii.", frame.wantedRadii));
}

BurstRow burstRow(const FramingFrame& frame, const script::Burst& burst, const rig::BurstDrift& drift) {
    BurstRow row;
    row.title = qt(burst.beginLabel + " to " + burst.endLabel);
    row.facts = counted(burst.frames, "frame") + qt(" in " + spanWords(burst.endSec - burst.beginSec));
    const bool pixels = frame.optics.pixelsKnown();
    const std::string longest =
        burst.longestSec > 0 ? exposure::shutterLabel(burst.longestSec) : std::string();
    if (frame.tracking) {
        row.drift = QStringLiteral("followed: the Sun stays where it is");
        row.trail = qt(longest.empty() ? longest : "longest exposure " + longest);
        return row;
    }
    if (drift.first && drift.last) {
        const auto way =
            eclipse::Framing::zenithUp(frame.optics, {.right = drift.last->right - drift.first->right,
                                                      .up = drift.last->up - drift.first->up});
        row.drift = qt(absl::StrFormat("drift %s%s %% of the frame's height, %s",
                                       pixels ? absl::StrFormat("%.0f px, ", drift.pixels) : std::string(),
                                       shortNumber(drift.ofHeight * 100), sideWords(way.right, way.up)));
    } else {
        row.drift = QStringLiteral("the Sun is behind the camera");
    }
    const std::string trail = pixels ? shortNumber(drift.trailPx) + " px"
                                     : absl::StrFormat("%.0f″", burst.longestSec * frame.speed);
    row.trail = longest.empty() ? QStringLiteral("the script tells no exposure")
                                : qt("longest exposure " + longest + " trails " + trail);
    row.warning = sunWarning(drift.sun);
    row.level = row.warning.isEmpty() ? 0 : 2;
    // A corona that has no room at all was told already.
    const QString corona =
        frame.room() < frame.wantedRadii ? QString() : coronaWarning(drift.corona, frame.wantedRadii);
    if (!corona.isEmpty()) {
        row.warning += (row.level > 0 ? QStringLiteral(" ") : QString()) + corona;
        row.level = std::max(row.level, 1);
    }
    return row;
}

} // namespace zenka::ui
