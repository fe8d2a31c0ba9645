#pragma once

#include "cameras/ExposureChoices.h"
#include "cameras/gphoto2/GPhoto2Machine.h"
#include "cameras/gphoto2/GPhoto2Session.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace zenka::cameras {

/// The settings that a body offers: read through a session, and remembered by its model.
namespace GPhoto2Choices {

/// A body in Manual offers some dozens of shutters; one on another mode offers the one it chose.
inline constexpr std::size_t fewestShutters = 5;

// --- read through a session; on its queue

struct Read {
    ExposureChoices choices;
    std::size_t shutterCount = 0; ///< that the body gave, also where they are too few to be believed

    bool degenerate() const { return shutterCount < fewestShutters; }
};
/// All there is; nothing but the number of shutters when they are too few.
Read readThrough(GPhoto2Session& session, const std::string& model, base::Seconds perKey);

/// What a session says of a body, for a person to look at.
std::string diagnosticsText(GPhoto2Session& session, const std::string& model, base::Seconds perKey);

// --- the memory, in the user's settings; main thread

/// What is remembered of this model in the present version. A list too short to be true is dropped, and
/// its count given out.
struct Cached {
    std::optional<ExposureChoices> choices;
    std::optional<std::size_t> poisonedCount;
};
Cached cachedChoices(ports::Settings& settings, const std::string& model);
void cacheChoices(ports::Settings& settings, const std::string& model, const ExposureChoices& choices);

int emptyReads(const ports::Settings& settings, const std::string& model);
void noteEmptyChoiceRead(ports::Settings& settings, const std::string& model);
/// A body that never answers is not asked for ever.
bool shouldReadChoicesLive(int emptyReads);

/// "eclipse.nikonHeldSession" and "eclipse.olympusHeldSession".
GPhoto2Text::HeldSessions heldSessions(const ports::Settings& settings);

/// For the operator: the mode dial is not on M.
std::string degenerateWarning(const std::string& model, std::size_t count, int knownGood);

} // namespace GPhoto2Choices

} // namespace zenka::cameras
