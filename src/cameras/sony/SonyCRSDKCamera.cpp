#include "cameras/sony/SonyCRSDKCamera.h"

#include "base/Text.h"
#include "cameras/sony/SonyCRSDK.h"
#include "cameras/sony/sony_bridge.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <utility>

namespace zenka::cameras {

namespace {

constexpr int mostReopens = 2;
constexpr int reconnectLooks = 20;
constexpr base::Seconds betweenLooks{1};
constexpr int resumeTries = 3; ///< what took the body away may not be done with it yet
constexpr double labelFractionsBelowSec = 0.34;

constexpr std::array<std::pair<std::uint32_t, std::string_view>, 15> errorNames{
    {{32768, "Generic_Unknown"},
     {32771, "Generic_NotSupported"},
     {32773, "Generic_InvalidHandle"},
     {32774, "Generic_InvalidParameter"},
     {33281, "Connect_Connect"},
     {33282, "Connect_ConnectIP"},
     {33287, "Connect_Disconnected"},
     {33288, "Connect_TimeOut"},
     {33289, "Reconnect_TimeOut"},
     {33290, "Connect_FailRejected"},
     {33291, "Connect_FailBusy"},
     {33792, "Api_Unknown"},
     {33793, "Api_Insufficient"},
     {33794, "Api_InvalidCalled"},
     {34048, "Init_Unknown"}}};

std::string fourHexDigits(std::uint32_t code) {
    return absl::StrFormat("0x%04x", code);
}

/// The entry with a serial, or the only one there is.
const SonyCRSDK::Found* sameBody(const std::vector<SonyCRSDK::Found>& found, const std::string& serial) {
    const auto same = std::ranges::find(found, serial, &SonyCRSDK::Found::serial);
    if (!serial.empty() && same != found.end())
        return &*same;
    return found.size() == 1 ? &found.front() : nullptr;
}

/// A new session in the place of an old one; 0 when there is none. On a queue.
std::int64_t reopened(std::int64_t old, const std::string& serial, const SonyLink& link) {
    zenka_sony_disconnect(old);
    const auto found = SonyCRSDK::enumerate();
    const SonyCRSDK::Found* body = sameBody(found, serial);
    if (!body || link.released())
        return 0;
    return zenka_sony_connect(body->index, body->serial.empty() ? nullptr : body->serial.c_str());
}

} // namespace

/// What came of a shot, on its way to the main thread.
struct SonyCRSDKCamera::Fired {
    CaptureOutcome outcome;
    std::uint32_t error = 0;
};

SonyCRSDKCamera::SonyCRSDKCamera(const DriverMachine& machine, const CameraRivals& rivals, Body body)
    : machine_(machine), rivals_(rivals), body_(std::move(body)),
      link_(std::make_shared<SonyLink>(body_.handle)), fireQueue_(machine_.queues.serial("crsdk.fire")),
      linkQueue_(machine_.queues.serial("crsdk.link")) {
}

SonyCRSDKCamera::~SonyCRSDKCamera() {
    close(link_->release());
}

void SonyCRSDKCamera::close(std::int64_t handle) {
    if (handle != 0)
        linkQueue_->post([handle] { zenka_sony_disconnect(handle); });
}

// --- shots

void SonyCRSDKCamera::refuse(CaptureDone done, const std::string& reason) {
    machine_.loop.post(
        [done = std::move(done), note = "dropped, " + reason] { done({.note = note, .responded = true}); });
}

void SonyCRSDKCamera::capture(const Shot& shot, CaptureDone done) {
    if (link_->released())
        return refuse(std::move(done), "re-detect in progress");
    if (busy_ || reopening_)
        return refuse(std::move(done),
                      reopening_ && lastFireErr_ != 0
                          ? "reopening after CrSDK fire failed (" + crErrorName(lastFireErr_) + ")"
                          : "camera busy");
    busy_ = true;
    fireQueue_->post([handle = link_->handle(), everySetting = forceFullExposure_, shot,
                      &loop = machine_.loop, &clock = machine_.clock,
                      arrive = lifeline_.guard([this](const Fired& result) { fired(result); }),
                      done = std::move(done)]() mutable {
        const double began = clock.continuousSeconds();
        Fired result = fire(handle, shot, everySetting->exchange(false));
        result.outcome.latencyMs = (clock.continuousSeconds() - began) * 1000;
        loop.post([arrive = std::move(arrive), done = std::move(done), result = std::move(result)] {
            arrive(result);
            done(result.outcome);
        });
    });
}

/// On the queue of the fires.
SonyCRSDKCamera::Fired SonyCRSDKCamera::fire(std::int64_t handle, const Shot& shot, bool everySetting) {
    constexpr double bulb = 0;
    constexpr double asItIs = -1;
    if (everySetting)
        zenka_sony_reset_expo_cache(handle);
    const bool timed = !shot.bulb && shot.shutterSec > 0;
    const double shutter = shot.bulb ? bulb : timed ? shot.shutterSec : asItIs;
    const bool taken = zenka_sony_set_exposure(handle, shot.iso, shot.aperture, shutter, shot.expComp) != 0;
    Fired result;
    CaptureOutcome& outcome = result.outcome;
    outcome.ok = zenka_sony_fire(handle, &result.error) != 0;
    outcome.responded = outcome.ok;
    if (!outcome.ok)
        outcome.note = "CrSDK fire failed (" + crErrorName(result.error) + ")";
    else if (!taken)
        outcome.note = "fired, but the body rejected a setting (check the card exposures)";
    if (timed) {
        const double sent = zenka_sony_last_sent_shutter(handle);
        outcome.sentShutter = shutterLabel(std::abs(sent)) + (sent < 0 ? "?" : "");
    }
    return result;
}

void SonyCRSDKCamera::fired(const Fired& result) {
    busy_ = false;
    if (!result.outcome.ok)
        return handleFireFailure(result.error);
    ++shotCount_;
    reopenBurst_ = 0;
}

void SonyCRSDKCamera::handleFireFailure(std::uint32_t code) {
    if (link_->released())
        return;
    lastFireErr_ = code;
    readFirmwareAndReport(code);
    if (reopening_)
        return;
    if (zenka_sony_reconnecting(link_->handle()) != 0)
        return waitForSDKReconnect(); // a new session would be in its way
    if (reopenBurst_ >= mostReopens) {
        connected_ = false;
        return;
    }
    ++reopenBurst_;
    startReopen();
}

/// The body and the processes are asked on the queue of the link, in front of what mends it.
void SonyCRSDKCamera::readFirmwareAndReport(std::uint32_t code) {
    const bool report = !std::exchange(reportedFireError_, true);
    if (!report && !body_.firmwareVersion.empty())
        return;
    const std::int64_t handle = link_->handle();
    DriverMachine::Fields fields{
        {"kind", "sony_fire"},
        {"model", body_.model},
        {"fw", body_.firmwareVersion},
        {"prio", absl::StrFormat("%d>%d", zenka_sony_priority_before(), zenka_sony_priority_after())},
        {"ep",
         absl::StrFormat("%d>%d", zenka_sony_exposure_program_before(), zenka_sony_exposure_program_after())},
        {"hs", body_.handshakeOK ? "1" : "0"},
        {"code", fourHexDigits(code)},
        {"cb", fourHexDigits(zenka_sony_last_callback_error())},
        {"opng", absl::StrFormat("%d", zenka_sony_last_op_ng(handle))},
        {"link", zenka_sony_is_connected(handle) != 0 ? "1" : "0"},
        {"rcpt", absl::StrFormat("%d", zenka_sony_captured_count(handle))}};
    linkQueue_->post([handle, report, fields = std::move(fields), rivals = rivals_, &loop = machine_.loop,
                      tell = machine_.report, keep = lifeline_.guard([this](const std::string& version) {
                          body_.firmwareVersion = version;
                      })]() mutable {
        std::string& version = fields["fw"];
        if (version.empty())
            version = SonyCRSDK::firmware(handle);
        if (report) {
            const std::string state = SonyCRSDK::stateDump(handle);
            fields["state"] = state.empty() ? "unreadable" : state;
            rivals.tell(fields);
        }
        loop.post([report, fields = std::move(fields), tell = std::move(tell), keep = std::move(keep)] {
            keep(fields.at("fw"));
            if (report)
                tell("error", fields);
        });
    });
}

// --- the link

void SonyCRSDKCamera::startReopen() {
    if (reopening_ || link_->released())
        return;
    reopening_ = true;
    reopenAfter(base::Seconds{0});
}

void SonyCRSDKCamera::reopenAfter(base::Seconds delay) {
    auto work = [link = link_, serial = body_.serial, &loop = machine_.loop,
                 arrive = lifeline_.guard([this](bool held) { mended(held); })] {
        const std::int64_t handle = reopened(link->take(), serial, *link);
        const bool held = handle != 0 && link->adopt(handle);
        if (handle != 0 && !held)
            zenka_sony_disconnect(handle);
        loop.post([arrive, held] { arrive(held); });
    };
    if (delay > base::Seconds{0})
        linkQueue_->postAfter(delay, std::move(work));
    else
        linkQueue_->post(std::move(work));
}

void SonyCRSDKCamera::waitForSDKReconnect() {
    if (reopening_)
        return;
    reopening_ = true;
    linkQueue_->post([link = link_, pause = machine_.pause, &loop = machine_.loop,
                      arrive = lifeline_.guard([this](bool held) { mended(held); })]() mutable {
        bool held = false;
        for (int look = 0; look < reconnectLooks && !held && !link->released(); ++look) {
            pause(betweenLooks);
            const std::int64_t handle = link->handle();
            held = zenka_sony_is_connected(handle) != 0 && zenka_sony_reconnecting(handle) == 0;
        }
        loop.post([arrive = std::move(arrive), held] { arrive(held); });
    });
}

void SonyCRSDKCamera::mended(bool connected) {
    const bool released = link_->released();
    if (!connected && !released && moreReopens_ > 0) {
        --moreReopens_;
        return reopenAfter(betweenLooks);
    }
    moreReopens_ = 0;
    reopening_ = false;
    if (!released)
        connected_ = connected;
}

void SonyCRSDKCamera::suspend() {
    close(link_->release());
}

void SonyCRSDKCamera::resume() {
    if (!connected_)
        return;
    link_->reclaim();
    if (!reopening_ && link_->handle() != 0)
        return;
    moreReopens_ = resumeTries - 1;
    startReopen();
}

void SonyCRSDKCamera::shutDown(base::Seconds limit) {
    connected_ = false;
    suspend();
    linkQueue_->drain(limit);
}

// --- questions

void SonyCRSDKCamera::readExposureChoices(std::function<void(const ExposureChoices&)> done) {
    linkQueue_->post([link = link_, &loop = machine_.loop, done = std::move(done)]() mutable {
        loop.post([done = std::move(done), choices = SonyCRSDK::exposureChoices(link->handle())] {
            done(choices);
        });
    });
}

void SonyCRSDKCamera::probe(std::function<void(const CameraStatus&)> done) {
    linkQueue_->post([link = link_, &loop = machine_.loop,
                      reopen = lifeline_.guard([this] { startReopen(); }), done = std::move(done)]() mutable {
        const std::int64_t handle = link->handle();
        CameraStatus status;
        bool answers = true;
        if (!link->released()) {
            answers = zenka_sony_health_ping(handle) != 0;
            if (answers)
                status = statusIn(SonyCRSDK::stateDump(handle));
        }
        loop.post([reopen = std::move(reopen), done = std::move(done), status = std::move(status), answers] {
            if (!answers)
                reopen();
            done(status);
        });
    });
}

// --- words

std::string SonyCRSDKCamera::crErrorName(std::uint32_t code) {
    for (const auto& [known, name] : errorNames)
        if (known == code)
            return std::string(name);
    return fourHexDigits(code);
}

std::string SonyCRSDKCamera::shutterLabel(double seconds) {
    if (!(seconds > 0))
        return {};
    if (seconds < labelFractionsBelowSec)
        return absl::StrFormat("1/%d", std::llround(1 / seconds));
    return absl::StrFormat("%g", seconds);
}

CameraStatus SonyCRSDKCamera::statusIn(const std::string& stateDump) {
    constexpr std::string_view label = "ep=";
    constexpr std::array<const char*, 5> modes{"", "M", "P", "A", "S"};
    for (const std::string_view pair : base::splitPieces(stateDump, ' ')) {
        if (!pair.starts_with(label))
            continue;
        unsigned mode = 0;
        const auto [end, fault] =
            std::from_chars(pair.data() + label.size(), pair.data() + pair.size(), mode, 16);
        if (fault != std::errc() || end != pair.data() + pair.size() || mode == 0)
            return {};
        return {.isManual = mode == 1,
                .modeName = mode < modes.size() ? modes[mode] : absl::StrFormat("mode 0x%x", mode),
                .batteryPercent = std::nullopt};
    }
    return {};
}

} // namespace zenka::cameras
