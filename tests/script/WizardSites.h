#pragma once

#include "Sites.h"
#include "script/ScriptWizardGen.h"

#include <optional>

namespace zenka::script {

/// What the wizard is told of a test's site.
inline ScriptWizardGen::HorizonCtx horizonOf(const Site& site, bool drop) {
    const eclipse::Observer& observer = site.context.observer;
    return {site.context.eclipse,       observer.lat, observer.lon, observer.elev,
            site.context.contactTHours, drop};
}

inline double totalitySeconds(const Site& site) {
    return site.context.eclipse.localCircumstances(site.context.observer).totalitySeconds;
}

} // namespace zenka::script
