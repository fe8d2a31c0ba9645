#pragma once

#include "script/EspenakGuide.h"
#include "script/WizardChoices.h"

#include <array>
#include <set>
#include <string>
#include <vector>

namespace zenka::ui {

/// How one phase of totality stands against the exposure table.
struct WizardGauge {
    const char* name = "";
    const char* shutterField = ""; ///< the answer that a suggestion goes to
    bool planned = false;
    script::EspenakGuide::Verdict verdict;

    friend bool operator==(const WizardGauge&, const WizardGauge&) = default;
};

/// The exposures of a plan, as the answers give them, against the table, which is for a high Sun: what
/// low-Sun compensation adds makes up for the air and is not counted.
struct WizardGauges {
    static constexpr std::array<const char*, 7> zoneNames{"0.1", "0.2", "0.5", "1",
                                                          "2",   "4",   "8"}; ///< solar radii

    std::array<WizardGauge, 4> singles; ///< diamond ring, beads, prominences, earthshine
    std::array<bool, 7> zones{};        ///< of the corona, the innermost first
    script::EspenakGuide::CoronaCoverage corona;

    friend bool operator==(const WizardGauges&, const WizardGauges&) = default;
};

/// Gauges of usable answers. `taken` are the phases that the script has frames of.
WizardGauges wizardGauges(const script::WizardChoices& usable, double totalitySec,
                          const std::set<script::EspenakGuide::Phase>& taken);

} // namespace zenka::ui
