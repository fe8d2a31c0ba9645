#pragma once

#include "lumix-helper/ConfirmedFrames.h"
#include "lumix-helper/PtpSession.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace zenka::lumixHelper {

/// One Lumix body: firing it by its maker's operations, and what it tells of itself by the standard ones.
class LumixBody {
public:
    explicit LumixBody(PtpTransport& transport) : session_(transport) {}
    LumixBody(const LumixBody&) = delete;
    LumixBody& operator=(const LumixBody&) = delete;

    /// How far the body went along with a request.
    enum class Link { answered, silent, gone, stopped };

    /// One frame. For aperture and shutterSec 0 leaves the body's setting.
    struct Order {
        int iso = 0; ///< 0: the body chooses
        double aperture = 0;
        double shutterSec = 0;
        double bulbSec = 0; ///< above 0 the time that the shutter is held open
        bool full = false;  ///< send each setting, whatever the body was told before
    };
    struct Fired {
        Link link = Link::silent;
        bool fired = false;
        bool bulb = false;
        bool setOk = true;
        double latencyMs = 0;
    };
    Fired fire(const Order& order);

    struct Status {
        Link link = Link::silent;
        bool pcMode = false;        ///< it offers the operations that fire it
        std::optional<int> battery; ///< percent
        std::optional<bool> driveBurst;
    };
    Status status();

    /// What its dials stand on, as far as standard properties tell.
    struct Dials {
        Status status;
        std::optional<bool> isManual;
        std::string modeGuess;
        bool apertureKnown = false;
        bool manualLens = false;
        std::optional<bool> autoIso;
    };
    Dials dials();

    /// Frames that the body has confirmed; absent where it does not tell.
    std::optional<int> confirmed();
    /// Takes in what events there are. To be called now and then.
    void takeEvents();

    /// Ends the session. Behind it the interface may be let go.
    void release();

private:
    Link ensureOpen();
    bool apply(const Order& order, Link& link);
    std::uint16_t act(std::uint32_t action, Milliseconds limit, Link& link);
    Link hold(double seconds);
    std::optional<std::uint32_t> property(std::uint16_t code, Link& link);
    Link linkOf(const PtpAnswer& answer);

    PtpSession session_;
    bool inPcMode_ = false;
    ptp::DeviceInfo info_;
    ConfirmedFrames frames_;
    std::map<std::uint32_t, std::uint32_t> told_; // what the body was told and took, by property
};

} // namespace zenka::lumixHelper
