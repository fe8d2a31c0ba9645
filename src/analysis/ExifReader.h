#pragma once

#include "analysis/ExifFrame.h"
#include "ports/ImageMetadata.h"
#include "ports/WorkQueues.h"

#include <absl/time/time.h>

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::analysis {

/// Hears how far a read is, on any thread, and says whether it is to be given up.
struct ReadWatch {
    std::function<void(int read, int found)> progress = [](int, int) {};
    std::function<bool()> cancelled = [] { return false; };
};

/// Reads the frames of a card. The walk does not follow symbolic links, so it stays on the card and ends.
/// A file that cannot be read costs itself only. Waits for the disk: not on the main thread. One walk at a
/// time.
class ExifReader {
public:
    /// The camera's clock is taken to show the time of the zone.
    ExifReader(ports::ImageMetadata& metadata, ports::WorkQueues& queues, absl::TimeZone zone);

    /// All frames below a folder by their time, RAW and JPEG of one shot as one. A read that was given up
    /// has no frame.
    std::vector<ExifFrame> read(const std::filesystem::path& folder, const ReadWatch& watch = {});

    /// Make and model of the first image that tells them.
    std::optional<std::string> firstCameraModel(const std::filesystem::path& folder,
                                                const ReadWatch& watch = {});

    // of the last read

    /// How many files of each extension (lower case) were no image of a kind that is read here.
    const std::map<std::string, int>& lastSkippedExtensions() const { return lastSkippedExtensions_; }
    /// Images read, before RAW and JPEG of one shot were taken as one.
    int lastImageFiles() const { return lastImageFiles_; }
    /// Images that are damaged, or do not say when they were taken.
    int lastUnreadable() const { return lastUnreadable_; }
    /// Folders that could not be listed to their end.
    int lastUnreadableFolders() const { return lastUnreadableFolders_; }

    /// The extensions read, in lower case.
    static const std::set<std::string_view>& cardImageExtensions();

    /// Takes the files of one shot, that is of one name and one millisecond, as one frame: the RAW's where
    /// there are both.
    static std::vector<ExifFrame> pairRawAndJpeg(const std::vector<ExifFrame>& frames);

    /// A frame from what its file says; nothing where that has no time.
    static std::optional<ExifFrame> frameOf(std::string file, const ports::ImageFields& fields,
                                            const absl::TimeZone& zone);

private:
    std::vector<std::filesystem::path> imagesBelow(const std::filesystem::path& folder,
                                                   const ReadWatch& watch);

    ports::ImageMetadata& metadata_;
    ports::WorkQueues& queues_;
    const absl::TimeZone zone_;
    std::map<std::string, int> lastSkippedExtensions_;
    int lastImageFiles_ = 0;
    int lastUnreadable_ = 0;
    int lastUnreadableFolders_ = 0;
};

} // namespace zenka::analysis
