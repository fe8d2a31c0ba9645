#pragma once

#include "rig/transfer/RigFile.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zenka::rig {

/// What of a rig can be taken or left by itself, in the order in which it is listed.
enum class RigPart { site, savedSites, script, bodies, rules, floors, horizons };

/// A part of a rig that was read, in words.
struct RigPartWords {
    RigPart part = RigPart::site;
    std::string what;   ///< "4 saved sites"
    std::string effect; ///< what becomes of what is here: "3 new, 1 in the place of yours"

    friend bool operator==(const RigPartWords&, const RigPartWords&) = default;
};

/// The parts that a rig has, held against the rig here. `edited`: the script here is in no file as it stands.
std::vector<RigPartWords> rigPartWords(const RigContents& rig, std::size_t frames, const RigContents& here,
                                       bool edited);

/// What the parts are that a rig has.
std::vector<std::string> rigPartCounts(const RigContents& rig, std::size_t frames);

} // namespace zenka::rig
