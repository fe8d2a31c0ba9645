#include "script/WizardChoices.h"

#include "base/Text.h"
#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>

namespace zenka::script {

namespace {

/// 2^5.2: Q 5.2 is what frames behind this filter were found to need in the field.
constexpr double thousandOaksLight = 36.75834735990512;

} // namespace

std::string WizardChoices::partialShutter() const {
    if (!base::trimmed(partialBaseShutter).empty())
        return std::string(base::trimmed(partialBaseShutter));
    switch (filter) {
    case Filter::thousandOaks: {
        const double read = base::readNumber(partialAperture).value_or(8);
        const double aperture = read > 0 ? read : 8;
        const double iso = partialISO > 0 ? partialISO : 100;
        return std::string(exposure::snapToStandard(aperture * aperture / (iso * thousandOaksLight)));
    }
    case Filter::nd: return ndStops < 16 ? "1/1000" : ndStops < 20 ? "1/250" : "1/60";
    case Filter::fullSolar:
    case Filter::none: break;
    }
    return "1/500";
}

std::string WizardChoices::filterAdvice() const {
    switch (filter) {
    case Filter::fullSolar:
        return "Full solar filter → partials are bright: ~ISO 100, f/8, 1/500–1/2000. Keep it on until ~20 s "
               "before C2.";
    case Filter::thousandOaks:
        return "Thousand Oaks filter → partials are baselined on real field exposures, about 3 stops "
               "brighter "
               "than a generic solar filter (Q ≈ 5.2). Adjust per body if your setup differs.";
    case Filter::nd:
        return absl::StrFormat("%d stops → partials dimmer than a true solar filter. Meter on the day; "
                               "exposures lengthen as totality nears.",
                               ndStops);
    case Filter::none: break;
    }
    return "No filter → the partial Sun is NOT safe to photograph; partial-phase frames are skipped. "
           "Totality "
           "only.";
}

std::vector<std::string> WizardChoices::targets() const {
    return cameras.empty() ? std::vector<std::string>{camera} : cameras;
}

} // namespace zenka::script
