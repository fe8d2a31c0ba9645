#include "cameras/gphoto2/GPhoto2Program.h"

#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace zenka::cameras {

namespace {

using base::Seconds;

// A body that prints without end must not fill the memory.
constexpr std::size_t outputLimit = std::size_t{4} << 20;

const std::array<std::filesystem::path, 2> usualPlaces{"/usr/local/bin/gphoto2", "/usr/bin/gphoto2"};

/// Appends, and keeps the end of what got too long.
void gather(std::string& all, std::string_view piece) {
    all += piece;
    if (all.size() > outputLimit)
        all.erase(0, all.size() - outputLimit / 2);
}

std::string nameOfPort(const std::string& port) {
    std::string name = port.empty() ? "none" : port;
    std::ranges::replace_if(
        name, [](char c) { return (c < '0' || c > '9') && (c < 'a' || c > 'z'); }, '-');
    return name;
}

} // namespace

void GPhoto2ModelStats::set(std::map<std::string, int> shutterMaxByModel) {
    const std::lock_guard lock(mutex_);
    shutterMax_ = std::move(shutterMaxByModel);
}

std::optional<int> GPhoto2ModelStats::knownGoodShutterCount(const std::string& model) const {
    constexpr int fewest = 5;
    const std::lock_guard lock(mutex_);
    const auto found = shutterMax_.find(model);
    return found != shutterMax_.end() && found->second >= fewest ? std::optional(found->second)
                                                                 : std::nullopt;
}

GPhoto2Program::GPhoto2Program(const GPhoto2Machine& machine)
    : machine_(machine), bundleRoot_(GPhoto2Places::bundleRoot(machine.programFolder)),
      binary_(GPhoto2Places::binary(bundleRoot_, usualPlaces)),
      pluginEnv_(GPhoto2Places::pluginEnv(bundleRoot_)) {
}

ports::ChildStart GPhoto2Program::startOf(const std::string& port, std::vector<std::string> arguments) const {
    ports::ChildStart start{.program = binary_, .environment = pluginEnv_};
    if (!port.empty())
        start.arguments = {"--port", port};
    start.arguments.insert(start.arguments.end(), arguments.begin(), arguments.end());
    // It keeps model, port and capture target of one run for the next in ~/.gphoto. A home that is never
    // made lets it keep nothing, and it does not mind.
    start.environment["HOME"] = machine_.folders.applicationSupport() / "gphoto2" / nameOfPort(port);
    start.environment["COLUMNS"] = "500"; // or the echo of a command is wrapped
    start.environment["LC_ALL"] = "C";
    return start;
}

GPhoto2Program::Result GPhoto2Program::runOnce(const std::string& port,
                                               const std::vector<std::string>& arguments, Seconds timeout) {
    auto started = machine_.children.start(startOf(port, arguments));
    if (!started.child)
        return {.code = -1, .errorText = "launch failed: " + started.fault};
    ports::ChildProcess& child = *started.child;

    const double deadline = machine_.clock.continuousSeconds() + timeout.count();
    const auto left = [&] { return Seconds{std::max(0.0, deadline - machine_.clock.continuousSeconds())}; };
    Result result;
    bool ended = false;
    do {
        const auto piece = child.read(left());
        gather(result.output, piece.out);
        gather(result.errorText, piece.err);
        ended = piece.ended;
    } while (!ended && left() > Seconds::zero());

    if (ended) {
        if (const auto code = child.waitForEnd(left())) {
            result.code = *code;
            return result;
        }
    }
    child.terminate();
    if (!child.waitForEnd(Seconds{0.3})) {
        child.kill();
        child.waitForEnd(Seconds{1});
    }
    result.code = -2;
    result.errorText = absl::StrFormat(
        "timed out after %gs, camera busy or unresponsive (skipped to recover)", timeout.count());
    return result;
}

GPhoto2Program::Result GPhoto2Program::run(const std::string& port, const std::vector<std::string>& arguments,
                                           Seconds timeout) {
    machine_.daemons.killCameraDaemons();
    machine_.pause(Seconds{0.2});
    Result result = runOnce(port, arguments, timeout);
    if (result.ok() || !base::containsIgnoringCase(result.errorText, "claim"))
        return result;
    machine_.daemons.killCameraDaemons();
    machine_.pause(Seconds{0.35});
    return runOnce(port, arguments, timeout);
}

std::vector<GPhoto2Text::Detected> GPhoto2Program::autodetect() {
    return GPhoto2Text::parseAutodetect(run({}, {"--auto-detect"}, Seconds{20}).output);
}

GPhoto2Program::Alive GPhoto2Program::aliveWithWedgeRecovery(const std::string& port) {
    if (run(port, {"--summary"}, Seconds{8}).ok())
        return {.alive = true};
    if (!shouldAttemptUSBReset(port, Seconds{60}))
        return {};
    run(port, {"--reset"}, Seconds{15});
    machine_.pause(Seconds{3});
    const bool revived = run(port, {"--summary"}, Seconds{8}).ok();
    return {.alive = revived, .resetRevived = revived};
}

bool GPhoto2Program::shouldAttemptUSBReset(const std::string& port, Seconds minInterval) {
    const double now = machine_.clock.continuousSeconds();
    const std::lock_guard lock(mutex_);
    const auto last = lastReset_.find(port);
    if (last != lastReset_.end() && now - last->second < minInterval.count())
        return false;
    lastReset_[port] = now;
    return true;
}

} // namespace zenka::cameras
