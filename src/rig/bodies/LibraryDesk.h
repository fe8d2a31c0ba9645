#pragma once

#include "cameras/CameraLibrary.h"
#include "ports/Ports.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/shared/RigLog.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::rig {

/// The operator's own bodies, by serial number, with the label, the lens and the framing that follow each of
/// them from one session to the next. Main thread.
class LibraryDesk {
public:
    using Entry = cameras::CameraLibraryEntry;

    LibraryDesk(const ports::Ports& ports, RigLog& log, CameraRoster& roster);

    /// Gives the bodies the labels of the last session. Waits for the disk, for start-up.
    void restore();

    /// In the order in which they became known.
    const std::vector<Entry>& entries() const { return library_.entries(); }
    std::optional<Entry> find(std::string_view serial) const { return library_.find(serial); }

    /// A body was given a label. One whose serial number two bodies report is not noted, nor is one without.
    void noteLabel(const cameras::CameraControl& camera, const std::string& label);

    /// A blank lens takes it away. A body that is here and not known yet becomes known under its present
    /// label. Nothing happens where lensFault() has something to say.
    void setLens(const std::string& serial, std::string_view lens);
    /// Why no lens can be kept for a serial number, a sentence; empty when one can.
    std::string lensFault(const std::string& serial) const;
    /// Likewise how a body looks at the Sun; false where nothing can be kept for the serial number.
    bool setFraming(const std::string& serial, const cameras::FramingRecord& framing);

    /// Takes entries in addition, and in the place of those of the same serial number, with their labels.
    void merge(const std::vector<Entry>& entries);

    /// A body in the roster keeps its label for this session.
    void forget(const std::string& serial);
    /// The bodies that undoForget() brings back, the last one first. One that has become known again
    /// meanwhile is not among them.
    const std::vector<Entry>& forgotten() const { return forgotten_; }
    void undoForget();

    /// Whether a body of this serial number is connected.
    bool isHere(const std::string& serial) const;
    /// Known bodies of which none is connected.
    std::vector<Entry> absentLibraryBodies() const;

    /// An entry came, went or changed.
    sigc::signal<void()>& changed() { return changed_; }

private:
    /// What is known of a body, or a new entry of one that is here; nothing for a stranger.
    std::optional<Entry> entryFor(const std::string& serial) const;
    void put(const Entry& entry);
    CameraRoster::Camera bodyOf(const std::string& serial) const;

    RigLog& log_;
    CameraRoster& roster_;
    cameras::CameraLibrary library_;
    std::vector<Entry> forgotten_;
    sigc::signal<void()> changed_;
};

} // namespace zenka::rig
