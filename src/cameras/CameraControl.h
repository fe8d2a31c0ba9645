#pragma once

#include "base/Instant.h"
#include "cameras/ExposureChoices.h"

#include <functional>
#include <optional>
#include <string>

namespace zenka::cameras {

/// One shot. For iso, aperture and shutterSec a value of 0 or less leaves the camera's setting.
struct Shot {
    int iso = 0;
    double aperture = 0;   ///< f-number
    double shutterSec = 0; ///< seconds; with bulb the time to hold the shutter open
    bool bulb = false;     ///< a timed exposure under the driver's control
    double expComp = 0;    ///< stops; 0 sends nothing
};

/// What came of one shot.
struct CaptureOutcome {
    bool ok = false;         ///< the body took the shot as far as the driver can know
    double latencyMs = 0;    ///< from the start of the driver's work to the end of its fire
    std::string note;        ///< on failure a sentence for the operator
    bool responded = false;  ///< a definite answer; true as well where the driver itself refused
    bool deviceGone = false; ///< the failure proves that the device has left the bus
    std::string sentShutter; ///< the shutter really sent, in the body's own words; empty if none was

    friend bool operator==(const CaptureOutcome&, const CaptureOutcome&) = default;
};

/// What a body says of itself; an absent value means that the driver could not tell.
struct CameraStatus {
    std::optional<bool> isManual;
    std::optional<std::string> modeName;
    std::optional<int> batteryPercent;
};

/// What a body said to being asked between its shots.
struct PollReply {
    bool answered = false;
    std::optional<double> battery; ///< percent; other numbers beyond 998 stand for none
    bool linkEnded = false;        ///< what holds the link to the body has ended

    friend bool operator==(const PollReply&, const PollReply&) = default;
};

struct AutoIsoStatus {
    std::optional<bool> isAuto;
    std::optional<std::string> detail;
};

/// A body that the rig can drive, real or simulated.
///
/// All operations are called on the main thread and return at once. A driver never throws: a failure is
/// an outcome with a sentence in its note, and a note that begins "dropped, " means that the driver
/// refused without troubling the camera. Completions run on the main thread, exactly once.
class CameraControl {
public:
    using CaptureDone = std::function<void(const CaptureOutcome&)>;

    virtual ~CameraControl() = default;

    /// Unique among live drivers while the program runs.
    virtual const std::string& id() const = 0;
    /// The body's serial number, empty where the family cannot read it.
    virtual const std::string& serial() const = 0;
    virtual const std::string& model() const = 0;
    /// The driver family, as the run log names it: "sim", "gphoto2", ...
    virtual std::string backend() const = 0;
    /// Where the body is plugged in, in the family's words: "usb:001,004"; empty where it has none.
    virtual std::string port() const { return {}; }

    /// False once the driver has let the body go.
    virtual bool connected() const = 0;
    /// The shortest spacing between two captures that the driver claims, seconds.
    virtual double minIntervalSec() const = 0;

    /// The drive dial is on a continuous mode.
    virtual bool driveModeBurst() const { return false; }
    /// One fire yields one frame even so.
    virtual bool singleShotImmuneToDrive() const { return false; }

    /// Stops using the body.
    virtual void disconnect() = 0;

    /// Lets go of the link until resume(), for a search that may end with another driver for the body or
    /// with none. A driver that cannot take its link up again stops using the body.
    virtual void suspend() { disconnect(); }
    virtual void resume() {}

    /// Ends everything that it holds, within a limit, for the end of the program.
    virtual void shutDown(base::Seconds) { disconnect(); }

    /// Fires once.
    virtual void capture(const Shot& shot, CaptureDone done) = 0;

    /// The settings the body offers, read live where the family can.
    virtual ExposureChoices readExposureChoices() { return {}; }
    /// The same without waiting for the body. A driver whose reading waits overrides both.
    virtual void readExposureChoices(std::function<void(const ExposureChoices&)> done) {
        done(readExposureChoices());
    }
    /// Why the last reading gave nothing, a sentence; empty when it gave something, or there was none.
    virtual std::string lastProfileError() const { return {}; }

    virtual void probe(std::function<void(const CameraStatus&)> done) { done({}); }
    virtual void probeAutoISO(std::function<void(const AutoIsoStatus&)> done) { done({}); }

    /// A body that is asked for its battery by poll() and by nothing else.
    virtual bool polled() const { return false; }
    /// A shot is under way.
    virtual bool busy() const { return false; }
    virtual void poll(std::function<void(const PollReply&)> done) { done({}); }

    /// The drive dial has no single-frame position that this link could see.
    virtual bool lacksSingleMode() const { return false; }
    /// Focus is by hand; absent where the link does not tell.
    virtual std::optional<bool> focusIsMF() const { return std::nullopt; }
    /// The body has handed control over; absent where the link has no such step.
    virtual std::optional<bool> handshakeOK() const { return std::nullopt; }

    /// Asks for a sign of life where the driver holds a link that would go to sleep without.
    virtual void keepAlive() {}

    /// Reads the value lists that the driver still lacks. Called while the body has nothing to do.
    virtual void learnChoices() {}

    /// False for a body that exists in the program only.
    virtual bool isReal() const { return true; }

    /// The USB bus that the body's commands must not overlap on; absent for a body that does not mind,
    /// or whose bus is not known.
    virtual std::optional<int> usbBus() const { return std::nullopt; }

    /// Frames fired since the driver was made.
    virtual int shotCount() const = 0;
    /// Frames that the body has confirmed as stored on its card, since the driver was made; absent
    /// where the family cannot tell.
    virtual std::optional<int> confirmedFrames() const { return std::nullopt; }

    /// Asks the driver to send every setting with the next frame, whatever it sent before.
    virtual void forceFullExposureNextFrame() {}
};

} // namespace zenka::cameras
