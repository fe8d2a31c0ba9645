#include "platform/HeifExif.h"

#include "platform/LazyFile.h"

#include <algorithm>
#include <cstdint>

namespace zenka::platform {

namespace {

constexpr int mostBoxes = 256;
constexpr std::uint64_t mostItems = 4096;
constexpr std::size_t longestMeta = std::size_t{1} << 20; // bytes
constexpr std::size_t longestExif = std::size_t{1} << 20;

/// Big-endian numbers one behind the other; after one that would lie past the end all are 0.
class Cursor {
public:
    Cursor(std::string_view bytes, std::size_t at, std::size_t end)
        : bytes_(bytes), at_(at), end_(std::min(end, bytes.size())) {}

    std::uint64_t number(std::size_t size) {
        if (!skip(size))
            return 0;
        std::uint64_t value = 0;
        for (std::size_t i = at_ - size; i < at_; ++i)
            value = value << 8 | static_cast<unsigned char>(bytes_[i]);
        return value;
    }
    std::string_view text(std::size_t size) { return skip(size) ? bytes_.substr(at_ - size, size) : ""; }
    bool skip(std::size_t size) {
        good_ = good_ && at_ <= end_ && end_ - at_ >= size;
        at_ += good_ ? size : 0;
        return good_;
    }
    bool good() const { return good_; }
    std::size_t at() const { return at_; }

private:
    std::string_view bytes_;
    std::size_t at_;
    std::size_t end_;
    bool good_ = true;
};

struct Box {
    std::size_t begin = 0; ///< of what is in it
    std::size_t end = 0;
};

/// The first box of a kind from a place on.
std::optional<Box> findBox(LazyFile& file, std::string_view kind, std::size_t from, std::size_t to) {
    constexpr std::size_t longestHead = 16;
    for (int i = 0; i < mostBoxes && from < to; ++i) {
        if (!file.fetch(from, longestHead))
            return std::nullopt;
        Cursor head(file.bytes(), from, to);
        std::uint64_t length = head.number(4);
        const std::string_view name = head.text(4);
        if (length == 1)
            length = head.number(8);
        else if (length == 0)
            length = to - from; // the last one
        if (!head.good() || length < head.at() - from || length > to - from)
            return std::nullopt;
        if (name == kind)
            return Box{.begin = head.at(), .end = from + static_cast<std::size_t>(length)};
        from += static_cast<std::size_t>(length);
    }
    return std::nullopt;
}

/// The number of the item that holds EXIF data.
std::optional<std::uint64_t> exifItem(LazyFile& file, const Box& meta) {
    const auto list = findBox(file, "iinf", meta.begin, meta.end);
    if (!list)
        return std::nullopt;
    Cursor head(file.bytes(), list->begin, list->end);
    const auto version = head.number(1);
    head.skip(3);
    const std::uint64_t count = std::min(head.number(version == 0 ? 2 : 4), mostItems);
    std::size_t at = head.at();
    for (std::uint64_t i = 0; i < count; ++i) {
        const auto entry = findBox(file, "infe", at, list->end);
        if (!entry)
            return std::nullopt;
        Cursor item(file.bytes(), entry->begin, entry->end);
        const auto itsVersion = item.number(1);
        item.skip(3);
        const std::uint64_t id = item.number(itsVersion == 2 ? 2 : 4);
        item.skip(2);
        if (itsVersion >= 2 && item.text(4) == "Exif")
            return id;
        at = entry->end;
    }
    return std::nullopt;
}

/// Where an item stands in the file.
std::optional<FilePiece> placeOf(LazyFile& file, const Box& meta, std::uint64_t wanted) {
    const auto box = findBox(file, "iloc", meta.begin, meta.end);
    if (!box)
        return std::nullopt;
    Cursor places(file.bytes(), box->begin, box->end);
    const auto version = places.number(1);
    places.skip(3);
    const auto sizes = places.number(2); // four sizes of four bits each
    const std::size_t offsetSize = sizes >> 12 & 15;
    const std::size_t lengthSize = sizes >> 8 & 15;
    const std::size_t baseSize = sizes >> 4 & 15;
    const std::size_t indexSize = version == 0 ? 0 : sizes & 15;
    if (std::max({offsetSize, lengthSize, baseSize, indexSize}) > 8)
        return std::nullopt;
    const std::uint64_t count = std::min(places.number(version < 2 ? 2 : 4), mostItems);
    for (std::uint64_t i = 0; i < count && places.good(); ++i) {
        const std::uint64_t id = places.number(version < 2 ? 2 : 4);
        const std::uint64_t method = version == 0 ? 0 : places.number(2) & 15;
        places.skip(2);
        const std::uint64_t base = places.number(baseSize);
        const std::uint64_t extents = std::min(places.number(2), mostItems);
        for (std::uint64_t extent = 0; extent < extents && places.good(); ++extent) {
            places.skip(indexSize);
            const std::uint64_t offset = base + places.number(offsetSize);
            const std::uint64_t length = places.number(lengthSize);
            if (places.good() && id == wanted && method == 0 && offset >= base)
                return FilePiece{.offset = offset, .length = length};
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<FilePiece> heifExif(LazyFile& file) {
    constexpr std::size_t versionAndFlags = 4;
    const auto meta = findBox(file, "meta", 0, file.size());
    if (!meta || meta->end - meta->begin > longestMeta || !file.fetch(meta->begin, meta->end - meta->begin))
        return std::nullopt;
    const Box inside{.begin = meta->begin + versionAndFlags, .end = meta->end};
    const auto item = exifItem(file, inside);
    const auto place = item ? placeOf(file, inside, *item) : std::nullopt;
    if (!place || place->length > longestExif || place->offset >= file.size() ||
        place->length > file.size() - place->offset || !file.fetch(place->offset, place->length))
        return std::nullopt;
    Cursor head(file.bytes(), place->offset, place->offset + place->length);
    head.skip(static_cast<std::size_t>(head.number(4))); // to the TIFF structure
    if (!head.good())
        return std::nullopt;
    return FilePiece{.offset = head.at(), .length = place->offset + place->length - head.at()};
}

} // namespace zenka::platform
