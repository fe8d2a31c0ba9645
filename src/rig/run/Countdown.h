#pragma once

#include "rig/script/ScriptDesk.h"
#include "rig/site/SiteDesk.h"

#include <string>

namespace zenka::rig {

/// What one waits for at the site, in words: "C2 in", "Totality, left".
struct Countdown {
    std::string title;
    double seconds = 0; ///< to it; negative: it is over

    /// "01:23:45", with "−" before what is over.
    std::string text() const;
};

/// At a value of the eclipse clock.
Countdown countdownAt(const SiteDesk& site, double clock);

/// The frame that goes out next, where its offset is that of the fire loop's cursor: "next: CAM1  C2 −12s
/// 1/100 in 00:00:04".
std::string nextShotText(const ScriptDesk& script, double nextOffset, double clock);

/// The second contact is over and the third is not.
bool inCentralPhase(const SiteDesk& site, double clock);

} // namespace zenka::rig
