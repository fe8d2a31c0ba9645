#pragma once

#include "cameras/CameraControl.h"
#include "ports/UsbBus.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zenka::rig {

/// A body on the bus, as a family or the universal driver sees it.
struct FoundBody {
    std::string model;  ///< the name for the operator
    std::string port;   ///< "usb:020,007", or a place in a list that only its family knows
    std::string serial; ///< by the USB bus or the family; empty where it is not known
    std::string hub;    ///< of the USB hub, empty where it is not known
    bool isSony = false;

    friend bool operator==(const FoundBody&, const FoundBody&) = default;
};

/// A body in a driver's hands.
struct HeldBody {
    std::string id; ///< of the driver
    std::string serial;
    std::string port;

    friend bool operator==(const HeldBody&, const HeldBody&) = default;
};

/// A body that has to be found again.
struct DownBody {
    std::string id; ///< of the driver that has lost it
    std::string serial;
    std::string model;
    std::string label;
    std::string backend;

    friend bool operator==(const DownBody&, const DownBody&) = default;
};

/// One way to real bodies: a maker's own link, or the universal driver. Making another maker known is a
/// class of this kind and one line where the families are listed. What looks at the bus or connects runs on
/// a background thread, one call at a time, and may wait.
class CameraFamily {
public:
    using Camera = std::shared_ptr<cameras::CameraControl>;
    /// Makes the driver of a body that is held, on the main thread. One that is dropped uncalled lets go of
    /// the body.
    using MakeDriver = std::function<Camera()>;
    /// A sentence for the operator. Any thread.
    using Tell = std::function<void(std::string)>;

    /// When in a pass it is asked.
    enum class Turn {
        alone,        ///< first, and when it has a body the rest of the pass would sever that
        beforeOthers, ///< for the bodies of its maker, before the universal driver gets what is left
        universal,    ///< lists the bus, and takes what is left
    };

    virtual ~CameraFamily() = default;

    /// As the run log names it.
    virtual std::string backend() const = 0;
    virtual Turn turn() const = 0;

    /// Whether a body of the bus is this family's to try. The universal one takes all.
    virtual bool takes(const FoundBody&) const { return true; }

    /// The bodies that it sees. `listed` is what the universal driver lists that this family takes, empty
    /// for the families asked before and for the universal one itself.
    virtual std::vector<FoundBody> enumerate(const std::vector<FoundBody>& listed, const Tell& tell) = 0;

    /// Empty when the body cannot be held; why is told where the operator can do something about it.
    virtual MakeDriver connect(const FoundBody& body, const Tell& tell) = 0;

    /// What to say when a body of this family was left to the universal driver; empty for nothing.
    virtual std::string explainFallback() const { return {}; }

    /// Lets go of a body that it connected, so that another driver can hold it half a second later. Main
    /// thread; does not wait.
    virtual void release(const Camera& camera) { camera->disconnect(); }

    /// Looks for bodies that are down, and holds those that it finds.
    struct Rebound {
        std::string id; ///< of the DownBody
        MakeDriver make;
    };
    virtual std::vector<Rebound> rebind(const std::vector<DownBody>& down, const Tell& tell) = 0;

    /// Ids of those bodies of its own that are no longer where they were held. Background; it only looks.
    virtual std::vector<std::string> goneFromBus(const std::vector<HeldBody>&) { return {}; }

    /// Whether the body at a port still answers, if need be after a reset of the port. Its driver has let go
    /// of it. Background, and it may take a minute; nothing from a family that cannot tell.
    virtual std::optional<bool> linkAlive(const std::string& /*port*/) { return std::nullopt; }

    /// It looks at the bus on each so many polls only, as a look disturbs bodies that work.
    virtual int pollsBetweenScans() const { return 1; }

    /// Its look at the bus has never come back: what the operator can do; empty else. Any thread.
    virtual std::string stuckAdvice() const { return {}; }

    /// What its last looks at the bus came to, in the maker's words, each under the name that reports have
    /// for it. It does not wait. Any thread.
    virtual std::map<std::string, std::string> reportFacts() const { return {}; }

    /// Counted: as long as anybody holds them off, the desktop's camera services are kept away from its
    /// bodies. Neither waits.
    virtual void holdServicesOff() {}
    virtual void letServicesOn() {}
};

/// Keeps the desktop's camera services away from the bodies of a family for its own life.
class ServicesOff {
public:
    explicit ServicesOff(std::shared_ptr<CameraFamily> family) : family_(std::move(family)) {
        family_->holdServicesOff();
    }
    ServicesOff(const ServicesOff&) = delete;
    ServicesOff& operator=(const ServicesOff&) = delete;
    ~ServicesOff() { family_->letServicesOn(); }

private:
    const std::shared_ptr<CameraFamily> family_;
};

/// Ids of the bodies whose port no longer has a device of their serial number; none when the bus cannot be
/// looked at. Background.
std::vector<std::string> goneFromPorts(ports::UsbBus& bus, const std::vector<HeldBody>& held);

} // namespace zenka::rig
