#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/bodies/MeasuredFloors.h"
#include "rig/checks/ScriptIssues.h"
#include "rig/script/ScriptDesk.h"
#include "rig/shared/RigLog.h"
#include "rig/site/HorizonDesk.h"
#include "rig/site/SiteDesk.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {

/// Says of a script what will go wrong at this site with the bodies that are connected. Main thread.
class ScriptValidator {
public:
    using Issues = std::vector<script::ScriptDiag>;

    ScriptValidator(const ports::Ports& ports, RigLog& log, const SiteDesk& site, ScriptDesk& script,
                    const CameraRoster& roster, const MeasuredFloors& floors, const HorizonDesk& horizons);

    /// Looks at the script, off the main thread, once what was typed is compiled; what is found is published
    /// and counted in the log.
    void validateScript();

    const base::Published<Issues>& validationIssues() const { return validationIssues_; }
    /// The script was looked at since it was compiled last.
    const base::Published<bool>& didValidate() const { return didValidate_; }

    /// Looks at the script in the same way, but without a word, and says when it knows.
    void look(std::function<void()> then);
    /// What the last look at the script as it stands has found; nothing before one.
    const std::optional<Issues>& latestIssues() const { return latestIssues_; }

    /// What the compiler says of another text, then what is found in it.
    Issues issues(const std::string& forScriptText) const;

    /// Another text, what it compiles to, and what issues() finds in it.
    struct Examined {
        std::string text;
        CompileSite site; ///< that it was compiled for
        script::CompiledScript compiled;
        Issues issues;
    };
    /// issues() for texts of any length: works off the main thread and then calls back on it.
    void examine(std::string text, std::function<void(const std::shared_ptr<const Examined>&)> then) const;

    /// What the cameras of some names are held against now.
    IssueContext context(const std::vector<std::string>& tokens) const;

private:
    IssueBody bodyBehind(const cameras::CameraControl& camera) const;
    struct Finding {
        Issues issues;
        std::size_t captures = 0;
        bool current = false; ///< the script that was looked at still stands
    };
    using Found = std::function<void(const Finding&)>;
    void find(Found found);
    void publish(const Finding& finding);
    void forget();
    void followScript();

    const ports::Ports& ports_;
    RigLog& log_;
    const SiteDesk& site_;
    const ScriptDesk& script_;
    const CameraRoster& roster_;
    const MeasuredFloors& floors_;
    const HorizonDesk& horizons_;
    base::Published<Issues> validationIssues_;
    base::Published<bool> didValidate_{false};
    std::optional<Issues> latestIssues_;
    std::vector<Found> whenCompiled_; // wait for the script to be compiled
    std::size_t looks_ = 0;           ///< goes up whenever what a look would find has changed
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
