#pragma once

#include "cameras/CameraControl.h"
#include "cameras/gphoto2/GPhoto2Program.h"
#include "cameras/gphoto2/ShellOutput.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zenka::cameras {

/// One "gphoto2 --shell" held open on a body, and the dialogue with it: a command a line, a prompt for
/// each. Belongs to one queue, but for kill(). Every wait has a limit.
class GPhoto2Session {
public:
    /// How a body wants to be held.
    struct Setup {
        std::string port;
        bool forceCardTarget = false;
        bool fireViaCaptureImage = false;
        double setApertureOnceAtStart = 0; ///< f-number, 0 for none
        bool takeControlAtStart = false;
        ExposureChoices choices;
    };
    /// The rules of the brands. The aperture is for bodies that need one set at the start.
    static Setup setupFor(const std::string& port, const std::string& model, double startAperture,
                          const ExposureChoices& choices);

    GPhoto2Session(GPhoto2Program& program, Setup setup);
    ~GPhoto2Session();
    GPhoto2Session(const GPhoto2Session&) = delete;
    GPhoto2Session& operator=(const GPhoto2Session&) = delete;

    bool start(base::Seconds timeout);
    void stop();
    bool ping();

    /// The child's end, at once. Any thread: what waits for it then comes back.
    void kill();

    /// Started, not stopped, and the child runs.
    bool alive();
    bool hasFiredSuccessfully() const { return hasFiredSuccessfully_; }
    /// What the body said to being taken control of; nothing where it was not asked.
    std::optional<bool> tookControl() const { return tookControl_; }
    /// "shutterspeed2=1/500"; "bulb" after a timed one; empty before the first.
    const std::string& lastSentShutter() const { return lastSentShutter_; }
    const ExposureChoices& choices() const { return choices_; }
    void setChoices(const ExposureChoices& choices) { choices_ = choices; }

    /// A command's answer, echo included; "<...>" for one that failed.
    std::string runRaw(const std::string& command, base::Seconds timeout);
    std::vector<std::string> getConfigChoices(const std::string& key, base::Seconds timeout);
    std::optional<std::string> getConfigCurrent(const std::string& key, base::Seconds timeout);
    std::vector<std::string> getStorageLabels(base::Seconds timeout);

    struct Fired {
        bool ok = false;
        std::string note;
        bool sessionBroken = false;
        bool softTimeout = false; ///< no answer in time from a child that still runs

        friend bool operator==(const Fired&, const Fired&) = default;
    };
    /// Sends what differs from the last good shot, and fires, in one write.
    Fired capture(const Shot& shot, base::Seconds timeout);

    /// The next shot sends every setting.
    void forget();

private:
    struct Plan; // of one shot

    Plan planFor(const Shot& shot) const;
    void remember(const Plan& plan, const Shot& shot, const std::string& replies);
    bool launch();
    bool running();
    /// Writes commands, one a line; their prompts are then waited for.
    bool write(const std::string& lines, std::size_t commands, base::Seconds limit);
    /// Waits for the prompts of all that was ever written.
    bool waitForPrompts(double deadline);
    bool sendChecked(const std::string& command, base::Seconds timeout);
    void sendBestEffort(const std::string& command, base::Seconds timeout);
    double deadlineIn(base::Seconds timeout) const;
    base::Seconds until(double deadline) const;

    GPhoto2Program& program_;
    const std::string port_;
    std::mutex processMutex_; // guards the pointer against kill(), not the talk with the child
    std::unique_ptr<ports::ChildProcess> process_;
    std::atomic<bool> killed_ = false;
    ShellOutput buffer_;
    std::size_t expectedPrompts_ = 0; // ever, once all that was written has been answered
    bool ended_ = false;              // the child's output has
    bool alive_ = false;
    bool hasFiredSuccessfully_ = false;
    const bool forceCardTarget_;
    const bool fireViaCaptureImage_;
    std::optional<int> lastISO_;
    std::optional<double> lastAperture_;
    std::optional<double> lastShutter_;
    std::string lastSentShutter_;
    std::optional<double> lastExpComp_;
    ExposureChoices choices_;
    const double setApertureOnceAtStart_;
    const bool takeControlAtStart_;
    std::optional<bool> tookControl_;
};

} // namespace zenka::cameras
