#pragma once

#include "cameras/FramingRecord.h"
#include "ports/Settings.h"
#include "rig/bodies/LibraryDesk.h"

#include <map>
#include <optional>
#include <string>

namespace zenka::rig {

/// How each body looks at the Sun, kept from one session to the next: with the body in the library where its
/// serial number tells it from all others, else under its label, as a simulated body or a name of the script
/// has no more. Main thread.
class FramingBook {
public:
    FramingBook(ports::Settings& settings, LibraryDesk& library) : settings_(settings), library_(library) {}

    /// A body that has none of its own takes what was planned under its label. An empty label stands for the
    /// plan without a body.
    std::optional<cameras::FramingRecord> find(const std::string& serial, const std::string& label) const;
    void keep(const std::string& serial, const std::string& label, const cameras::FramingRecord& framing);
    /// What stands under labels, in small letters; the empty one is the plan's.
    using ByLabel = std::map<std::string, cameras::FramingRecord>;
    ByLabel underLabels() const;
    /// Takes framings in addition, and in the place of those under the same label.
    void merge(const ByLabel& framings);
    /// Whether it goes into the library.
    bool inLibrary(const std::string& serial) const { return library_.lensFault(serial).empty(); }

private:
    ports::Settings& settings_;
    LibraryDesk& library_;
};

} // namespace zenka::rig
