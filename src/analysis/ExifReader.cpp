#include "analysis/ExifReader.h"

#include "analysis/CardWalk.h"
#include "analysis/ExposureTimeDirect.h"
#include "analysis/InParallel.h"
#include "base/CivilTime.h"
#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <utility>

namespace zenka::analysis {

namespace {

namespace fs = std::filesystem;

/// Lower case, without the point.
std::string extensionOf(const fs::path& file) {
    const std::string extension = base::lowered(file.extension().string());
    return extension.empty() ? extension : extension.substr(1);
}

bool isJpegLike(const std::string& extension) {
    return extension == "jpg" || extension == "jpeg" || extension == "heic" || extension == "heif" ||
           extension == "hif";
}

/// The number of `size` digits at a place of a text.
std::optional<int> digitsAt(std::string_view text, std::size_t at, std::size_t size) {
    const std::string_view digits = text.substr(at, size);
    return std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; })
               ? base::readInteger(digits)
               : std::nullopt;
}

/// "yyyy:MM:dd HH:mm:ss"; nothing for a time that does not exist, such as all zeros.
std::optional<absl::CivilSecond> civilOf(std::string_view text) {
    text = base::trimmed(text);
    if (text.size() != 19 || text[4] != ':' || text[7] != ':' || text[10] != ' ' || text[13] != ':' ||
        text[16] != ':')
        return std::nullopt;
    const auto year = digitsAt(text, 0, 4);
    const auto month = digitsAt(text, 5, 2);
    const auto day = digitsAt(text, 8, 2);
    const auto hour = digitsAt(text, 11, 2);
    const auto minute = digitsAt(text, 14, 2);
    const auto second = digitsAt(text, 17, 2);
    if (!year || !month || !day || !hour || !minute || !second)
        return std::nullopt;
    const absl::CivilSecond civil(*year, *month, *day, *hour, *minute, *second);
    const bool exists = civil.year() == *year && civil.month() == *month && civil.day() == *day &&
                        civil.hour() == *hour && civil.minute() == *minute && civil.second() == *second;
    return exists ? std::optional(civil) : std::nullopt;
}

/// "12" is 0.12 s.
double subSecondOf(std::string_view text) {
    std::string digits = "0.";
    std::ranges::copy_if(text, std::back_inserter(digits), [](char c) { return c >= '0' && c <= '9'; });
    return digits.size() > 2 ? base::readNumber(digits).value_or(0) : 0;
}

} // namespace

ExifReader::ExifReader(ports::ImageMetadata& metadata, ports::WorkQueues& queues, absl::TimeZone zone)
    : metadata_(metadata), queues_(queues), zone_(zone) {
}

const std::set<std::string_view>& ExifReader::cardImageExtensions() {
    static const std::set<std::string_view> extensions{"jpg", "jpeg", "heic", "heif", "hif", "raw",
                                                       "dng", "rw2",  "arw",  "nef",  "nrw", "cr2",
                                                       "cr3", "orf",  "raf",  "pef"};
    return extensions;
}

std::optional<ExifFrame> ExifReader::frameOf(std::string file, const ports::ImageFields& fields,
                                             const absl::TimeZone& zone) {
    const auto civil = fields.dateTimeOriginal ? civilOf(*fields.dateTimeOriginal) : std::nullopt;
    if (!civil)
        return std::nullopt;
    const base::Seconds subSecond{subSecondOf(fields.subSecTimeOriginal.value_or(""))};
    return ExifFrame{.file = std::move(file),
                     .date = base::instantOf(*civil, zone) + subSecond,
                     .iso = fields.isoSpeedRatings.value_or(fields.isoSpeed.value_or(0)),
                     .aperture = fields.fNumber.value_or(0),
                     .shutterSec = fields.exposureTime.value_or(0)};
}

std::vector<fs::path> ExifReader::imagesBelow(const fs::path& folder, const ReadWatch& watch) {
    std::vector<fs::path> images;
    lastUnreadableFolders_ = walkFiles(folder, [&](const fs::path& file) {
        const std::string extension = extensionOf(file);
        if (cardImageExtensions().contains(extension))
            images.push_back(file);
        else if (!extension.empty())
            ++lastSkippedExtensions_[extension];
        return !watch.cancelled();
    });
    return images;
}

std::vector<ExifFrame> ExifReader::read(const fs::path& folder, const ReadWatch& watch) {
    lastSkippedExtensions_.clear();
    lastImageFiles_ = 0;
    lastUnreadable_ = 0;
    const std::vector<fs::path> images = imagesBelow(folder, watch);
    const int found = static_cast<int>(images.size());
    std::vector<std::optional<ExifFrame>> read(images.size());
    std::atomic<int> done = 0;
    watch.progress(0, found);
    inParallel(queues_, images.size(), [&](std::size_t i) {
        if (watch.cancelled())
            return;
        const fs::path& file = images[i];
        if (const auto fields = metadata_.read(file))
            read[i] = frameOf(file.filename().string(), *fields, zone_);
        if (read[i] && extensionOf(file) == "rw2") {
            if (const auto exact = exifExposureTimeDirect(file))
                read[i]->shutterSec = *exact;
        }
        watch.progress(++done, found);
    });
    if (watch.cancelled())
        return {};

    std::vector<ExifFrame> frames;
    for (auto& frame : read) {
        if (frame)
            frames.push_back(std::move(*frame));
    }
    lastUnreadable_ = found - static_cast<int>(frames.size());
    lastImageFiles_ = static_cast<int>(frames.size());
    std::ranges::stable_sort(frames, {}, &ExifFrame::date);
    return pairRawAndJpeg(frames);
}

std::vector<ExifFrame> ExifReader::pairRawAndJpeg(const std::vector<ExifFrame>& frames) {
    std::vector<ExifFrame> shots;
    std::map<std::string, std::size_t> places; // of the shots
    for (const ExifFrame& frame : frames) {
        const fs::path name(frame.file);
        const std::string key = base::lowered(name.stem().string()) +
                                absl::StrFormat("@%d", std::llround(frame.date.epochSec * 1000));
        const auto [place, isNew] = places.try_emplace(key, shots.size());
        if (isNew) {
            shots.push_back(frame);
            continue;
        }
        ExifFrame& kept = shots[place->second];
        if (isJpegLike(extensionOf(kept.file)) && !isJpegLike(extensionOf(name)))
            kept = frame;
    }
    return shots;
}

std::optional<std::string> ExifReader::firstCameraModel(const fs::path& folder, const ReadWatch& watch) {
    std::optional<std::string> camera;
    walkFiles(folder, [&](const fs::path& file) {
        if (watch.cancelled())
            return false;
        if (!cardImageExtensions().contains(extensionOf(file)))
            return true;
        const auto fields = metadata_.read(file);
        if (!fields)
            return true;
        const std::string make(base::trimmed(fields->make.value_or("")));
        const std::string model(base::trimmed(fields->model.value_or("")));
        const std::string both = make + " " + model;
        if (const auto text = base::trimmed(both); !text.empty())
            camera = std::string(text);
        return !camera;
    });
    return camera;
}

} // namespace zenka::analysis
