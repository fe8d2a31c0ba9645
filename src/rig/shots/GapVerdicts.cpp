#include "rig/shots/GapVerdicts.h"

#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>

namespace zenka::rig::GapVerdicts {

namespace {

/// Why a profile ended before its time, as words behind "stopped."; nothing for one that did not.
std::optional<std::string> whyStopped(GapProfileEnd end) {
    switch (end) {
    case GapProfileEnd::stopped: return "";
    case GapProfileEnd::gone: return " The camera was removed, or its connection was lost or made anew.";
    case GapProfileEnd::run: return " A run has begun.";
    case GapProfileEnd::complete:
    case GapProfileEnd::wedged: break;
    }
    return std::nullopt;
}

std::string sonyPaces(double cleanTo, double slowsPast, double budget) {
    return absl::StrFormat("Paces cleanly to %ss · command pacing slows past %ss. On Sony this is cadence "
                           "headroom, not lost photos (no per-frame save confirmation over USB) — budget "
                           "~%ss between frames.",
                           fmtInterval(cleanTo), fmtInterval(slowsPast), fmtInterval(budget));
}

std::string answeredAt(double asked, double pace) {
    return absl::StrFormat("Asked for %ss and the body answered at %ss instead. Nothing was dropped; this is "
                           "simply as fast as it goes.",
                           fmtInterval(asked), fmtInterval(pace));
}

std::string ownPace(double floor) {
    return absl::StrFormat("Clean floor %ss · that is as fast as this body will answer, so it is a real "
                           "floor, not a lower bound",
                           fmtInterval(floor));
}

/// The slowest rung of the fast ladder failed, and slower ones were tried.
Finding slowBody(const std::vector<GapProfileRow>& rows, Body body) {
    const GapProfileRow& first = rows.front();
    const GapProfileRow& last = rows.back();
    if (std::ranges::all_of(rows, &GapProfileRow::complete)) {
        const double pace = first.heldSec();
        return {.verdict = body.sony ? sonyPaces(pace, first.intervalSec, pace)
                                     : answeredAt(first.intervalSec, pace),
                .floorSec = pace};
    }
    if (!last.complete())
        return {.verdict = absl::StrFormat("Dropped even at %ss · this body could not hold any tested "
                                           "cadence. Check the cable/USB mode, or try a vendor-recommended "
                                           "tether setting.",
                                           fmtInterval(last.intervalSec)),
                .floorSec = {}};
    const std::string floor = fmtInterval(last.heldSec());
    return {.verdict = absl::StrFormat("This body needs a SLOW cadence: clean at %ss, dropped at every "
                                       "faster step. Budget at least %ss between frames in your script.",
                                       floor, floor),
            .floorSec = last.heldSec()};
}

Finding fastBody(const std::vector<GapProfileRow>& rows, Body body) {
    const GapProfileRow& last = rows.back();
    if (last.clean() && !last.paced())
        return {.verdict = absl::StrFormat("Clean to %ss (fastest tested) · the body may go faster still",
                                           fmtInterval(last.intervalSec)),
                .floorSec = last.intervalSec};
    const GapProfileRow& lastClean = last.clean() ? last : rows[rows.size() - 2];
    if (!last.complete())
        return {.verdict = absl::StrFormat("Clean floor %ss · drops begin at %ss",
                                           fmtInterval(lastClean.heldSec()), fmtInterval(last.intervalSec)),
                .floorSec = lastClean.heldSec()};
    const double pace = last.heldSec();
    if (body.sony)
        return {.verdict = sonyPaces(lastClean.heldSec(), last.intervalSec, pace), .floorSec = pace};
    return {.verdict = lastClean.paced() ? ownPace(pace) : answeredAt(last.intervalSec, pace),
            .floorSec = pace};
}

} // namespace

std::string fmtInterval(double seconds) {
    const double tenths = seconds * 10;
    const bool round = std::abs(tenths - std::round(tenths)) < 1e-6;
    return seconds >= 0.1 - 1e-9 && round ? absl::StrFormat("%.1f", seconds)
                                          : absl::StrFormat("%.2f", seconds);
}

Finding quickFloor(const std::vector<GapProfileRow>& rows, GapProfileEnd end, Body body) {
    if (const auto why = whyStopped(end))
        return {.verdict = "Profile stopped." + *why, .floorSec = {}};
    if (body.simulated)
        return {.verdict = "Simulated camera: no real cadence limits. Connect a body to measure.",
                .floorSec = {}};
    if (end == GapProfileEnd::wedged || rows.empty())
        return {.verdict = "The camera's connection wedged during profiling and didn't come back on its own. "
                           "Power-cycle the body (or replug it), then run the profile again — this isn't a "
                           "cadence result.",
                .floorSec = {}};
    return rows.front().clean() ? fastBody(rows, body) : slowBody(rows, body);
}

std::string sustainedBurst(const GapBurst& burst, GapProfileEnd end, Body body) {
    if (const auto why = whyStopped(end))
        return "Burst stopped." + *why;
    if (body.simulated)
        return "Simulated camera: no real buffer limits. Connect a body to measure.";
    const std::string cadence = fmtInterval(burst.cadenceSec > 0 ? burst.cadenceSec : burst.targetSec);
    const bool longFrames = burst.shutterSec > 0;
    const std::string shutter = exposure::shutterLabel(burst.shutterSec);
    if (!burst.clean() && longFrames)
        return absl::StrFormat("%s frames dropped: %d clean at %ss, then %d of %d. A %s frame needs more "
                               "room than %ss.",
                               shutter, burst.cleanFrames, cadence, burst.missing, burst.fired, shutter,
                               cadence);
    if (!burst.clean())
        return absl::StrFormat("Buffer wall: %d clean frames at %ss, then dropped (%d of %d).",
                               burst.cleanFrames, cadence, burst.missing, burst.fired);
    if (!burst.atTarget())
        return absl::StrFormat("Held all %d frames at %ss, not the %ss asked for (the body cannot answer "
                               "faster than this)",
                               burst.fired, cadence, fmtInterval(burst.targetSec));
    if (longFrames)
        return absl::StrFormat("Held all %s frames at %ss: long-frame occupancy fits this cadence.", shutter,
                               cadence);
    return absl::StrFormat("Held all %d frames at %ss. No buffer wall in this test.", burst.fired, cadence);
}

} // namespace zenka::rig::GapVerdicts
