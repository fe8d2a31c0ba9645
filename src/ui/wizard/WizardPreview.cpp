#include "ui/wizard/WizardPreview.h"

#include "base/Text.h"
#include "script/EspenakGuide.h"
#include "script/ScriptWizardGen.h"
#include "script/WizardCheck.h"
#include "ui/wizard/WizardRemarks.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <limits>
#include <set>

namespace zenka::ui {

namespace {

namespace Guide = script::EspenakGuide;
using script::Capture;
using script::WizardChoices;

constexpr double margin = 120; // seconds to show beside the outermost of marks and contacts

std::optional<double> contactSec(const WizardSite& site, const char* key) {
    const auto found = site.contactTHours.find(key);
    return found == site.contactTHours.end() ? std::nullopt : std::optional(found->second * 3600);
}

script::ScriptWizardGen::HorizonCtx horizonOf(const WizardRequest& request) {
    const WizardSite& site = request.site;
    return {.eclipse = *site.eclipse,
            .lat = site.observer.lat,
            .lon = site.observer.lon,
            .elev = site.observer.elev,
            .contactTHours = site.contactTHours,
            .drop = !request.plans.empty() && request.plans.front().dropBelowHorizon};
}

/// The frames of one camera in order of time.
using Frames = std::vector<const Capture*>;

double occupiedSec(const Capture& frame, const WizardChoices& c) {
    return c.lenrOn && frame.shutterSec > 1 ? 2 * frame.shutterSec : frame.shutterSec;
}

/// The seconds of totality in which the body is exposing or kept free for the next frame.
void measureTotality(WizardCamera& camera, const Frames& frames, const WizardChoices& c,
                     const WizardSite& site) {
    const auto c2 = contactSec(site, "C2");
    const auto c3 = contactSec(site, "C3");
    if (site.central != WizardForm::Central::total || !c2 || !c3)
        return;
    double free = *c2; // counted up to here
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const double begin = frames[i]->offsetSec;
        const bool same = i + 1 < frames.size() && frames[i + 1]->shutterSec == frames[i]->shutterSec &&
                          frames[i + 1]->aperture == frames[i]->aperture &&
                          frames[i + 1]->iso == frames[i]->iso;
        const double end = begin + occupiedSec(*frames[i], c) + (same ? c.minShotGapSame : c.minShotGap);
        if (begin >= *c2 && begin <= *c3)
            ++camera.framesInTotality;
        const double from = std::clamp(begin, free, *c3);
        const double to = std::clamp(end, from, *c3);
        camera.usedSec += to - from;
        free = std::max(free, to);
    }
}

std::set<Guide::Phase> phasesOf(const Frames& frames, const WizardSite& site) {
    constexpr double edge = 200; // no phase of totality reaches further from it, seconds
    std::set<Guide::Phase> phases;
    const auto c2 = contactSec(site, "C2");
    const auto c3 = contactSec(site, "C3");
    if (!c2 || !c3)
        return phases;
    for (const Capture* frame : frames)
        if (frame->offsetSec >= *c2 - edge && frame->offsetSec <= *c3 + edge)
            phases.insert(Guide::phase(frame->comment));
    return phases;
}

void takeCameras(WizardPreview& preview, const WizardRequest& request,
                 const std::vector<WizardChoices>& usable, const std::vector<Capture>& captures) {
    std::map<std::string, Frames> framesOf;
    std::map<std::string, std::vector<std::size_t>> rowsOf;
    for (std::size_t row = 0; row < captures.size(); ++row) {
        framesOf[captures[row].camera].push_back(&captures[row]);
        rowsOf[captures[row].camera].push_back(row);
    }
    for (std::size_t plan = 0; plan < usable.size(); ++plan) {
        for (const std::string& target : usable[plan].targets()) {
            const std::string name = script::ScriptWizardGen::usableCamera(target);
            if (std::ranges::any_of(preview.cameras, [&](const auto& each) { return each.name == name; }))
                continue;
            const Frames& frames = framesOf[name];
            WizardCamera camera{.name = name, .plan = plan, .frames = static_cast<int>(frames.size())};
            measureTotality(camera, frames, usable[plan], request.site);
            if (request.site.central == WizardForm::Central::total)
                camera.gauges =
                    wizardGauges(usable[plan], request.site.totalitySec, phasesOf(frames, request.site));
            TimelineLane lane{.token = name, .label = name};
            for (const Capture* frame : frames)
                lane.offsets.push_back(frame->offsetSec);
            lane.rows = std::move(rowsOf[name]);
            lane.results.assign(lane.rows.size(), FrameState::coming);
            preview.lanes.push_back(std::move(lane));
            preview.cameras.push_back(std::move(camera));
        }
    }
}

void takeCues(WizardPreview& preview, const std::vector<script::AudioCue>& cues) {
    preview.cues = static_cast<int>(cues.size());
    if (cues.empty())
        return;
    TimelineLane lane{.kind = TimelineLane::Kind::cues, .label = "cues"};
    for (std::size_t row = 0; row < cues.size(); ++row) {
        lane.offsets.push_back(cues[row].offsetSec);
        lane.rows.push_back(row);
        lane.results.push_back(FrameState::coming);
    }
    preview.lanes.push_back(std::move(lane));
}

TimelineRange rangeOf(const WizardPreview& preview, const WizardSite& site) {
    double from = std::numeric_limits<double>::infinity();
    double to = -from;
    const auto take = [&](double clock) {
        from = std::min(from, clock);
        to = std::max(to, clock);
    };
    for (const auto& [key, hours] : site.contactTHours)
        take(hours * 3600);
    for (const TimelineLane& lane : preview.lanes)
        if (!lane.offsets.empty()) {
            take(lane.offsets.front());
            take(lane.offsets.back());
        }
    return from <= to ? TimelineRange{from - margin, to + margin} : TimelineRange{};
}

void take(std::vector<WizardRemark>& remarks, const std::vector<script::ScriptDiag>& diagnostics) {
    for (const script::ScriptDiag& diagnostic : diagnostics)
        addRemark(remarks, {.kind = kindOf(diagnostic), .text = diagnostic.message});
}

void collectRemarks(WizardPreview& preview, const WizardRequest& request,
                    const script::CompiledScript& compiled) {
    std::vector<WizardRemark> all;
    if (std::string reason = emptinessReason(request, preview.frames); !reason.empty())
        addRemark(all, {.kind = WizardRemark::Kind::error, .text = std::move(reason)});
    take(all, compiled.diagnostics);
    const WizardSite& site = request.site;
    std::ranges::move(
        issueRemarks(rig::computeIssues({.eclipse = site.eclipse,
                                         .observer = site.observer,
                                         .contactTHours = site.contactTHours,
                                         .siteLabel = site.label,
                                         .bodies = request.bodies},
                                        compiled.captures, script::capturesByToken(compiled.captures))),
        std::back_inserter(all));
    for (WizardRemark& remark : scriptRemarks(preview.text, preview.cameras.size()))
        addRemark(all, std::move(remark));
    std::ranges::stable_sort(all, {}, &WizardRemark::kind);
    preview.remarks = std::move(all);
}

} // namespace

WizardSite wizardSite(const rig::SiteDesk& desk) {
    WizardSite site{{desk.compileSite()}, desk.site().label};
    const auto& circumstances = desk.circ();
    if (!circumstances)
        return site;
    site.seen = circumstances->maxMagnitude > 0;
    site.totalitySec = circumstances->totalitySeconds;
    if (circumstances->isTotal) {
        const auto max = contactSec(site, "MAX");
        const bool annular = max && site.eclipse->geometry(*max / 3600, site.observer).L2 > 0;
        site.central = annular ? WizardForm::Central::annular : WizardForm::Central::total;
    }
    return site;
}

std::string wizardScript(const WizardRequest& request) {
    return script::ScriptWizardGen::build(request.plans, request.site.totalitySec,
                                          request.site.central != WizardForm::Central::none,
                                          horizonOf(request));
}

WizardPreview wizardPreview(const WizardRequest& request) {
    WizardPreview preview;
    preview.text = wizardScript(request);
    const script::CompiledScript compiled =
        script::ZenkaScript::compile(preview.text, request.site.context());
    preview.frames = static_cast<int>(compiled.captures.size());
    std::vector<WizardChoices> usable;
    usable.reserve(request.plans.size());
    for (const WizardChoices& plan : request.plans)
        usable.push_back(script::ScriptWizardGen::usable(plan).choices);
    takeCameras(preview, request, usable, compiled.captures);
    takeCues(preview, compiled.audioCues);
    preview.whole = rangeOf(preview, request.site);
    collectRemarks(preview, request, compiled);
    return preview;
}

} // namespace zenka::ui
