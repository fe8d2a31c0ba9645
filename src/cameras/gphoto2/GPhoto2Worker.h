#pragma once

#include "cameras/CameraControl.h"
#include "cameras/gphoto2/GPhoto2Choices.h"
#include "cameras/gphoto2/GPhoto2Program.h"
#include "cameras/gphoto2/GPhoto2Readiness.h"
#include "cameras/gphoto2/GPhoto2Session.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zenka::cameras {

/// The part of a GPhoto2Camera that waits for the body: it owns the session and works on the camera's
/// queue. Work that was posted may outlive the camera, and holds the worker until it is done.
class GPhoto2Worker : public std::enable_shared_from_this<GPhoto2Worker> {
public:
    /// What is remembered of the model when the camera is made.
    struct Memory {
        std::optional<ExposureChoices> choices;
        int emptyReads = 0;
    };
    GPhoto2Worker(GPhoto2Program& program, std::string model, std::string port, const Memory& memory,
                  const std::shared_ptr<ports::WorkQueue>& queue);

    // --- on the queue

    /// A shot that was asked for at this instant (continuous seconds), through a held session or by a run
    /// of its own.
    CaptureOutcome shoot(const Shot& shot, bool persistent, double askedAt);
    void warmUp() { warmUp(warmUpTries); }
    void keepAlive();
    void dropSession();
    void forgetSettings();
    CameraStatus probe();
    AutoIsoStatus probeAutoISO();
    void readExposureChoices();
    /// Reads them unless they are known, or the model has given none too often.
    void learnChoices();
    std::vector<GPhoto2Readiness::Warning> readReadiness();

    // --- any thread

    /// False: no shot is fired and no session built any more, and one that is being built is given up.
    void setConnected(bool connected);
    bool armed() const;
    std::optional<bool> tookControl() const;
    ExposureChoices exposureChoices() const;
    std::string lastProfileError() const;
    /// Ends the session's child whatever it does.
    void killSession();

    /// How long a session that is gone is left alone before it is built anew: longer from failure to
    /// failure. A body that has never fired is more likely slow to claim than wedged.
    static double backOffSec(int fails, bool hasLandedAFrame);

private:
    static constexpr int warmUpTries = 3;

    enum class When { warmUp, duringAShot };

    void warmUp(int triesLeft);
    /// Why the operator waits in vain for a body, as far as it can be known.
    void tellUnclaimed();
    CaptureOutcome shootHeld(const Shot& shot, base::Seconds timeout);
    CaptureOutcome shootOnce(const Shot& shot, base::Seconds timeout);
    /// What a failed shot of the session makes of it.
    void afterFailure(const GPhoto2Session::Fired& fired);
    bool sessionAlive() const { return session_ && session_->alive(); }
    bool buildSession(double startAperture);
    /// One for some questions, nothing when the body cannot be held.
    std::shared_ptr<GPhoto2Session> shortSession();
    void readChoicesIfNeedBe(When when);
    void takeRead(GPhoto2Session& session, base::Seconds perKey);
    void writeDiagnostics(GPhoto2Session& session);
    void setSession(std::unique_ptr<GPhoto2Session> session);
    void setProfileError(std::string error);
    void onMain(std::function<void(const GPhoto2Machine&)> function);
    double now() const { return program_.machine().clock.continuousSeconds(); }

    GPhoto2Program& program_;
    const std::string model_;
    const std::string port_;
    const std::weak_ptr<ports::WorkQueue> queue_;
    std::atomic<bool> connected_ = true;

    // of the queue
    std::shared_ptr<GPhoto2Session> session_;
    int sessionSoftErrors_ = 0;
    int consecutiveBusyTimeouts_ = 0;
    int consecutiveSessionFails_ = 0;
    bool hasLandedAFrame_ = false;
    std::optional<double> lastRebuildAttempt_; // continuous seconds
    bool reportedPingFailure_ = false;
    int emptyReads_ = 0;

    mutable std::mutex armedLock_; // guards what follows
    std::shared_ptr<GPhoto2Session> killable_;
    bool armed_ = false;
    bool killed_ = false;
    std::optional<bool> tookControl_;
    ExposureChoices exposureChoices_;
    std::string lastProfileError_;
};

} // namespace zenka::cameras
