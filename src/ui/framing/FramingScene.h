#pragma once

#include "eclipse/Framing.h"
#include "script/Bursts.h"
#include "ui/sky/SkyScene.h"

#include <array>
#include <optional>
#include <vector>

namespace zenka::rig {
class SiteDesk;
}

namespace zenka::ui {

/// What the picture of a framing shows: the Sun in the middle, the zenith up, lengths in solar radii.
struct FramingScene {
    SkyScene sky;
    bool corona = false;                ///< the moment is within totality, or at its edge
    std::array<SkyOffset, 4> corners{}; ///< of the frame that is centred on the Sun, one after another
    double wantedRadii = 4;

    /// The Sun's way through the frame over a burst; empty where it is followed, or there is none.
    std::vector<SkyOffset> path;
    bool firstHeld = true; ///< the Sun is in the frame at its begin
    bool lastHeld = true;

    /// Half the extent of the frame.
    SkyOffset reach() const;
};

/// What the scene of a framing is made from.
struct FramingPlan {
    eclipse::Framing::Optics optics;
    double moment = 0; ///< clock value that Sun and Moon are shown at
    double wantedRadii = 4;
    std::optional<script::Burst> burst; ///< whose path is shown
    double aimed = 0;                   ///< clock value at which the camera was aimed for it
};

FramingScene framingScene(const rig::SiteDesk& site, const FramingPlan& plan);

} // namespace zenka::ui
