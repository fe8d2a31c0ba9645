#include "rig/WizardDesk.h"

#include <utility>

namespace zenka::rig {

std::string WizardDesk::refusal() const {
    if (!transport_.live())
        return {};
    return "A live run is on, and it keeps the script that it was armed with. Leave the live run first, or "
           "copy the text.";
}

bool WizardDesk::applyWizardScript(std::string text, const std::string& name, const std::string& savedPath) {
    if (const std::string why = refusal(); !why.empty()) {
        log_.pushLog("The wizard's script was not taken. " + why);
        return false;
    }
    script_.loadFrom(std::move(text), name, savedPath);
    log_.pushLog("Loaded “" + name + "” from the Script Wizard — press play to simulate.");
    return true;
}

} // namespace zenka::rig
