#include "cameras/gphoto2/GPhoto2Camera.h"

#include <absl/strings/str_format.h>

#include <utility>

namespace zenka::cameras {

namespace {

// A session's start, seven keys and its end.
constexpr base::Seconds readLimit{90};

GPhoto2Worker::Memory memoryOf(const GPhoto2Machine& machine, const std::string& model) {
    GPhoto2Choices::Cached cached = GPhoto2Choices::cachedChoices(machine.settings, model);
    if (cached.poisonedCount)
        machine.report("poisoned_shutter_cache",
                       {{"model", model}, {"count", absl::StrFormat("%d", *cached.poisonedCount)}});
    return {.choices = std::move(cached.choices),
            .emptyReads = GPhoto2Choices::emptyReads(machine.settings, model)};
}

} // namespace

GPhoto2Camera::GPhoto2Camera(GPhoto2Program& program, Body body)
    : program_(program), body_(std::move(body)),
      queue_(program.machine().queues.serial("gphoto2." + body_.port)),
      worker_(std::make_shared<GPhoto2Worker>(program, body_.model, body_.port,
                                              memoryOf(program.machine(), body_.model), queue_)) {
}

GPhoto2Camera::~GPhoto2Camera() {
    disconnect();
}

bool GPhoto2Camera::usePersistent() const {
    return GPhoto2Text::usePersistent(body_.model, GPhoto2Choices::heldSessions(program_.machine().settings));
}

void GPhoto2Camera::capture(const Shot& shot, CaptureDone done) {
    ports::MainLoop& loop = program_.machine().loop;
    if (busy_) {
        loop.post([done = std::move(done)] { done({.note = "dropped, camera busy", .responded = true}); });
        return;
    }
    busy_ = true;
    queue_->post([this, alive = std::weak_ptr(living_), worker = worker_, &loop, shot,
                  persistent = usePersistent(), askedAt = program_.machine().clock.continuousSeconds(),
                  done = std::move(done)]() mutable {
        CaptureOutcome outcome = worker->shoot(shot, persistent, askedAt);
        loop.post([this, alive, done = std::move(done), outcome = std::move(outcome)] {
            if (alive.lock())
                finish(outcome);
            done(outcome);
        });
    });
}

void GPhoto2Camera::finish(const CaptureOutcome& outcome) {
    busy_ = false;
    if (outcome.ok)
        ++shotCount_;
}

void GPhoto2Camera::forceFullExposureNextFrame() {
    queue_->post([worker = worker_] { worker->forgetSettings(); });
}

void GPhoto2Camera::disconnect() {
    connected_ = false;
    worker_->setConnected(false);
    queue_->post([worker = worker_] { worker->dropSession(); });
}

void GPhoto2Camera::suspend() {
    worker_->setConnected(false);
    queue_->post([worker = worker_] { worker->dropSession(); });
}

void GPhoto2Camera::resume() {
    worker_->setConnected(connected_);
    warmUp();
}

void GPhoto2Camera::warmUp() {
    if (usePersistent() && connected_)
        queue_->post([worker = worker_] { worker->warmUp(); });
}

void GPhoto2Camera::learnChoices() {
    if (!usePersistent() && connected_) // a held session reads them as it begins
        queue_->post([worker = worker_] { worker->learnChoices(); });
}

void GPhoto2Camera::keepAlive() {
    if (busy_ || !connected_)
        return; // a shot says as much
    queue_->post([worker = worker_] { worker->keepAlive(); });
}

void GPhoto2Camera::shutDown(base::Seconds limit) {
    constexpr base::Seconds afterKill{1};
    disconnect();
    if (!queue_->drain(limit)) {
        worker_->killSession();
        queue_->drain(afterKill);
    }
}

ExposureChoices GPhoto2Camera::readExposureChoices() {
    queue_->post([worker = worker_] { worker->readExposureChoices(); });
    queue_->drain(readLimit);
    return worker_->exposureChoices();
}

template <typename Ask, typename Done>
void GPhoto2Camera::ask(Ask question, Done done) {
    queue_->post([worker = worker_, &loop = program_.machine().loop, question = std::move(question),
                  done = std::move(done)]() mutable {
        loop.post([done = std::move(done), answer = question(*worker)] { done(answer); });
    });
}

void GPhoto2Camera::readExposureChoices(std::function<void(const ExposureChoices&)> done) {
    ask(
        [](GPhoto2Worker& worker) {
            worker.readExposureChoices();
            return worker.exposureChoices();
        },
        std::move(done));
}

void GPhoto2Camera::probe(std::function<void(const CameraStatus&)> done) {
    ask([](GPhoto2Worker& worker) { return worker.probe(); }, std::move(done));
}

void GPhoto2Camera::probeAutoISO(std::function<void(const AutoIsoStatus&)> done) {
    ask([](GPhoto2Worker& worker) { return worker.probeAutoISO(); }, std::move(done));
}

void GPhoto2Camera::readReadiness(std::function<void(const std::vector<GPhoto2Readiness::Warning>&)> done) {
    ask([](GPhoto2Worker& worker) { return worker.readReadiness(); }, std::move(done));
}

} // namespace zenka::cameras
