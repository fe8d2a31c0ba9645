#include "cameras/lumix/LumixPTPCamera.h"

#include <algorithm>
#include <utility>

namespace zenka::cameras {

namespace {

constexpr base::Seconds fireLimit{20}; ///< beyond the time that a bulb is held
constexpr base::Seconds askLimit{10};
constexpr base::Seconds quitLimit{2};

std::optional<int> countIn(const LumixHelper::Json& reply, const char* key) {
    const auto found = reply.find(key);
    if (found == reply.end() || !found->is_number())
        return std::nullopt;
    const double count = found->get<double>();
    return count >= 0 && count < 1e9 ? std::optional(static_cast<int>(count)) : std::nullopt;
}

void readFlag(const LumixHelper::Json& reply, const char* key, bool& flag) {
    if (const auto found = reply.find(key); found != reply.end() && found->is_boolean())
        flag = found->get<bool>();
}

} // namespace

LumixPTPCamera::LumixPTPCamera(const LumixMachine& machine, Body body, std::shared_ptr<LumixHelper> helper,
                               const LumixHelper::Json& status)
    : machine_(machine), body_(std::move(body)), profile_(ShotProfiles::forModel(body_.model)),
      helper_(std::move(helper)) {
    note(status);
}

LumixPTPCamera::~LumixPTPCamera() {
    disconnect();
}

void LumixPTPCamera::note(const LumixHelper::Json& reply) {
    if (const auto confirmed = countIn(reply, "confirmed"))
        confirmedTotal_ = confirmedBefore_ + *confirmed;
    readFlag(reply, "drive_burst", driveModeBurst_);
    readFlag(reply, "single_shot_immune", singleShotImmuneToDrive_);
}

void LumixPTPCamera::capture(const Shot& shot, CaptureDone done) {
    ports::MainLoop& loop = machine_.drivers.loop;
    if (busy_) {
        loop.post([done = std::move(done)] { done({.note = "dropped, camera busy", .responded = true}); });
        return;
    }
    busy_ = true;
    helper_->queue().post(
        [this, alive = std::weak_ptr(living_), helper = helper_, &loop, &clock = machine_.drivers.clock, shot,
         full = std::exchange(forceFullExposure_, false), done = std::move(done)]() mutable {
            const double start = clock.continuousSeconds();
            const base::Seconds held{shot.bulb && shot.shutterSec > 0 ? shot.shutterSec : 0};
            std::optional<LumixHelper::Json> reply;
            if (helper->running())
                reply = helper->request(LumixReplies::fireRequest(shot, full), fireLimit + held);
            CaptureOutcome outcome =
                LumixReplies::outcomeOf(reply, shot, (clock.continuousSeconds() - start) * 1000);
            helper.reset(); // it may be the last, and its end belongs here
            loop.post([this, alive, done = std::move(done), outcome = std::move(outcome),
                       reply = std::move(reply)] {
                if (alive.lock())
                    finish(outcome, reply);
                done(outcome);
            });
        });
}

void LumixPTPCamera::finish(const CaptureOutcome& outcome, const std::optional<LumixHelper::Json>& reply) {
    busy_ = false;
    if (outcome.ok)
        ++shotCount_;
    else
        forceFullExposure_ = true;
    if (reply)
        note(*reply);
}

void LumixPTPCamera::disconnect() {
    connected_ = false;
    helper_->stop();
}

void LumixPTPCamera::suspend() {
    helper_->stop();
}

void LumixPTPCamera::resume() {
    if (!connected_)
        return;
    forceFullExposure_ = true;
    confirmedBefore_ = confirmedTotal_.value_or(0);
    helper_->queue().post([helper = helper_] { helper->start(); });
}

void LumixPTPCamera::shutDown(base::Seconds limit) {
    constexpr base::Seconds afterKill{1};
    connected_ = false;
    if (busy_)
        helper_->stop(); // it ends the exposure and lets the body go
    else
        helper_->queue().post([helper = helper_] { helper->quit(quitLimit); });
    if (!helper_->queue().drain(limit)) {
        helper_->kill();
        helper_->queue().drain(afterKill);
    }
}

void LumixPTPCamera::ask(const char* command, std::function<void(const Asked&)> done) {
    helper_->queue().post([this, alive = std::weak_ptr(living_), helper = helper_,
                           &loop = machine_.drivers.loop, command, done = std::move(done)]() mutable {
        Asked asked;
        if (helper->running())
            asked.reply = helper->request({{"cmd", command}}, askLimit);
        if (asked.reply && !LumixReplies::bodyAnswered(*asked.reply))
            asked.reply.reset();
        asked.linkEnded = !asked.reply && !helper->running();
        helper.reset();
        loop.post([this, alive, asked = std::move(asked), done = std::move(done)] {
            if (alive.lock() && asked.reply)
                note(*asked.reply);
            done(asked);
        });
    });
}

void LumixPTPCamera::keepAlive() {
    if (!busy_ && connected_) // a shot says as much
        ask("status", [](const Asked&) {});
}

void LumixPTPCamera::poll(std::function<void(const PollReply&)> done) {
    ask("status", [done = std::move(done)](const Asked& asked) {
        done(asked.reply ? LumixReplies::pollReplyOf(*asked.reply) : PollReply{.linkEnded = asked.linkEnded});
    });
}

void LumixPTPCamera::probe(std::function<void(const CameraStatus&)> done) {
    ask("manual_check", [done = std::move(done)](const Asked& asked) {
        done(asked.reply ? LumixReplies::statusOf(*asked.reply) : CameraStatus{});
    });
}

void LumixPTPCamera::probeAutoISO(std::function<void(const AutoIsoStatus&)> done) {
    ask("manual_check", [done = std::move(done)](const Asked& asked) {
        done(asked.reply ? LumixReplies::autoIsoOf(*asked.reply) : AutoIsoStatus{});
    });
}

} // namespace zenka::cameras
