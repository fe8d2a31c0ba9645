#pragma once

#include "base/Published.h"
#include "ports/Settings.h"
#include "rig/script/ScriptDesk.h"
#include "rig/shared/RigLog.h"
#include "script/CommandLines.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zenka::rig {

/// Which commands of a script may be run on this computer. One that the user typed needs no leave; one that
/// came with a file is withheld until the user has seen it and said yes, once for the very same words. Main
/// thread.
class CommandConsent {
public:
    /// Leave for more is not remembered; the oldest is asked for again.
    static constexpr std::size_t mostAllowedBytes = 256 << 10;

    CommandConsent(ports::Settings& settings, RigLog& log, ScriptDesk& script);

    bool mayRun(const std::string& shell) const { return !withheld_.contains(shell); }

    /// The commands of the script on the desk that wait for a yes, in the order of its lines.
    const base::Published<std::vector<script::CommandLine>>& waiting() const { return waiting_; }

    /// The user has opened a file whose commands wait.
    sigc::signal<void()>& asked() { return asked_; }

    /// What is about to be run needs no leave when the run is resumed.
    void runBegins();

    /// Lets those run that wait.
    void allow();

private:
    void take(const std::string& text, ScriptDesk::Arrival arrival);
    void followScript();
    void rememberOwn(const std::string& text);
    void remember(const std::vector<script::CommandLine>& commands);

    ports::Settings& settings_;
    RigLog& log_;
    ScriptDesk& script_;
    std::vector<std::string> allowed_; ///< the newest last
    std::set<std::string> withheld_;
    base::Published<std::vector<script::CommandLine>> waiting_;
    std::optional<ScriptDesk::Arrival> news_; ///< to be told once the text is compiled
    sigc::signal<void()> asked_;
};

} // namespace zenka::rig
