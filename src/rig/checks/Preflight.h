#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/checks/PreflightChecks.h"
#include "rig/shared/RigLog.h"

#include <functional>
#include <string>
#include <vector>

namespace zenka::rig {

/// The list of what could spoil the run, before it is armed: what goes on when nothing does, and what is
/// asked for otherwise. Main thread.
class Preflight {
public:
    using Action = std::function<void()>;

    Preflight(const ports::Ports& ports, RigLog& log, const PreflightSources& sources, TimeSources& time,
              ScriptValidator& validator, BodyModes& modes);

    /// Goes on at once when nothing is wrong, else shows the list first.
    void runPreflight(Action then);
    /// Shows the list, with nothing to go on to.
    void openPreflight();
    /// Goes on from the list. Refuses while the site is still the default.
    void proceedPreflight();
    void cancelPreflight();

    /// Looks again: asks clock and bodies, and has the script looked at.
    void recheck();

    /// As it is now.
    std::vector<PreflightCheck> checks() const { return preflightChecks(sources_); }

    const base::Published<bool>& showPreflight() const { return showPreflight_; }
    /// The place next to the site by the map, to be held against where one stands; empty in the middle of
    /// nowhere.
    const base::Published<std::string>& sitePlace() const { return sitePlace_; }
    /// There is something to go on to.
    bool mayProceed() const { return static_cast<bool>(preflightAction_); }
    /// What was asked again has come, as far as it can be waited for.
    sigc::signal<void()>& rechecked() { return rechecked_; }
    /// The site is to be set first.
    sigc::signal<void()>& locationWanted() { return locationWanted_; }

private:
    void show();

    const ports::Ports& ports_;
    RigLog& log_;
    const PreflightSources sources_;
    TimeSources& time_;
    ScriptValidator& validator_;
    BodyModes& modes_;
    base::Published<bool> showPreflight_{false};
    base::Published<std::string> sitePlace_;
    Action preflightAction_;
    sigc::signal<void()> rechecked_;
    sigc::signal<void()> locationWanted_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
