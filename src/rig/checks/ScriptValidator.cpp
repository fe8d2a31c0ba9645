#include "rig/checks/ScriptValidator.h"

#include "base/Text.h"
#include "cameras/CameraProfiles.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace zenka::rig {

ScriptValidator::ScriptValidator(const ports::Ports& ports, RigLog& log, const SiteDesk& site,
                                 ScriptDesk& script, const CameraRoster& roster, const MeasuredFloors& floors,
                                 const HorizonDesk& horizons)
    : ports_(ports), log_(log), site_(site), script_(script), roster_(roster), floors_(floors),
      horizons_(horizons) {
    script.compiled().connect([this] { followScript(); });
    horizons.here().changed().connect([this](const auto&) { forget(); });
}

void ScriptValidator::forget() {
    ++looks_;
    latestIssues_.reset();
    if (didValidate_.get()) {
        validationIssues_.set({});
        didValidate_.set(false);
    }
}

void ScriptValidator::followScript() {
    forget();
    for (const Found& found : std::exchange(whenCompiled_, {}))
        find(found);
}

void ScriptValidator::validateScript() {
    find([this](const Finding& finding) {
        if (finding.current)
            publish(finding);
    });
}

void ScriptValidator::look(std::function<void()> then) {
    find([this, then = std::move(then)](const Finding& finding) {
        if (finding.current)
            then();
        else
            look(then);
    });
}

void ScriptValidator::find(Found found) {
    if (script_.compiling()) {
        whenCompiled_.push_back(std::move(found));
        return;
    }
    struct Work {
        IssueContext context;
        std::vector<script::Capture> captures;
        script::CapturesByToken byToken;
        Issues issues;
    };
    const auto work = std::make_shared<Work>(Work{.context = context(script_.cameraTokens()),
                                                  .captures = script_.captures(),
                                                  .byToken = script_.capturesByToken()});
    const auto arrive = lifeline_.guard([this, work, found = std::move(found), look = looks_] {
        const bool current = look == looks_;
        if (current)
            latestIssues_ = work->issues;
        found({.issues = work->issues, .captures = work->captures.size(), .current = current});
    });
    ports_.queues.background([work, arrive, &loop = ports_.loop] {
        work->issues = computeIssues(work->context, work->captures, work->byToken);
        loop.post(arrive);
    });
}

void ScriptValidator::publish(const Finding& finding) {
    const auto errors = std::ranges::count(finding.issues, "error", &script::ScriptDiag::severity);
    const auto warnings = std::ssize(finding.issues) - errors;
    validationIssues_.set(finding.issues);
    didValidate_.set(true);
    if (errors + warnings == 0)
        log_.pushLog(absl::StrFormat("✓ Validate: no issues across %d captures", finding.captures));
    else
        log_.pushLog("Validate: " + base::counted(errors, "error") + ", " +
                     base::counted(warnings, "warning"));
}

ScriptValidator::Issues ScriptValidator::issues(const std::string& forScriptText) const {
    const auto site = site_.compileSite();
    auto compiled = script::ZenkaScript::compile(forScriptText, site.context());
    Issues all = std::move(compiled.diagnostics);
    std::ranges::move(computeIssues(context(compiled.cameras), compiled.captures,
                                    script::capturesByToken(compiled.captures)),
                      std::back_inserter(all));
    return all;
}

void ScriptValidator::examine(std::string text,
                              std::function<void(const std::shared_ptr<const Examined>&)> then) const {
    struct Work {
        Examined examined;
        IssueContext context;
    };
    const auto work = std::make_shared<Work>();
    work->examined.text = std::move(text);
    work->examined.site = site_.compileSite();
    const auto arrive = lifeline_.guard(
        [work, then = std::move(then)] { then(std::shared_ptr<const Examined>(work, &work->examined)); });
    // Which bodies it is held against is known once its cameras are, and the bodies belong to this thread.
    const auto holdAgainst = lifeline_.guard([this, work, arrive] {
        work->context = context(work->examined.compiled.cameras);
        ports_.queues.background([work, arrive, &loop = ports_.loop] {
            Examined& examined = work->examined;
            examined.issues = examined.compiled.diagnostics;
            std::ranges::move(computeIssues(work->context, examined.compiled.captures,
                                            script::capturesByToken(examined.compiled.captures)),
                              std::back_inserter(examined.issues));
            loop.post(arrive);
        });
    });
    ports_.queues.background([work, holdAgainst, &loop = ports_.loop] {
        Examined& examined = work->examined;
        examined.compiled = script::ZenkaScript::compile(examined.text, examined.site.context());
        loop.post(holdAgainst);
    });
}

IssueContext ScriptValidator::context(const std::vector<std::string>& tokens) const {
    IssueContext context{.eclipse = site_.sharedEclipse(),
                         .observer = site_.observer(),
                         .contactTHours = site_.contactTHours(),
                         .siteLabel = site_.site().label};
    if (const auto& horizon = horizons_.here().get())
        context.horizon = horizon->result.samples;
    for (const std::string& token : tokens) {
        std::vector<IssueBody>& bodies = context.bodies[token];
        for (const auto& camera : roster_.camerasFor(token)) {
            if (camera->connected() && !roster_.isDisconnected(camera->id()))
                bodies.push_back(bodyBehind(*camera));
        }
        if (bodies.empty())
            bodies.push_back({.name = token,
                              .measuredFloorSec = floors_.measuredFloor(token),
                              .catalogFloorSec = cameras::ShotProfiles::forModel(token).measuredFloorSec});
    }
    return context;
}

IssueBody ScriptValidator::bodyBehind(const cameras::CameraControl& camera) const {
    const std::string& model = camera.model();
    return {.name = roster_.labelFor(camera),
            .driver = camera.backend(),
            .measuredFloorSec = floors_.measuredFloor(model),
            .sustainedFloorSec = floors_.sustainedFloor(model),
            .catalogFloorSec = cameras::ShotProfiles::forModel(model).measuredFloorSec,
            .burstDepth = floors_.burstDepth(model)};
}

} // namespace zenka::rig
