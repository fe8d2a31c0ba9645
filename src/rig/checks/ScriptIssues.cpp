#include "rig/checks/ScriptIssues.h"

#include "eclipse/TerrainHorizon.h"
#include "rig/checks/CadenceAdvisor.h"
#include "script/EspenakGuide.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace zenka::rig {

namespace {

using script::Capture;
using script::ScriptDiag;

constexpr double timeTolerance = 1e-6; ///< offsets are sums: so much is no difference, in seconds
constexpr double lowSunDeg = 5;        ///< below it things on the horizon are in the way

const char* plural(std::size_t count) {
    return count == 1 ? "" : "s";
}

/// The frames of one class of the Sun's altitude.
struct LowFrames {
    std::size_t count = 0;
    const Capture* first = nullptr;
    double firstAltDeg = 0;

    void add(const Capture& capture, double altDeg) {
        if (count++ == 0) {
            first = &capture;
            firstAltDeg = altDeg;
        }
    }
    /// "3 frames (all cameras), starting at C4 +60s (alt -0.4°)"
    std::string words() const {
        return absl::StrFormat("%d frame%s (all cameras), starting at %s (alt %+.1f°)", count, plural(count),
                               first->refLabel, firstAltDeg);
    }
};

/// What will go wrong on one body.
class BodyIssues {
public:
    BodyIssues(const IssueBody& body, std::span<const Capture> frames, std::vector<ScriptDiag>& issues)
        : body_(body), frames_(frames), issues_(issues), spacing_(spacingOf(body)) {}

    void find() {
        findBulb();
        for (std::size_t i = 1; i < frames_.size(); ++i)
            judgePair(frames_[i - 1], frames_[i]);
        findDeepBurst();
    }

private:
    /// Seconds that frames must be apart, besides the exposure; nothing where nothing is known.
    struct Spacing {
        std::optional<double> drop; ///< closer ones are lost
        std::optional<double> safe; ///< closer ones are lost in a long series
    };

    static Spacing spacingOf(const IssueBody& body) {
        constexpr double margin = 1.3;
        constexpr double gphoto2Floor = 1.3;
        constexpr double sonyFloor = 0.4;
        const auto& measured = body.measuredFloorSec;
        const auto& sustained = body.sustainedFloorSec;
        if (body.driver == "gphoto2") {
            const double drop = measured.value_or(gphoto2Floor);
            const double safe = measured ? std::max(*measured * margin, gphoto2Floor) : gphoto2Floor;
            return {.drop = drop, .safe = sustained.value_or(safe)};
        }
        if (body.driver == "CrSDK") {
            const double drop = measured.value_or(sonyFloor);
            return {.drop = drop, .safe = sustained.value_or(std::max(drop * margin, sonyFloor))};
        }
        const auto& known = body.catalogFloorSec;
        const auto drop = measured ? measured : known;
        return {.drop = drop, .safe = drop && known ? std::max(*drop, *known) : drop};
    }

    void add(const char* severity, int lineNo, std::string message) {
        issues_.push_back({.lineNo = lineNo, .severity = severity, .message = std::move(message)});
    }

    void findBulb() {
        struct Reason {
            std::string_view driver;
            const char* severity;
            std::string_view words;
        };
        static constexpr std::array<Reason, 4> reasons{{
            {"gphoto2", "error",
             "will fire NOTHING on this connection (the shutter is never opened) while logging ok. Use a "
             "timed exposure (30s or less) instead."},
            {"CanonEDSDK", "error",
             "cannot be set on Canon from a computer; it silently becomes a timed exposure of up to 30s. Use "
             "a timed exposure (30s or less) instead."},
            {"CrSDK", "warning",
             "is unverified on Sony over USB; test one bulb frame and check the card before trusting it"},
            {"none", "warning",
             "only fires on LUMIX today; on Nikon/Canon/Sony it fails or clamps. Validate with this body "
             "connected"},
        }};
        const auto reason = std::ranges::find(reasons, body_.driver, &Reason::driver);
        if (reason == reasons.end())
            return;
        const auto count = static_cast<std::size_t>(std::ranges::count(frames_, true, &Capture::bulb));
        if (count > 0)
            add(reason->severity, std::ranges::find(frames_, true, &Capture::bulb)->lineNo,
                absl::StrFormat("%s: %d BULB frame%s %s", body_.name, count, plural(count),
                                std::string(reason->words)));
    }

    void judgePair(const Capture& before, const Capture& after) {
        const double gap = after.offsetSec - before.offsetSec;
        const double exposure = std::max(before.shutterSec, 0.0);
        const auto tighterThan = [gap](double limit) { return gap < limit - timeTolerance; };

        if (tighterThan(exposure))
            return add("error", after.lineNo,
                       absl::StrFormat(
                           "%s: %s starts %s after %s, but that exposure runs %s; they overlap; the "
                           "second will fail.",
                           body_.name, after.refLabel, fmtSecs(gap), before.refLabel, fmtSecs(exposure)));
        if (exposure > 1 && tighterThan(2 * exposure))
            return add(
                "warning", after.lineNo,
                absl::StrFormat("%s: %s starts %s after the %s exposure. If Long-Exposure NR is on, that "
                                "frame stays busy ~%s (it writes a dark frame), so this may drop. Leave "
                                "~2x the shutter, or turn LENR off.",
                                body_.name, after.refLabel, fmtSecs(gap), fmtSecs(exposure),
                                fmtSecs(2 * exposure)));
        if (spacing_.drop && tighterThan(*spacing_.drop + exposure))
            add("warning", after.lineNo,
                opening(before, after, gap) + belowDropFloor(*spacing_.drop, exposure));
        else if (spacing_.safe && tighterThan(*spacing_.safe + exposure))
            add("warning", after.lineNo,
                opening(before, after, gap) + belowSafeMargin(*spacing_.safe, exposure));
    }

    std::string opening(const Capture& before, const Capture& after, double gap) const {
        return absl::StrFormat("%s: %s: only %s between %s and %s", body_.name, after.refLabel, fmtSecs(gap),
                               before.refLabel, after.refLabel);
    }
    static std::string belowDropFloor(double drop, double exposure) {
        const std::string why =
            exposure >= longExposure
                ? absl::StrFormat(" (the %s exposure + ~%s to write)", fmtSecs(exposure), fmtSecs(drop))
                : absl::StrFormat(" (the %s drop floor)", fmtSecs(drop));
        return why + "; the second will likely drop. Widen the spacing or use a faster body.";
    }
    std::string belowSafeMargin(double safe, double exposure) const {
        const bool measured = body_.measuredFloorSec || body_.sustainedFloorSec;
        const std::string needs =
            exposure >= longExposure
                ? absl::StrFormat(" (the %s exposure plus your %s safe margin needs ~%s)", fmtSecs(exposure),
                                  fmtSecs(safe), fmtSecs(safe + exposure))
                : "";
        return needs + absl::StrFormat(
                           ": tighter than %s %s safe margin for this body. OK for a few frames, but risky "
                           "across a long burst.",
                           measured ? "this body's measured" : "the", fmtSecs(safe));
    }

    void findDeepBurst() {
        constexpr double cadenceRoom = 1.25;
        if (!body_.burstDepth)
            return;
        const double widest = body_.burstDepth->cadenceSec * cadenceRoom + timeTolerance;
        std::span<const Capture> longest;
        std::size_t from = 0;
        for (std::size_t i = 0; i < frames_.size(); ++i) {
            if (i > 0 && frames_[i].offsetSec - frames_[i - 1].offsetSec > widest)
                from = i;
            if (i - from + 1 > longest.size())
                longest = frames_.subspan(from, i - from + 1);
        }
        const int depth = body_.burstDepth->frames;
        if (longest.size() <= static_cast<std::size_t>(depth) || longest.size() < 2)
            return;
        const Capture& first = longest.front();
        const double span = longest.back().offsetSec - first.offsetSec;
        add("warning", first.lineNo,
            absl::StrFormat(
                "%s: a burst of %d frames at ~%s (from %s) is deeper than this body's measured "
                "buffer (~%d frames before it filled and dropped, Gap Profiler › Sustained burst). "
                "Expect drops past ~frame %d. Split the burst or widen the spacing.",
                body_.name, longest.size(), fmtSecs(span / static_cast<double>(longest.size() - 1)),
                first.refLabel, depth, depth));
    }

    static constexpr double longExposure = 0.1; ///< it takes a part of the spacing worth telling, seconds

    const IssueBody& body_;
    const std::span<const Capture> frames_;
    std::vector<ScriptDiag>& issues_;
    const Spacing spacing_;
};

void findSunDown(const IssueContext& context, std::vector<ScriptDiag>& issues) {
    const auto maximum = context.contactTHours.find("MAX");
    if (maximum == context.contactTHours.end())
        return;
    const double altDeg = context.eclipse->geometry(maximum->second, context.observer).altDeg;
    if (altDeg < 0)
        issues.push_back(
            {.lineNo = 0,
             .severity = "error",
             .message = absl::StrFormat("Eclipse not visible from %s: the Sun is below the horizon "
                                        "at maximum (alt %+.1f°). Check the site.",
                                        context.siteLabel, altDeg)});
}

void findLowSun(const IssueContext& context, std::span<const Capture> captures,
                std::vector<ScriptDiag>& issues) {
    LowFrames below, low, hidden;
    std::optional<double> lookedAt; // bodies that fire together look at one Sun
    eclipse::Geom sun;
    for (const Capture& capture : captures) {
        if (lookedAt != capture.offsetSec)
            sun = context.eclipse->geometry(capture.offsetSec / 3600, context.observer);
        lookedAt = capture.offsetSec;
        if (sun.altDeg < 0)
            below.add(capture, sun.altDeg);
        else if (sun.altDeg < lowSunDeg)
            low.add(capture, sun.altDeg);
        if (sun.altDeg >= 0 && sun.altDeg < eclipse::TerrainHorizon::elevationAt(context.horizon, sun.azDeg))
            hidden.add(capture, sun.altDeg);
    }
    if (below.first)
        issues.push_back({.lineNo = below.first->lineNo,
                          .severity = "warning",
                          .message = "Sun below the horizon for " + below.words() +
                                     ". These won't capture the Sun — usually the timelapse runs past sunset "
                                     "here. Trim the tail, or keep them if intended."});
    if (low.first)
        issues.push_back({.lineNo = low.first->lineNo,
                          .severity = "warning",
                          .message = "Sun very low (under 5°) for " + low.words() +
                                     ". Watch for horizon obstructions (trees, buildings, terrain)."});
    if (hidden.first)
        issues.push_back({.lineNo = hidden.first->lineNo,
                          .severity = "warning",
                          .message = "Sun behind the terrain of this site for " + hidden.words() +
                                     ". Location shows the horizon: find a place with a freer view, or keep "
                                     "them if intended."});
}

} // namespace

std::vector<ScriptDiag> computeIssues(const IssueContext& context, std::span<const Capture> captures,
                                      const script::CapturesByToken& byToken) {
    std::vector<ScriptDiag> issues;
    findSunDown(context, issues);
    findLowSun(context, captures, issues);
    for (const auto& [token, frames] : byToken) {
        const auto known = context.bodies.find(token);
        const std::vector<IssueBody> unknown{{.name = token}};
        for (const IssueBody& body : known == context.bodies.end() ? unknown : known->second)
            BodyIssues(body, frames, issues).find();
        for (const auto& note : script::EspenakGuide::scriptNotes(frames)) {
            if (note.level != script::EspenakGuide::Level::good)
                issues.push_back({.lineNo = note.lineNo,
                                  .severity = "warning",
                                  .message = "NASA exposure: " + note.message});
        }
    }
    std::ranges::stable_sort(issues, {}, [](const ScriptDiag& issue) {
        return std::pair(issue.severity != "error", issue.lineNo);
    });
    return issues;
}

} // namespace zenka::rig
