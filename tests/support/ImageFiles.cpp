#include "support/ImageFiles.h"

#include <algorithm>
#include <fstream>
#include <vector>

namespace zenka::test {

namespace {

constexpr std::uint16_t ascii = 2;
constexpr std::uint16_t shortWord = 3;
constexpr std::uint16_t longWord = 4;
constexpr std::uint16_t rational = 5;

class TiffWriter {
public:
    explicit TiffWriter(bool bigEndian) : bigEndian_(bigEndian) {}

    std::string number(std::uint32_t value, std::size_t size) const {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i)
            bytes[bigEndian_ ? size - 1 - i : i] = static_cast<char>(value >> (8 * i));
        return bytes;
    }
    void addText(std::uint16_t tag, const std::string& text) {
        if (!text.empty())
            add(tag, ascii, static_cast<std::uint32_t>(text.size() + 1), text + '\0');
    }
    void addNumber(std::uint16_t tag, std::uint16_t type, std::uint32_t value) {
        add(tag, type, 1, number(value, type == shortWord ? 2 : 4));
    }
    void addRatio(std::uint16_t tag, std::uint16_t type, std::pair<std::uint32_t, std::uint32_t> ratio) {
        if (ratio.second != 0)
            add(tag, type, 1, number(ratio.first, 4) + number(ratio.second, 4));
    }
    /// The directory as it stands at an offset, its values behind it.
    std::string at(std::uint32_t offset) {
        std::ranges::sort(entries_, {}, &Entry::tag);
        std::string directory = number(static_cast<std::uint32_t>(entries_.size()), 2);
        std::string values;
        const auto valuesAt = static_cast<std::uint32_t>(offset + 2 + 12 * entries_.size() + 4);
        for (Entry& entry : entries_) {
            directory += number(entry.tag, 2) + number(entry.type, 2) + number(entry.count, 4);
            if (entry.bytes.size() > 4) {
                directory += number(valuesAt + static_cast<std::uint32_t>(values.size()), 4);
                values += entry.bytes + std::string(entry.bytes.size() % 2, '\0');
            } else {
                entry.bytes.resize(4);
                directory += entry.bytes;
            }
        }
        return directory + number(0, 4) + values;
    }

private:
    struct Entry {
        std::uint16_t tag = 0;
        std::uint16_t type = 0;
        std::uint32_t count = 0;
        std::string bytes;
    };
    void add(std::uint16_t tag, std::uint16_t type, std::uint32_t count, std::string bytes) {
        entries_.push_back({.tag = tag, .type = type, .count = count, .bytes = std::move(bytes)});
    }

    bool bigEndian_;
    std::vector<Entry> entries_;
};

void addExif(TiffWriter& exif, const ImageTags& tags, std::uint16_t exposureType) {
    exif.addRatio(0x829A, exposureType, tags.exposureTime);
    exif.addRatio(0x829D, rational, tags.fNumber);
    if (tags.iso > 0)
        exif.addNumber(0x8827, shortWord, static_cast<std::uint32_t>(tags.iso));
    exif.addText(0x9003, tags.date);
    exif.addText(0x9291, tags.subSec);
}

std::string box(const std::string& kind, const std::string& content) {
    return TiffWriter(true).number(static_cast<std::uint32_t>(8 + content.size()), 4) + kind + content;
}

} // namespace

std::string tiffFile(const ImageTags& tags, const TiffForm& form) {
    const auto first = [&](std::uint32_t exifDirectory) {
        TiffWriter directory(form.bigEndian);
        directory.addText(0x010F, tags.make);
        directory.addText(0x0110, tags.model);
        directory.addNumber(0x8769, longWord, exifDirectory);
        return directory.at(form.firstDirectory);
    };
    const std::uint32_t exifAt = form.exifDirectory
                                     ? form.exifDirectory
                                     : form.firstDirectory + static_cast<std::uint32_t>(first(0).size());
    TiffWriter exif(form.bigEndian);
    addExif(exif, tags, form.exposureType);

    std::string file = form.bigEndian ? "MM" : "II";
    file += exif.number(form.magic, 2) + exif.number(form.firstDirectory, 4);
    const auto place = [&](std::uint32_t offset, const std::string& bytes) {
        file.resize(std::max<std::size_t>(file.size(), offset + bytes.size()));
        file.replace(offset, bytes.size(), bytes);
    };
    place(form.firstDirectory, first(exifAt));
    place(exifAt, exif.at(exifAt));
    return file;
}

std::string jpegFile(const ImageTags& tags) {
    const std::string exif = std::string("Exif\0\0", 6) + tiffFile(tags);
    const std::size_t length = exif.size() + 2;
    std::string file = "\xFF\xD8\xFF\xE1";
    file += static_cast<char>(length >> 8);
    file += static_cast<char>(length & 0xFF);
    return file + exif + "\xFF\xD9";
}

std::string cr3File(const ImageTags& tags) {
    constexpr std::uint32_t behindHead = 8;
    const std::string head("II*\0\x08\0\0\0", behindHead);
    TiffWriter camera(false);
    camera.addText(0x010F, tags.make);
    camera.addText(0x0110, tags.model);
    TiffWriter exif(false);
    addExif(exif, tags, rational);
    const std::string canon("\x85\xC0\xB6\x87\x82\x0F\x11\xE0\x81\x11\xF4\xCE\x46\x2B\x6A\x48", 16);
    return box("ftyp", std::string("crx \0\0\0\1crx isom", 16)) +
           box("moov", box("uuid", canon + box("CMT1", head + camera.at(behindHead)) +
                                       box("CMT2", head + exif.at(behindHead)))) +
           box("mdat", std::string(100, 'x'));
}

void writeFile(const std::filesystem::path& file, std::string_view bytes) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

} // namespace zenka::test
