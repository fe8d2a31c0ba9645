#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/CameraRoster.h"
#include "rig/MeasuredFloors.h"
#include "rig/RigLog.h"
#include "rig/ScriptDesk.h"
#include "rig/ScriptIssues.h"
#include "rig/SiteDesk.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zenka::rig {

/// Says of a script what will go wrong at this site with the bodies that are connected. Main thread.
class ScriptValidator {
public:
    using Issues = std::vector<script::ScriptDiag>;

    ScriptValidator(const ports::Ports& ports, RigLog& log, const SiteDesk& site, ScriptDesk& script,
                    const CameraRoster& roster, const MeasuredFloors& floors);

    /// Looks at the script, off the main thread, once what was typed is compiled; what is found is published
    /// and counted in the log.
    void validateScript();

    const base::Published<Issues>& validationIssues() const { return validationIssues_; }
    /// The script was looked at since it was compiled last.
    const base::Published<bool>& didValidate() const { return didValidate_; }

    /// What the compiler says of another text, then what is found in it.
    Issues issues(const std::string& forScriptText) const;

    /// What the cameras of some names are held against now.
    IssueContext context(const std::vector<std::string>& tokens) const;

private:
    IssueBody bodyBehind(const cameras::CameraControl& camera) const;
    void take(Issues issues, std::size_t captures);
    void followScript();

    const ports::Ports& ports_;
    RigLog& log_;
    const SiteDesk& site_;
    const ScriptDesk& script_;
    const CameraRoster& roster_;
    const MeasuredFloors& floors_;
    base::Published<Issues> validationIssues_;
    base::Published<bool> didValidate_{false};
    bool whenCompiled_ = false;
    std::size_t wanted_ = 0; // only what was found in the script that stands is taken
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
