#include "cameras/gphoto2/GPhoto2Readiness.h"

#include "base/Text.h"

namespace zenka::cameras::GPhoto2Readiness {

namespace {

bool manualFocus(const std::string& value) {
    // "Manual", "MF", "MF (fixed)", "MF (selection)": the lists differ from body to body.
    return base::containsIgnoringCase(value, "manual") || base::lowered(value).starts_with("mf");
}

} // namespace

Answers ask(GPhoto2Session& session, base::Seconds perKey) {
    Answers answers;
    answers.focusMode = session.getConfigCurrent("/main/capturesettings/focusmode", perKey);
    answers.expProgram = session.getConfigCurrent("/main/capturesettings/expprogram", perKey);
    answers.captureMode = session.getConfigCurrent("/main/capturesettings/capturemode", perKey);
    answers.autoISO = session.getConfigCurrent("/main/imgsettings/autoiso", perKey);
    answers.longExposureNR = session.getConfigCurrent("/main/capturesettings/longexpnr", perKey);
    answers.cardLabels = session.getStorageLabels(perKey);
    return answers;
}

std::vector<Warning> judge(const Answers& answers, const std::string& model) {
    std::vector<Warning> warnings;
    for (const std::string& label : answers.cardLabels)
        if (GPhoto2Text::labelOfAnotherBody(label, model))
            warnings.push_back(
                {.severe = true,
                 .message =
                     "a memory card is formatted for another camera (its label is \"" + label +
                     "\") — this body will accept the shutter but write NOTHING to a card formatted in "
                     "another camera, so every frame becomes a phantom drop. Format the card IN this "
                     "camera before arming."});
    if (answers.focusMode && !answers.focusMode->empty() && !manualFocus(*answers.focusMode))
        warnings.push_back(
            {.severe = true,
             .message = "focus is " + *answers.focusMode +
                        " — a remote fire that can't lock can HANG this body's connection until "
                        "a power cycle. Switch the lens/body to MF before arming."});
    if (answers.captureMode && base::containsIgnoringCase(*answers.captureMode, "timer"))
        warnings.push_back({.message = "release mode is Self-timer — every frame will fire seconds late. Set "
                                       "release mode to Single."});
    if (answers.autoISO && GPhoto2Text::parseAutoISO(*answers.autoISO) == true)
        warnings.push_back({.message = "Auto ISO is ON — the body may quietly float ISO above the script's "
                                       "value. Turn it off (hold the ISO button and turn the front dial, or "
                                       "ISO sensitivity settings in the menu)."});
    if (answers.longExposureNR && GPhoto2Text::parseAutoISO(*answers.longExposureNR) == true)
        warnings.push_back({.message = "Long-exposure NR is ON — each long exposure is followed by an equal "
                                       "dark-frame pass, roughly halving your long-exposure cadence. Turn it "
                                       "off for the eclipse."});
    const auto program = GPhoto2Text::expProgramOf(answers.expProgram.value_or(""));
    if (program && !program->isManual)
        warnings.push_back({.severe = true,
                            .message = "mode dial is on " + program->modeName +
                                       ", not M — the camera will meter its own exposures and reject the "
                                       "script's. Turn the dial to M."});
    return warnings;
}

} // namespace zenka::cameras::GPhoto2Readiness
