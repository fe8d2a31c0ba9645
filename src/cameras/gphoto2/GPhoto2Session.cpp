#include "cameras/gphoto2/GPhoto2Session.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <utility>

namespace zenka::cameras {

using base::Seconds;

namespace {

constexpr Seconds setupTimeout{8};
constexpr Seconds pingTimeout{6};
constexpr Seconds writeLimit{2}; // a command is some bytes: a child that takes none of them has stopped
constexpr Seconds exitPatience{0.120};
constexpr Seconds reapLimit{1};

constexpr std::string_view notAlive = "<session not alive>";
constexpr std::string_view notWritten = "<write failed>";
constexpr std::string_view notReadable = "<undecodable>";

} // namespace

/// The commands of one shot in their order; the last one fires.
struct GPhoto2Session::Plan {
    enum class Step { iso, aperture, expComp, shutter, fire };
    struct Command {
        Step step;
        std::string text;
    };
    std::vector<Command> commands;
    std::string sentShutter;

    const std::string& verb() const { return commands.back().text; }
    std::string lines() const {
        std::string all;
        for (const Command& command : commands)
            all += command.text + "\n";
        return all;
    }
};

GPhoto2Session::Setup GPhoto2Session::setupFor(const std::string& port, const std::string& model,
                                               double startAperture, const ExposureChoices& choices) {
    const bool nikon = GPhoto2Text::isNikon(model);
    return {.port = port,
            .forceCardTarget = GPhoto2Text::forcesCardTarget(model),
            .fireViaCaptureImage = GPhoto2Text::isOlympus(model),
            .setApertureOnceAtStart = nikon ? startAperture : 0,
            .takeControlAtStart = nikon,
            .choices = choices};
}

GPhoto2Session::GPhoto2Session(GPhoto2Program& program, Setup setup)
    : program_(program), port_(std::move(setup.port)), forceCardTarget_(setup.forceCardTarget),
      fireViaCaptureImage_(setup.fireViaCaptureImage), choices_(std::move(setup.choices)),
      setApertureOnceAtStart_(setup.setApertureOnceAtStart), takeControlAtStart_(setup.takeControlAtStart) {
}

GPhoto2Session::~GPhoto2Session() = default; // the child's own end kills it

bool GPhoto2Session::start(Seconds timeout) {
    const CameraDaemons::Held free(program_.machine().daemons);
    program_.machine().pause(Seconds{0.150});
    if (!launch())
        return false;
    expectedPrompts_ = 1;
    if (!waitForPrompts(deadlineIn(timeout))) {
        stop();
        return false;
    }
    buffer_.trimToLastPrompt();
    alive_ = true;
    if (takeControlAtStart_)
        tookControl_ = sendChecked("set-config-value /main/actions/controlmode=1", setupTimeout);
    if (forceCardTarget_)
        sendBestEffort("set-config capturetarget=1", setupTimeout);
    if (setApertureOnceAtStart_ > 0)
        sendBestEffort("set-config-value " + choices_.apertureProp + "=" +
                           GPhoto2Text::apertureConfig(setApertureOnceAtStart_, choices_),
                       setupTimeout);
    return true;
}

bool GPhoto2Session::launch() {
    ports::ChildStart start = program_.startOf(port_, {"--shell"});
    start.mergeErrors = true;
    auto started = program_.machine().children.start(start);
    const std::lock_guard lock(processMutex_);
    process_ = std::move(started.child);
    return process_ && !killed_;
}

void GPhoto2Session::stop() {
    alive_ = false;
    if (running()) {
        process_->write("exit\n", exitPatience);
        if (!process_->waitForEnd(exitPatience)) {
            process_->terminate();
            if (!process_->waitForEnd(exitPatience)) {
                process_->kill();
                process_->waitForEnd(reapLimit);
            }
        }
    }
    const std::lock_guard lock(processMutex_);
    process_.reset();
}

void GPhoto2Session::kill() {
    const std::lock_guard lock(processMutex_);
    killed_ = true;
    if (process_)
        process_->kill();
}

bool GPhoto2Session::running() {
    return process_ && !ended_ && process_->running();
}

bool GPhoto2Session::alive() {
    return alive_ && running();
}

bool GPhoto2Session::ping() {
    if (!alive() || !write("get-config datetime\n", 1, writeLimit) ||
        !waitForPrompts(deadlineIn(pingTimeout)))
        return false;
    buffer_.trimToLastPrompt();
    return running();
}

// --- the dialogue

double GPhoto2Session::deadlineIn(Seconds timeout) const {
    return program_.machine().clock.continuousSeconds() + timeout.count();
}

Seconds GPhoto2Session::until(double deadline) const {
    return Seconds{std::max(0.0, deadline - program_.machine().clock.continuousSeconds())};
}

bool GPhoto2Session::write(const std::string& lines, std::size_t commands, Seconds limit) {
    expectedPrompts_ = std::max(expectedPrompts_, buffer_.prompts()) + commands;
    return process_->write(lines, limit);
}

bool GPhoto2Session::waitForPrompts(double deadline) {
    while (buffer_.prompts() < expectedPrompts_) {
        if (ended_)
            return false;
        const Seconds left = until(deadline);
        const auto piece = process_->read(left);
        buffer_.append(piece.out);
        ended_ = piece.ended;
        if (left <= Seconds::zero() && piece.out.empty())
            break;
    }
    return buffer_.prompts() >= expectedPrompts_;
}

bool GPhoto2Session::sendChecked(const std::string& command, Seconds timeout) {
    if (!alive() || !write(command + "\n", 1, writeLimit) || !waitForPrompts(deadlineIn(timeout)))
        return false;
    const bool fine = !GPhoto2Text::firstErrorLine(buffer_.repliesOf(1));
    buffer_.trimToLastPrompt();
    return fine;
}

void GPhoto2Session::sendBestEffort(const std::string& command, Seconds timeout) {
    sendChecked(command, timeout);
}

std::string GPhoto2Session::runRaw(const std::string& command, Seconds timeout) {
    if (!alive())
        return std::string(notAlive);
    if (!write(command + "\n", 1, writeLimit))
        return std::string(notWritten);
    if (!waitForPrompts(deadlineIn(timeout)))
        return absl::StrFormat("<timed out after %gs>", timeout.count());
    const std::string_view reply = buffer_.repliesOf(1);
    const bool binary = reply.find('\0') != reply.npos;
    std::string text = binary ? std::string(notReadable) : GPhoto2Text::decoded(reply);
    buffer_.trimToLastPrompt();
    return text;
}

std::vector<std::string> GPhoto2Session::getConfigChoices(const std::string& key, Seconds timeout) {
    return GPhoto2Text::choices(runRaw("get-config " + key, timeout));
}

std::optional<std::string> GPhoto2Session::getConfigCurrent(const std::string& key, Seconds timeout) {
    return GPhoto2Text::current(runRaw("get-config " + key, timeout));
}

std::vector<std::string> GPhoto2Session::getStorageLabels(Seconds timeout) {
    return GPhoto2Text::labels(runRaw("storage-info", timeout));
}

// --- shots

GPhoto2Session::Plan GPhoto2Session::planFor(const Shot& shot) const {
    using Step = Plan::Step;
    Plan plan{.sentShutter = lastSentShutter_};
    const auto set = [&plan](Step step, const std::string& keyAndValue) {
        plan.commands.push_back({.step = step, .text = "set-config-value " + keyAndValue});
    };
    if (shot.iso >= 1 && shot.iso != lastISO_)
        set(Step::iso, "iso=" + GPhoto2Text::isoConfig(shot.iso, choices_));
    if (shot.aperture > 0 && shot.aperture != lastAperture_)
        set(Step::aperture,
            choices_.apertureProp + "=" + GPhoto2Text::apertureConfig(shot.aperture, choices_));
    if (shot.expComp != 0 && shot.expComp != lastExpComp_)
        set(Step::expComp, absl::StrFormat("exposurecompensation=%g", shot.expComp));
    if (shot.bulb) {
        plan.sentShutter = "bulb";
        const double ms = std::max(shot.shutterSec, 0.0) * 1000;
        plan.commands.push_back({.step = Step::fire, .text = absl::StrFormat("wait-event %.0fms", ms)});
        return plan;
    }
    if (shot.shutterSec > 0 && shot.shutterSec != lastShutter_) {
        plan.sentShutter = GPhoto2Text::shutterWrite(shot.shutterSec, false, choices_).text();
        set(Step::shutter, plan.sentShutter);
    }
    plan.commands.push_back(
        {.step = Step::fire, .text = fireViaCaptureImage_ ? "capture-image" : "trigger-capture"});
    return plan;
}

GPhoto2Session::Fired GPhoto2Session::capture(const Shot& shot, Seconds timeout) {
    if (!alive())
        return {.note = "session not running", .sessionBroken = true};
    const Plan plan = planFor(shot);
    lastSentShutter_ = plan.sentShutter;
    const double deadline = deadlineIn(timeout);
    if (!write(plan.lines(), plan.commands.size(), std::min(writeLimit, timeout))) {
        forget();
        return {.note =
                    running() ? "write failed: gphoto2 takes no input" : "write failed: gphoto2 has ended",
                .sessionBroken = true};
    }
    if (!waitForPrompts(deadline)) {
        forget();
        if (running())
            return {
                .note = absl::StrFormat(
                    "timed out after %gs, camera busy or unresponsive (skipped to recover)", timeout.count()),
                .sessionBroken = true,
                .softTimeout = true};
        return {.note =
                    "session died mid-shot (gphoto2 exited): " + GPhoto2Text::outputTail(buffer_.text(), 160),
                .sessionBroken = true};
    }
    if (!running()) {
        forget();
        return {.note = "session ended", .sessionBroken = true};
    }
    const std::string replies = GPhoto2Text::decoded(buffer_.repliesOf(plan.commands.size()));
    buffer_.trimToLastPrompt();
    const bool requireStored = fireViaCaptureImage_ && !shot.bulb;
    if (auto error = GPhoto2Text::fireErrorLine(replies, plan.verb(), requireStored)) {
        forget();
        return {.note = std::move(*error)};
    }
    remember(plan, shot, replies);
    hasFiredSuccessfully_ = true;
    return {.ok = true};
}

void GPhoto2Session::remember(const Plan& plan, const Shot& shot, const std::string& replies) {
    const auto answers = GPhoto2Text::replies(replies);
    for (std::size_t i = 0; i < plan.commands.size() && i < answers.size(); ++i) {
        // What a busy body refused is sent again with the next shot.
        if (GPhoto2Text::firstErrorLine(answers[i]))
            continue;
        switch (plan.commands[i].step) {
        case Plan::Step::iso: lastISO_ = shot.iso; break;
        case Plan::Step::aperture: lastAperture_ = shot.aperture; break;
        case Plan::Step::expComp: lastExpComp_ = shot.expComp; break;
        case Plan::Step::shutter: lastShutter_ = shot.shutterSec; break;
        case Plan::Step::fire: break;
        }
    }
}

void GPhoto2Session::forget() {
    lastISO_.reset();
    lastAperture_.reset();
    lastShutter_.reset();
    lastExpComp_.reset();
}

} // namespace zenka::cameras
