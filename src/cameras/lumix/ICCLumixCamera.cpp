#include "cameras/lumix/ICCLumixCamera.h"

#include "cameras/lumix/LumixEncode.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace zenka::cameras {

/// One shot on its way. It outlives the camera, so that whoever asked hears of it and no bulb stays open.
struct ICCLumixCamera::Firing : std::enable_shared_from_this<Firing> {
    ports::MainLoop& loop;
    ports::Clock& clock;
    std::shared_ptr<ICCManager> manager;
    std::string serial;
    Shot shot;
    std::function<void(const CaptureOutcome&)> finished; ///< the camera's part, nothing once it is gone
    CaptureDone done;
    std::vector<LumixEncode::Setting> steps;
    std::size_t step = 0;
    bool allTaken = true;
    double triggeredAt = 0;

    Firing(ports::MainLoop& mainLoop, ports::Clock& machineClock) : loop(mainLoop), clock(machineClock) {}

    void begin() {
        manager->ensureSession(serial, [self = shared_from_this()](bool open) {
            if (open)
                self->runSteps();
            else
                self->complete({.note = "no session"});
        });
    }

    void runSteps() {
        if (step == steps.size())
            return trigger();
        const auto& [property, value, uint16] = steps[step++];
        manager->send(serial, LumixPTP::ptpCommand(LumixPTP::setProperty, {property}),
                      LumixPTP::setPayload(property, value, uint16),
                      [self = shared_from_this()](const ICCManager::Bytes& response, bool) {
                          self->allTaken &= LumixPTP::ptpResponseCode(response) == LumixPTP::success;
                          self->runSteps();
                      });
    }

    void act(std::uint32_t action, std::function<void(std::uint16_t code, bool noResponse)> then) {
        manager->send(serial, LumixPTP::ptpCommand(LumixPTP::captureOperation, {action}), {},
                      [then = std::move(then)](const ICCManager::Bytes& response, bool noResponse) {
                          then(LumixPTP::ptpResponseCode(response), noResponse);
                      });
    }

    void trigger() {
        triggeredAt = clock.continuousSeconds();
        if (!shot.bulb) {
            act(LumixPTP::singleShot,
                [self = shared_from_this()](std::uint16_t code, bool none) { self->answered(code, none); });
            return;
        }
        act(LumixPTP::bulbStart, [self = shared_from_this()](std::uint16_t code, bool none) {
            if (code != LumixPTP::success)
                return self->complete(
                    {.note = none ? "no response" : "bulb start failed", .responded = !none});
            self->loop.after(base::Seconds{std::max(self->shot.shutterSec, 0.0)}, [self] {
                self->act(LumixPTP::bulbStop,
                          [self](std::uint16_t stopCode, bool noStop) { self->answered(stopCode, noStop); });
            });
        });
    }

    void answered(std::uint16_t code, bool noResponse) const {
        CaptureOutcome outcome{.ok = code == LumixPTP::success, .responded = !noResponse};
        if (noResponse)
            outcome.note = "no response";
        else if (!outcome.ok)
            outcome.note = absl::StrFormat("resp 0x%04x", code);
        else if (allTaken)
            outcome.sentShutter = shot.bulb ? "bulb" : LumixEncode::shutterText(shot.shutterSec);
        else
            outcome.note = "settings rejected (mode?)";
        complete(std::move(outcome));
    }

    void complete(CaptureOutcome outcome) const {
        if (triggeredAt > 0)
            outcome.latencyMs = (clock.continuousSeconds() - triggeredAt) * 1000;
        finished(outcome);
        done(outcome);
    }
};

ICCLumixCamera::ICCLumixCamera(const DriverMachine& machine, std::shared_ptr<ICCManager> manager, Body body)
    : machine_(machine), manager_(std::move(manager)), body_(std::move(body)),
      profile_(ShotProfiles::forModel(body_.model)) {
}

ICCLumixCamera::~ICCLumixCamera() {
    disconnect();
}

void ICCLumixCamera::capture(const Shot& shot, CaptureDone done) {
    if (busy_ || !connected_) {
        machine_.loop.post([done = std::move(done), gone = !connected_] {
            done({.note = gone ? "no session" : "dropped (couldn't keep up)", .responded = !gone});
        });
        return;
    }
    busy_ = true;
    auto firing = std::make_shared<Firing>(machine_.loop, machine_.clock);
    firing->manager = manager_;
    firing->serial = body_.serial;
    firing->shot = shot;
    firing->finished = lifeline_.guard([this](const CaptureOutcome& outcome) { finish(outcome); });
    firing->done = std::move(done);
    firing->steps = LumixEncode::settings(shot.iso, shot.aperture, shot.shutterSec, shot.bulb);
    firing->begin();
}

void ICCLumixCamera::finish(const CaptureOutcome& outcome) {
    busy_ = false;
    if (outcome.ok)
        ++shotCount_;
    if (!connected_)
        manager_->closeSession(body_.serial);
}

void ICCLumixCamera::disconnect() {
    if (std::exchange(connected_, false) && !busy_)
        manager_->closeSession(body_.serial);
}

} // namespace zenka::cameras
