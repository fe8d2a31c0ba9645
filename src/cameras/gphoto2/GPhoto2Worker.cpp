#include "cameras/gphoto2/GPhoto2Worker.h"

#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zenka::cameras {

using base::Seconds;

namespace {

constexpr Seconds startTimeout{12};
constexpr Seconds shotTimeout{12};
constexpr Seconds warmUpPause{2};
constexpr Seconds probeTimeout{10};
constexpr Seconds heldReadTimeout{5};
constexpr Seconds profileReadTimeout{10};

constexpr double warmUpAperture = 8.0; // Nikon bodies want one before their first shot
constexpr int busyTimeoutsAllowed = 7; // a long card write looks like a body that hangs
constexpr int softErrorsAllowed = 2;
constexpr int settlingErrorsAllowed = 40; // a Nikon takes up to a minute to hand control over
constexpr double longestBackOffSec = 90;
constexpr double longestFirstBackOffSec = 6;

constexpr const char* noClaim = "Could not claim the camera to read its settings (it may be busy, or the USB "
                                "tether wedged; re-plug and re-Detect).";
constexpr const char* noLists =
    "The camera claimed but returned no value lists (this body driver doesn't expose them).";

std::string lastLine(std::string_view text) {
    text = base::trimmed(text);
    const std::size_t newline = text.rfind('\n');
    return GPhoto2Text::decoded(base::trimmed(newline == text.npos ? text : text.substr(newline + 1)));
}

std::string fileNameOf(const std::string& model) {
    std::string name = model;
    std::ranges::replace_if(
        name, [](char c) { return c == '/' || c == '\\' || static_cast<unsigned char>(c) < ' '; }, '-');
    return "gphoto2 profile " + name + ".txt";
}

} // namespace

GPhoto2Worker::GPhoto2Worker(GPhoto2Program& program, std::string model, std::string port,
                             const Memory& memory, const std::shared_ptr<ports::WorkQueue>& queue)
    : program_(program), model_(std::move(model)), port_(std::move(port)), queue_(queue),
      emptyReads_(memory.emptyReads), exposureChoices_(memory.choices.value_or(ExposureChoices{})) {
}

double GPhoto2Worker::backOffSec(int fails, bool hasLandedAFrame) {
    if (fails < 1)
        return 0;
    if (hasLandedAFrame)
        return std::min(std::ldexp(2.0, std::min(fails, 30)), longestBackOffSec);
    return std::min(fails * 1.5, longestFirstBackOffSec);
}

// --- shots

CaptureOutcome GPhoto2Worker::shoot(const Shot& shot, bool persistent, double askedAt) {
    const Seconds timeout = shot.bulb ? Seconds{std::max(shot.shutterSec + 8, 10.0)} : shotTimeout;
    // What a driver that let its body go starts would take the body from its successor.
    CaptureOutcome outcome = !connected_  ? CaptureOutcome{.note = "the camera was let go"}
                             : persistent ? shootHeld(shot, timeout)
                                          : shootOnce(shot, timeout);
    outcome.latencyMs = (now() - askedAt) * 1000;
    outcome.responded = outcome.ok;
    outcome.deviceGone = !outcome.ok && GPhoto2Text::isDeviceGone(outcome.note);
    if (outcome.ok)
        hasLandedAFrame_ = true;
    return outcome;
}

CaptureOutcome GPhoto2Worker::shootHeld(const Shot& shot, Seconds timeout) {
    if (!sessionAlive()) {
        const double backOff = backOffSec(consecutiveSessionFails_, hasLandedAFrame_);
        if (backOff > 0 && lastRebuildAttempt_ && now() - *lastRebuildAttempt_ < backOff)
            return {.note =
                        absl::StrFormat("camera recovering — backing off %gs to avoid wedging it", backOff)};
        lastRebuildAttempt_ = now();
        if (!buildSession(shot.aperture)) {
            ++consecutiveSessionFails_;
            return {.note = "couldn't claim the camera (session rebuild failed)"};
        }
        readChoicesIfNeedBe(When::duringAShot);
    }
    const GPhoto2Session::Fired fired = session_->capture(shot, timeout);
    CaptureOutcome outcome{.ok = fired.ok, .note = fired.note, .sentShutter = session_->lastSentShutter()};
    if (!fired.sessionBroken)
        consecutiveBusyTimeouts_ = 0;
    if (fired.ok) {
        sessionSoftErrors_ = 0;
        consecutiveSessionFails_ = 0;
    } else {
        afterFailure(fired);
    }
    return outcome;
}

void GPhoto2Worker::afterFailure(const GPhoto2Session::Fired& fired) {
    ++consecutiveSessionFails_;
    if (fired.sessionBroken) {
        sessionSoftErrors_ = 0;
        if (fired.softTimeout && session_->hasFiredSuccessfully() &&
            consecutiveBusyTimeouts_ <= busyTimeoutsAllowed) {
            ++consecutiveBusyTimeouts_;
            return;
        }
        consecutiveBusyTimeouts_ = 0;
        dropSession();
        return;
    }
    const bool settling = base::containsIgnoringCase(fired.note, "could not trigger capture") &&
                          !session_->hasFiredSuccessfully();
    if (++sessionSoftErrors_ < (settling ? settlingErrorsAllowed : softErrorsAllowed))
        return;
    sessionSoftErrors_ = 0;
    dropSession();
}

CaptureOutcome GPhoto2Worker::shootOnce(const Shot& shot, Seconds timeout) {
    const ExposureChoices choices = exposureChoices();
    std::vector<std::string> arguments;
    const auto set = [&arguments](const std::string& keyAndValue) {
        arguments.insert(arguments.end(), {"--set-config-value", keyAndValue});
    };
    CaptureOutcome outcome;
    if (shot.iso >= 1)
        set("iso=" + GPhoto2Text::isoConfig(shot.iso, choices));
    if (shot.aperture > 0)
        set(choices.apertureProp + "=" + GPhoto2Text::apertureConfig(shot.aperture, choices));
    if (shot.expComp != 0)
        set(absl::StrFormat("exposurecompensation=%g", shot.expComp));
    if (shot.bulb) {
        arguments.push_back(absl::StrFormat("--wait-event=%.0fms", std::max(shot.shutterSec, 0.0) * 1000));
        outcome.sentShutter = "bulb";
    } else {
        if (shot.shutterSec > 0) {
            const std::string write = GPhoto2Text::shutterWrite(shot.shutterSec, false, choices).text();
            set(write);
            outcome.sentShutter = "per-shot " + write;
        }
        arguments.emplace_back("--trigger-capture");
    }
    const GPhoto2Program::Result result = program_.run(port_, arguments, timeout);
    outcome.ok = result.ok();
    if (!outcome.ok) {
        outcome.note = lastLine(result.errorText);
        if (outcome.note.empty())
            outcome.note = absl::StrFormat("gphoto2 error %d", result.code);
    }
    return outcome;
}

// --- the session

void GPhoto2Worker::setSession(std::unique_ptr<GPhoto2Session> session) {
    std::shared_ptr<GPhoto2Session> old = std::exchange(session_, std::move(session));
    const std::lock_guard lock(armedLock_);
    killable_ = session_;
    armed_ = session_ != nullptr && session_->alive();
    if (session_ && (killed_ || !connected_))
        session_->kill();
}

bool GPhoto2Worker::buildSession(double startAperture) {
    dropSession();
    setSession(std::make_unique<GPhoto2Session>(
        program_, GPhoto2Session::setupFor(port_, model_, startAperture, exposureChoices())));
    if (!session_->start(startTimeout)) {
        dropSession();
        return false;
    }
    const std::lock_guard lock(armedLock_);
    armed_ = true;
    tookControl_ = session_->tookControl();
    return true;
}

std::shared_ptr<GPhoto2Session> GPhoto2Worker::shortSession() {
    if (!connected_)
        return nullptr;
    auto session = std::make_shared<GPhoto2Session>(program_, GPhoto2Session::Setup{.port = port_});
    {
        const std::lock_guard lock(armedLock_);
        killable_ = session;
        if (killed_ || !connected_)
            session->kill();
    }
    return session->start(startTimeout) ? session : nullptr;
}

void GPhoto2Worker::dropSession() {
    if (!session_)
        return;
    session_->stop();
    setSession(nullptr);
}

void GPhoto2Worker::forgetSettings() {
    if (session_)
        session_->forget();
}

void GPhoto2Worker::warmUp(int triesLeft) {
    if (!connected_ || sessionAlive())
        return;
    if (buildSession(warmUpAperture)) {
        readChoicesIfNeedBe(When::warmUp);
        consecutiveSessionFails_ = 0;
        lastRebuildAttempt_.reset();
        return;
    }
    const auto queue = queue_.lock();
    if (triesLeft > 1 && queue)
        queue->postAfter(warmUpPause,
                         [self = shared_from_this(), triesLeft] { self->warmUp(triesLeft - 1); });
    else if (connected_)
        tellUnclaimed();
}

void GPhoto2Worker::tellUnclaimed() {
    std::string programs;
    for (const std::string& name :
         program_.machine().daemons.cameraGrabbingProcesses().value_or(std::vector<std::string>()))
        if (CameraDaemons::isCameraProgram(name))
            programs += (programs.empty() ? "" : ", ") + name;
    const std::string cause =
        programs.empty()
            ? "Quit other camera programs, set its USB mode to PC or PTP, unplug it and plug it in again"
            : "These programs take hold of cameras: " + programs + ". Quit them";
    onMain([words = model_ + ": the camera could not be claimed. " + cause +
                    ", then Detect again."](const GPhoto2Machine& machine) { machine.warn(words); });
}

void GPhoto2Worker::keepAlive() {
    if (!session_ || session_->ping())
        return;
    dropSession();
    if (std::exchange(reportedPingFailure_, true))
        return;
    onMain([model = model_](const GPhoto2Machine& machine) {
        machine.report("error", {{"kind", "gp_ping_failed"}, {"model", model}});
    });
}

// --- what the body says

CameraStatus GPhoto2Worker::probe() {
    if (!sessionAlive())
        return {};
    CameraStatus status;
    const std::string reply = session_->runRaw("get-config expprogram", probeTimeout);
    if (reply.starts_with("<"))
        return status; // no answer: a second question would only wait again
    if (const auto program = GPhoto2Text::parseExpProgram(reply)) {
        status.isManual = program->isManual;
        status.modeName = program->modeName;
    }
    if (const auto level = session_->getConfigCurrent("batterylevel", probeTimeout))
        status.batteryPercent = GPhoto2Text::parseBattery(*level);
    return status;
}

AutoIsoStatus GPhoto2Worker::probeAutoISO() {
    if (!sessionAlive())
        return {};
    const auto said = session_->getConfigCurrent("autoiso", probeTimeout);
    const std::optional<bool> on = said ? GPhoto2Text::parseAutoISO(*said) : std::nullopt;
    if (on == true)
        return {.isAuto = true, .detail = "Auto-ISO on"};
    const auto iso = session_->getConfigCurrent("iso", probeTimeout);
    if (iso && base::equalIgnoringCase(*iso, "Auto"))
        return {.isAuto = true, .detail = "ISO set to Auto"};
    if (on == false)
        return {.isAuto = false, .detail = "Auto-ISO off"};
    if (iso && !iso->empty())
        return {.isAuto = false, .detail = "ISO " + *iso};
    return {};
}

std::vector<GPhoto2Readiness::Warning> GPhoto2Worker::readReadiness() {
    if (sessionAlive())
        return GPhoto2Readiness::judge(GPhoto2Readiness::ask(*session_, probeTimeout), model_);
    const auto session = shortSession();
    if (!session)
        return {};
    const auto answers = GPhoto2Readiness::ask(*session, probeTimeout);
    session->stop();
    return GPhoto2Readiness::judge(answers, model_);
}

void GPhoto2Worker::readExposureChoices() {
    setProfileError({});
    if (sessionAlive()) {
        takeRead(*session_, profileReadTimeout);
    } else if (const auto session = shortSession()) {
        takeRead(*session, profileReadTimeout);
        session->stop();
    } else {
        setProfileError(noClaim);
        return;
    }
    if (exposureChoices().empty())
        setProfileError(noLists);
}

void GPhoto2Worker::learnChoices() {
    if (exposureChoices().empty() && GPhoto2Choices::shouldReadChoicesLive(emptyReads_))
        readExposureChoices();
}

void GPhoto2Worker::readChoicesIfNeedBe(When when) {
    // A remembered list is read anew at a warm-up, for the lens may have been changed, and not while a shot
    // waits.
    if (!GPhoto2Choices::shouldReadChoicesLive(emptyReads_))
        return;
    if (when == When::duringAShot && !exposureChoices().empty())
        return;
    takeRead(*session_, heldReadTimeout);
}

void GPhoto2Worker::takeRead(GPhoto2Session& session, Seconds perKey) {
    const GPhoto2Choices::Read read = GPhoto2Choices::readThrough(session, model_, perKey);
    if (!read.degenerate()) {
        {
            const std::lock_guard lock(armedLock_);
            exposureChoices_ = read.choices;
        }
        session.setChoices(read.choices);
        emptyReads_ = 0;
        onMain([model = model_, choices = read.choices](const GPhoto2Machine& machine) {
            GPhoto2Choices::cacheChoices(machine.settings, model, choices);
        });
        return;
    }
    ++emptyReads_;
    const auto known = program_.modelStats().knownGoodShutterCount(model_);
    onMain([model = model_, count = read.shutterCount, known](const GPhoto2Machine& machine) {
        GPhoto2Choices::noteEmptyChoiceRead(machine.settings, model);
        if (!known)
            return;
        machine.warn(GPhoto2Choices::degenerateWarning(model, count, *known));
        machine.report("degenerate_shutter_ladder", {{"model", model},
                                                     {"count", absl::StrFormat("%d", count)},
                                                     {"known", absl::StrFormat("%d", *known)}});
    });
    writeDiagnostics(session);
}

void GPhoto2Worker::writeDiagnostics(GPhoto2Session& session) {
    const auto& machine = program_.machine();
    machine.files.writeAtomically(machine.folders.runLogs() / fileNameOf(model_),
                                  GPhoto2Choices::diagnosticsText(session, model_, heldReadTimeout));
}

// --- shared state

void GPhoto2Worker::setConnected(bool connected) {
    connected_ = connected;
    const std::lock_guard lock(armedLock_);
    // It would hold the body for up to half a minute against its next driver, and the program's end up.
    if (!connected && killable_ && !armed_)
        killable_->kill();
}

bool GPhoto2Worker::armed() const {
    const std::lock_guard lock(armedLock_);
    return armed_;
}

std::optional<bool> GPhoto2Worker::tookControl() const {
    const std::lock_guard lock(armedLock_);
    return tookControl_;
}

ExposureChoices GPhoto2Worker::exposureChoices() const {
    const std::lock_guard lock(armedLock_);
    return exposureChoices_;
}

std::string GPhoto2Worker::lastProfileError() const {
    const std::lock_guard lock(armedLock_);
    return lastProfileError_;
}

void GPhoto2Worker::setProfileError(std::string error) {
    const std::lock_guard lock(armedLock_);
    lastProfileError_ = std::move(error);
}

void GPhoto2Worker::killSession() {
    const std::lock_guard lock(armedLock_);
    killed_ = true;
    if (killable_)
        killable_->kill();
}

void GPhoto2Worker::onMain(std::function<void(const GPhoto2Machine&)> function) {
    program_.machine().loop.post(
        [&machine = program_.machine(), function = std::move(function)] { function(machine); });
}

} // namespace zenka::cameras
