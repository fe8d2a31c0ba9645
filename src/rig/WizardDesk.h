#pragma once

#include "rig/RigLog.h"
#include "rig/ScriptDesk.h"
#include "rig/Transport.h"

#include <string>

namespace zenka::rig {

/// Takes what the script wizard made to the script desk. Main thread.
class WizardDesk {
public:
    WizardDesk(RigLog& log, ScriptDesk& script, const Transport& transport)
        : log_(log), script_(script), transport_(transport) {}

    /// Why no script may be taken at this moment, a sentence; empty when one may. A live run keeps the
    /// script that it was armed with.
    std::string refusal() const;

    /// Puts a script in the place of the one on the desk, and compiles it. What was on the desk and in no
    /// file is kept as ScriptDesk::unsavedText(). savedPath is the file that the text was written to, empty
    /// for none. False, with refusal() in the log, when it may not.
    bool applyWizardScript(std::string text, const std::string& name, const std::string& savedPath = {});

private:
    RigLog& log_;
    ScriptDesk& script_;
    const Transport& transport_;
};

} // namespace zenka::rig
