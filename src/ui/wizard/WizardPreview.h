#pragma once

#include "rig/checks/ScriptIssues.h"
#include "rig/site/SiteDesk.h"
#include "script/WizardChoices.h"
#include "script/ZenkaScript.h"
#include "ui/timeline/TimelineLanes.h"
#include "ui/timeline/TimelineRange.h"
#include "ui/wizard/WizardForm.h"
#include "ui/wizard/WizardGauges.h"

#include <map>
#include <string>
#include <vector>

namespace zenka::ui {

/// The eclipse as the site sees it, for work on another thread.
struct WizardSite : rig::CompileSite {
    std::string label;
    bool seen = false; ///< some of the Sun is covered at some time
    WizardForm::Central central = WizardForm::Central::none;
    double totalitySec = 0; ///< of the central phase
};

WizardSite wizardSite(const rig::SiteDesk& desk);

struct WizardRequest {
    WizardSite site;
    std::vector<script::WizardChoices> plans;
    std::map<std::string, std::vector<rig::IssueBody>>
        bodies; ///< behind the plans' cameras, as in IssueContext
};

struct WizardRemark {
    enum class Kind { error, warning, note };

    Kind kind = Kind::note;
    std::string text;
    int times = 1; ///< how often the same was said

    friend bool operator==(const WizardRemark&, const WizardRemark&) = default;
};

/// What one camera gets to do.
struct WizardCamera {
    std::string name;
    std::size_t plan = 0; ///< which of the request's
    int frames = 0;
    int framesInTotality = 0;
    double usedSec = 0; ///< of totality: its frames there with the spacing behind each
    WizardGauges gauges;

    friend bool operator==(const WizardCamera&, const WizardCamera&) = default;
};

struct WizardPreview {
    std::string text;
    std::vector<WizardCamera> cameras;
    std::vector<WizardRemark> remarks; ///< errors first, then warnings, then notes
    std::vector<TimelineLane> lanes;   ///< one for each camera, and the cues
    TimelineRange whole;               ///< from before the first mark and contact to behind the last
    int frames = 0;
    int cues = 0;
};

/// The script alone, as it goes to the editor.
std::string wizardScript(const WizardRequest& request);

/// All that the form shows of a script beside its answers. Pure; any thread. What cannot be used never gives
/// an empty preview without a remark.
WizardPreview wizardPreview(const WizardRequest& request);

} // namespace zenka::ui
