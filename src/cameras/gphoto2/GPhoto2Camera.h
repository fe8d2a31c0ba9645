#pragma once

#include "cameras/gphoto2/GPhoto2Worker.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zenka::cameras {

/// A body driven by the gphoto2 program: Sony, Nikon and Olympus bodies through a session that is held
/// open, others by one run of the program for each shot.
///
/// Made and used on the main thread. All work is done on a queue of its own and comes back through the
/// main loop, also when the camera has gone by then.
class GPhoto2Camera final : public CameraControl {
public:
    struct Body {
        std::string id;
        std::string model;
        std::string port; ///< "usb:001,004"
        std::string serial;
    };
    GPhoto2Camera(GPhoto2Program& program, Body body);
    ~GPhoto2Camera() override;
    GPhoto2Camera(const GPhoto2Camera&) = delete;
    GPhoto2Camera& operator=(const GPhoto2Camera&) = delete;

    const std::string& id() const override { return body_.id; }
    const std::string& serial() const override { return body_.serial; }
    const std::string& model() const override { return body_.model; }
    std::string port() const override { return body_.port; }
    std::string backend() const override { return "gphoto2"; }
    bool connected() const override { return connected_; }
    double minIntervalSec() const override { return 1.0; }
    int shotCount() const override { return shotCount_; }

    void capture(const Shot& shot, CaptureDone done) override;
    void forceFullExposureNextFrame() override;
    void disconnect() override;
    void suspend() override;
    void resume() override;

    /// Holds a session ready before the first shot, for a body that is driven through one: up to three
    /// tries.
    void warmUp();
    void learnChoices() override;
    /// Asks a held session for a sign of life; one without is dropped.
    void keepAlive() override;
    /// Ends the session within a limit, by force if it must be. For the end of the program: the camera
    /// fires no more.
    void shutDown(base::Seconds limit) override;

    /// Reads them from the body, and waits for it: up to a minute and a half. Not from a completion.
    ExposureChoices readExposureChoices() override;
    /// The same without waiting.
    void readExposureChoices(std::function<void(const ExposureChoices&)> done) override;
    /// What is known of them.
    ExposureChoices exposureChoices() const { return worker_->exposureChoices(); }
    std::string lastProfileError() const override { return worker_->lastProfileError(); }

    void probe(std::function<void(const CameraStatus&)> done) override;
    void probeAutoISO(std::function<void(const AutoIsoStatus&)> done) override;
    void readReadiness(std::function<void(const std::vector<GPhoto2Readiness::Warning>&)> done);

    /// A session stands. Any thread.
    bool armed() const { return worker_->armed(); }
    /// What a Nikon said to being taken control of. Any thread.
    std::optional<bool> tookControl() const { return worker_->tookControl(); }
    bool usePersistent() const;

private:
    /// Runs a question on the queue and its answer's receiver on the main thread.
    template <typename Ask, typename Done>
    void ask(Ask ask, Done done);
    void finish(const CaptureOutcome& outcome);

    GPhoto2Program& program_;
    Body body_;
    bool connected_ = true;
    int shotCount_ = 0;
    bool busy_ = false;
    std::shared_ptr<ports::WorkQueue> queue_;
    std::shared_ptr<GPhoto2Worker> worker_;
    std::shared_ptr<const int> living_ = std::make_shared<const int>(0); // gone with the camera
};

} // namespace zenka::cameras
