#include "script/ScriptWizardGen.h"

#include "script/WizardCheck.h"
#include "script/WizardPlan.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zenka::script::ScriptWizardGen {

namespace {

/// The Sun counts as up from here, more than it moves in the tenth of a second that times are written to.
constexpr double upDeg = 0.001;
constexpr std::size_t mostCameras = 16;

double positive(double seconds) {
    return seconds > 0 && std::isfinite(seconds) ? seconds : 0;
}

/// The length of totality, where the caller does not know it from the contacts.
double totalityOf(double totalitySeconds, const SiteSky& sky) {
    if (positive(totalitySeconds) > 0)
        return totalitySeconds;
    const auto c2 = sky.contactSec("C2");
    const auto c3 = sky.contactSec("C3");
    return c2 && c3 ? positive(*c3 - *c2) : 0;
}

bool anythingPlanned(const Plan& plan) {
    return plan.central == CentralPhase::total ||
           (plan.c.partials && plan.c.filter != WizardChoices::Filter::none);
}

void appendPlan(Lines& lines, const Plan& plan, const std::vector<std::string>& remarks) {
    lines.push_back("# ───────── CAMERA: " + plan.camera + " ─────────");
    for (const std::string& remark : remarks)
        lines.push_back("# " + remark);
    appendLowSunNotes(lines, plan);
    appendPartialIngress(lines, plan);
    if (plan.central == CentralPhase::total) {
        appendEdgePhases(lines, plan);
        appendCoronaAndEarthshine(lines, plan);
    }
    appendPartialEgress(lines, plan);
    if (!anythingPlanned(plan)) {
        lines.emplace_back("# Nothing to photograph: no totality here, and no partial phases with a filter.");
        lines.emplace_back();
    }
}

std::string joined(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) {
        if (&line != &lines.front())
            text += '\n';
        text += line;
    }
    return text;
}

} // namespace

std::optional<double> SiteSky::contactSec(std::string_view key) const {
    if (!horizon_)
        return std::nullopt;
    const auto found = horizon_->contactTHours.find(std::string(key));
    constexpr double furthestHours = 24; // a value beyond is no contact of this eclipse
    if (found == horizon_->contactTHours.end() || !(std::abs(found->second) <= furthestHours))
        return std::nullopt;
    return found->second * 3600;
}

std::optional<eclipse::Geom> SiteSky::geometry(double offsetSec) const {
    if (!horizon_)
        return std::nullopt;
    return horizon_->eclipse.geometry(offsetSec / 3600, {horizon_->lat, horizon_->lon, horizon_->elev});
}

double SiteSky::altDeg(double offsetSec) const {
    const auto seen = geometry(offsetSec);
    return seen ? seen->altDeg : std::numeric_limits<double>::quiet_NaN();
}

bool SiteSky::shows(double offsetSec) const {
    return !trims() || altDeg(offsetSec) > upDeg;
}

bool SiteSky::shows(std::string_view key, double fromContactSec) const {
    const auto contact = contactSec(key);
    return !contact || shows(*contact + fromContactSec);
}

bool SiteSky::annular() const {
    const auto max = contactSec("MAX");
    const auto seen = max ? geometry(*max) : std::nullopt;
    return seen && seen->L2 > 0;
}

double tenths(double seconds) {
    return std::nearbyint(seconds * 10) / 10;
}

std::string shortNumber(double value) {
    std::string text = absl::StrFormat("%.4f", value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.'))
        text.pop_back();
    return text;
}

std::string exposureWords(const BracketFrame& frame) {
    return absl::StrFormat("%s f/%s ISO %s", frame.shutter, frame.aperture, frame.iso);
}

std::string bracketVarWord(BracketVar var) {
    switch (var) {
    case BracketVar::iso: return "ISO";
    case BracketVar::aperture: return "aperture";
    case BracketVar::shutter: break;
    }
    return "shutter";
}

std::string frameLine(std::string_view reference, char sign, double seconds, const std::string& camera,
                      const BracketFrame& frame, std::string_view note) {
    return absl::StrFormat("TAKEPIC,%s,%c,%s,%s,%s,%s,%s,0.000,RAW,None,Y,%s", reference, sign, mmss(seconds),
                           camera, frame.shutter, frame.aperture, frame.iso, note);
}

std::vector<std::string> shutterWindow(std::string_view from, std::string_view to) {
    const auto rows = exposure::standardShutters();
    const auto first = std::find(rows.begin(), rows.end(), from);
    const auto last = std::find(rows.begin(), rows.end(), to);
    if (first == rows.end() || last == rows.end() || first > last)
        return {rows.begin(), rows.end()};
    return {first, last + 1};
}

std::string mmss(double seconds) {
    constexpr double most = 359999; // some hours; what is no number counts as 0
    const double whole = seconds > 0 ? std::min(seconds, most) : 0;
    int minutes = static_cast<int>(whole / 60);
    std::string rest = absl::StrFormat("%04.1f", whole - 60 * minutes);
    if (rest == "60.0") {
        rest = "00.0";
        ++minutes;
    }
    return absl::StrFormat("%02d:%s", minutes, rest);
}

std::string fmtInterval(double seconds) {
    constexpr double most = 1e9;
    const auto whole = seconds > 1 ? std::llround(std::min(seconds, most)) : 1;
    if (whole < 60)
        return absl::StrFormat("%ds", whole);
    if (whole % 60 == 0)
        return absl::StrFormat("%dm", whole / 60);
    return absl::StrFormat("%dm %ds", whole / 60, whole % 60);
}

std::string fmtDur(double seconds) {
    constexpr double most = 1e9;
    const auto whole = static_cast<long long>(seconds > 0 ? std::min(seconds, most) : 0);
    return absl::StrFormat("%dm%02ds", whole / 60, whole % 60);
}

std::string build(const WizardChoices& choices, double totalitySeconds, bool hasTotality,
                  const std::optional<HorizonCtx>& horizon) {
    return build(std::span(&choices, 1), totalitySeconds, hasTotality, horizon);
}

std::string build(std::span<const WizardChoices> perCamera, double totalitySeconds, bool hasTotality,
                  const std::optional<HorizonCtx>& horizon) {
    const SiteSky sky(horizon);
    const CentralPhase central = !hasTotality    ? CentralPhase::none
                                 : sky.annular() ? CentralPhase::annular
                                                 : CentralPhase::total;
    std::vector<UsableChoices> answers;
    answers.reserve(perCamera.size()); // the plans refer to them
    std::vector<Plan> plans;
    std::vector<const UsableChoices*> answersOf;
    std::vector<std::string> names;
    Lines leftOut;
    bool tooMany = false;
    for (const WizardChoices& choices : perCamera) {
        answers.push_back(usable(choices));
        const WizardChoices& c = answers.back().choices;
        for (const std::string& target : c.targets()) {
            const std::string camera = usableCamera(target);
            if (std::find(names.begin(), names.end(), camera) != names.end()) {
                leftOut.push_back("# " + camera + " is named twice; only its first plan is done.");
                continue;
            }
            if (plans.size() == mostCameras) {
                tooMany = true;
                break;
            }
            names.push_back(camera);
            answersOf.push_back(&answers.back());
            plans.push_back({c, camera, central, totalityOf(totalitySeconds, sky), sky, std::nullopt});
            if (central == CentralPhase::total)
                plans.back().lowSunAltDeg = totalityLowSun(c, horizon);
        }
    }
    if (tooMany)
        leftOut.push_back(absl::StrFormat("# Only the first %d cameras have a plan.", mostCameras));
    Lines lines;
    const WizardChoices first = perCamera.empty() ? WizardChoices() : perCamera.front();
    appendHeader(lines, names, first, central, sky);
    if (plans.empty()) {
        lines.emplace_back("# No camera is chosen, so there is nothing to photograph.");
        return joined(lines);
    }
    lines.insert(lines.end(), leftOut.begin(), leftOut.end());
    appendCameraSettings(lines, plans);
    appendCues(lines, first, central);
    for (std::size_t i = 0; i < plans.size(); ++i)
        appendPlan(lines, plans[i], answersOf[i]->remarks);
    return joined(lines);
}

} // namespace zenka::script::ScriptWizardGen
