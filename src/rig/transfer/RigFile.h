#pragma once

#include "base/Instant.h"
#include "cameras/CameraLibrary.h"
#include "rig/bodies/FramingBook.h"
#include "rig/bodies/MeasuredFloors.h"
#include "rig/fire/CompRulesBook.h"
#include "rig/site/HorizonStore.h"
#include "rig/site/SiteRecord.h"
#include "rig/site/SiteStore.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::rig {

/// What one carries from one computer to another: all that was prepared, and nothing that belongs to the
/// computer, such as tokens, addresses of servers, leave for commands or the look of the window.
struct RigContents {
    struct SiteInUse {
        std::string eclipseId;
        SiteRecord record;

        friend bool operator==(const SiteInUse&, const SiteInUse&) = default;
    };
    struct Script {
        std::string name;
        std::string text; ///< with line feeds alone

        friend bool operator==(const Script&, const Script&) = default;
    };

    std::string appVersion;                ///< that wrote it
    std::optional<base::Instant> exported; ///< nothing where the file does not tell
    std::optional<SiteInUse> site;
    std::vector<SavedSite> savedSites;
    std::optional<Script> script;
    std::vector<cameras::CameraLibraryEntry> bodies;
    FramingBook::ByLabel framings;
    CompRulesBook::AllRules rules;
    std::map<std::string, MeasuredFloors::OfModel> floors; ///< by model
    std::vector<KnownHorizon> horizons;

    friend bool operator==(const RigContents&, const RigContents&) = default;
};

/// A file made of it, docs/data-formats.md.
std::string toJson(const RigContents& rig);

struct RigReading {
    std::optional<RigContents> contents; ///< nothing for a file that is none, or cannot be known whole
    std::string fault;                   ///< then why, as said of the file: "is no rig of Zenka's. …"
    std::vector<std::string> leftOut;    ///< a sentence for each part that is damaged, wholly or in places
};

/// Reads a file that may come from anywhere. What is damaged costs no more than itself. Any thread.
RigReading rigFrom(std::string_view text);

} // namespace zenka::rig
