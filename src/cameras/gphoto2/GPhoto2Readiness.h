#pragma once

#include "cameras/gphoto2/GPhoto2Session.h"

#include <optional>
#include <string>
#include <vector>

namespace zenka::cameras {

/// What of a body's own settings would spoil a run.
namespace GPhoto2Readiness {

struct Warning {
    bool severe = false; ///< frames would be lost, not only be late or differ
    std::string message;

    friend bool operator==(const Warning&, const Warning&) = default;
};

/// The answers that it is judged by; absent where the body gave none.
struct Answers {
    std::vector<std::string> cardLabels;
    std::optional<std::string> focusMode;
    std::optional<std::string> expProgram;
    std::optional<std::string> captureMode;
    std::optional<std::string> autoISO;
    std::optional<std::string> longExposureNR;
};

Answers ask(GPhoto2Session& session, base::Seconds perKey);

std::vector<Warning> judge(const Answers& answers, const std::string& model);

} // namespace GPhoto2Readiness

} // namespace zenka::cameras
