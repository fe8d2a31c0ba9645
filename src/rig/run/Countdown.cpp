#include "rig/run/Countdown.h"

#include "base/TimeWords.h"
#include "exposure/ExposureScales.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

namespace zenka::rig {

namespace {

/// Clock value of a contact.
std::optional<double> contactOf(const SiteDesk& site, const char* key) {
    const auto found = site.contactTHours().find(key);
    return found == site.contactTHours().end() ? std::nullopt : std::optional(found->second * 3600);
}

} // namespace

std::string Countdown::text() const {
    // What is left reaches zero at the event itself, so it counts whole seconds that are not over.
    return (seconds < 0 ? "−" : "") + base::durHMS(seconds < 0 ? seconds : std::ceil(seconds));
}

std::string nextShotText(const ScriptDesk& script, double nextOffset, double clock) {
    const auto& captures = script.captures();
    if (captures.empty())
        return "No frames in the script";
    if (!std::isfinite(nextOffset))
        return "All frames are behind the clock";
    const auto& offsets = script.captureOffsets();
    const auto index = std::ranges::lower_bound(offsets, nextOffset) - offsets.begin();
    const script::Capture& capture = captures[static_cast<std::size_t>(index)];
    return "next: " + capture.camera + "  " + capture.refLabel + "  " +
           (capture.bulb ? std::string("BULB") : exposure::shutterLabel(capture.shutterSec)) + "  in " +
           base::durHMS(std::max(std::ceil(nextOffset - clock), 0.0));
}

bool inCentralPhase(const SiteDesk& site, double clock) {
    const auto begin = contactOf(site, "C2");
    const auto end = contactOf(site, "C3");
    return begin && end && *begin <= clock && clock < *end;
}

Countdown countdownAt(const SiteDesk& site, double clock) {
    const auto maximum = contactOf(site, "MAX").value_or(0);
    if (inCentralPhase(site, clock)) {
        const bool total = site.circ()->maxMagnitude >= 1;
        return {total ? "Totality, left" : "Ring, left", *contactOf(site, "C3") - clock};
    }
    // The countdown goes to what one waits for: the phases, not the middle of one that has begun.
    for (const char* key : {"C1", "C2", "C4"}) {
        const auto at = contactOf(site, key);
        if (!at || *at <= clock)
            continue;
        if (std::string_view(key) == "C4" && !contactOf(site, "C2") && maximum > clock)
            return {"MAX in", maximum - clock};
        return {std::string(key) + " in", *at - clock};
    }
    if (const auto last = contactOf(site, "C4"))
        return {"C4 was", *last - clock};
    return {"Not seen here. MAX in", maximum - clock};
}

} // namespace zenka::rig
