#include "rig/links/HeldSessions.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

/// No frame is to wait for a body that does not answer: to a ping for 6 s, to the questions for 30 s.
constexpr double roomForAPing = 10.0;
constexpr double roomForQuestions = 40.0;

} // namespace

HeldSessions::HeldSessions(const ports::Ports& ports, RigLog& log, const CameraRoster& roster,
                           const FireLoop& fireLoop, const BodiesInUse& inUse, Families families)
    : ports_(ports), log_(log), roster_(roster), fireLoop_(fireLoop), inUse_(inUse),
      families_(std::move(families)), queue_(ports.queues.serial("held sessions")) {
}

bool HeldSessions::held(const cameras::CameraControl& camera) const {
    return camera.isReal() && camera.connected() && !roster_.isDisconnected(camera.id());
}

bool HeldSessions::idleFor(const cameras::CameraControl& camera, double seconds) const {
    return held(camera) && !fireLoop_.dueWithin(camera, seconds) && !inUse_.has(camera.id());
}

void HeldSessions::keepAliveHeldSessions() {
    for (const auto& camera : roster_.cameras()) {
        if (idleFor(*camera, roomForAPing))
            camera->keepAlive();
    }
    askTheIdle();
    lookForGone();
}

void HeldSessions::askSoon() {
    for (const base::Seconds delay : {base::Seconds{5}, base::Seconds{15}})
        ports_.loop.after(delay, lifeline_.guard([this] { askTheIdle(); }));
}

void HeldSessions::askTheIdle() {
    for (const auto& camera : roster_.cameras()) {
        if (idleFor(*camera, roomForQuestions))
            idle_.emit(camera);
    }
}

void HeldSessions::lookForGone() {
    if (std::exchange(looking_, true)) {
        lookAgain_ = true;
        return;
    }
    struct Look {
        std::shared_ptr<CameraFamily> family;
        std::vector<HeldBody> bodies;
    };
    std::vector<Look> looks;
    for (const auto& family : families_) {
        Look look{.family = family, .bodies = {}};
        for (const auto& camera : roster_.cameras()) {
            if (held(*camera) && camera->backend() == family->backend())
                look.bodies.push_back(
                    {.id = camera->id(), .serial = camera->serial(), .port = camera->port()});
        }
        if (!look.bodies.empty())
            looks.push_back(std::move(look));
    }
    if (looks.empty()) {
        looking_ = false;
        return;
    }
    queue_->post([looks = std::move(looks), &loop = ports_.loop,
                  arrive = lifeline_.guard([this](const std::vector<std::string>& ids) { tellGone(ids); })] {
        std::vector<std::string> ids;
        for (const Look& look : looks)
            std::ranges::move(look.family->goneFromBus(look.bodies), std::back_inserter(ids));
        loop.post([arrive, ids = std::move(ids)] { arrive(ids); });
    });
}

void HeldSessions::tellGone(const std::vector<std::string>& ids) {
    looking_ = false;
    const auto cameras = roster_.cameras(); // a copy, as what hears of it may change the roster
    for (const auto& camera : cameras) {
        if (!std::ranges::count(ids, camera->id()) || !held(*camera))
            continue;
        log_.pushLog(roster_.labelFor(*camera) + ": no longer on the USB bus — reconnecting…");
        gone_.emit(camera);
    }
    if (std::exchange(lookAgain_, false))
        lookForGone();
}

} // namespace zenka::rig
