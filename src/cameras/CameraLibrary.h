#pragma once

#include "cameras/FramingRecord.h"
#include "ports/Folders.h"
#include "ports/KeptFile.h"

#include <nlohmann/json_fwd.hpp>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::cameras {

/// A body of the operator's own.
struct CameraLibraryEntry {
    std::string serial; ///< tells it from all others; not empty
    std::string model;
    std::string label; ///< the name by which scripts know it
    std::optional<std::string> lens;
    std::optional<FramingRecord> framing;

    friend bool operator==(const CameraLibraryEntry&, const CameraLibraryEntry&) = default;
};

nlohmann::ordered_json toJson(const CameraLibraryEntry& entry);
/// Nothing for what is no entry. What cannot be read of the framing costs only itself, which `whole` tells.
std::optional<CameraLibraryEntry> libraryEntryFrom(const nlohmann::json& json, bool& whole);

/// The bodies that were given a label, a lens or a framing, kept by their serials in the file "cameras.json"
/// from one session to the next. Main thread.
class CameraLibrary {
public:
    CameraLibrary(ports::KeptFile::Means means, const ports::Folders& folders);

    /// Takes the entries from the file, none where there is no file. Waits for the disk, for start-up. A
    /// file that does not read whole is kept as "cameras.json.damaged", what can be read of it is taken, and
    /// a sentence for the log is given.
    std::optional<std::string> load();

    /// In the order in which they were added.
    const std::vector<CameraLibraryEntry>& entries() const { return entries_; }

    /// Nothing for an unknown serial.
    std::optional<CameraLibraryEntry> find(std::string_view serial) const;

    /// Adds an entry, or puts it in the place of the one with its serial. One with no serial is passed over.
    /// The file is written without waiting for it.
    void put(const CameraLibraryEntry& entry);
    /// Likewise several, written once.
    void put(const std::vector<CameraLibraryEntry>& entries);

    /// Likewise. An unknown serial is passed over.
    void remove(std::string_view serial);

private:
    void save();

    ports::KeptFile file_;
    std::vector<CameraLibraryEntry> entries_;
};

} // namespace zenka::cameras
