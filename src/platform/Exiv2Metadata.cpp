#include "platform/Exiv2Metadata.h"

#include "base/TiffBytes.h"
#include "platform/HeifExif.h"
#include "platform/LazyFile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <exiv2/exiv2.hpp>
#include <limits>
#include <mutex>
#include <utility>

namespace zenka::platform {

namespace {

/// What Exiv2 reads through: only what it asks for comes from the disk.
class LazyIo final : public Exiv2::BasicIo {
public:
    explicit LazyIo(LazyFile& file) : file_(file) {}

    int open() override {
        at_ = 0;
        eof_ = false;
        open_ = true;
        return 0;
    }
    int close() override {
        open_ = false;
        return 0;
    }
    long read(Exiv2::byte* buffer, long wanted) override {
        const std::size_t length = readable(wanted);
        if (!file_.fetch(at_, length)) {
            failed_ = true;
            return 0;
        }
        std::memcpy(buffer, file_.data() + at_, length);
        at_ += length;
        eof_ = static_cast<long>(length) < wanted;
        return static_cast<long>(length);
    }
    Exiv2::DataBuf read(long wanted) override {
        // A box may claim the whole of a big file: the buffer is no larger than what will be read.
        const std::size_t length = std::min(readable(wanted), LazyFile::budget);
        Exiv2::DataBuf buffer(static_cast<long>(length));
        buffer.size_ = read(buffer.pData_, buffer.size_);
        return buffer;
    }
    int getb() override {
        Exiv2::byte one = 0;
        return read(&one, 1) == 1 ? one : EOF;
    }
    int seek(long offset, Position from) override {
        const auto size = static_cast<long>(file_.size());
        const long base = from == beg ? 0 : from == cur ? static_cast<long>(at_) : size;
        if ((offset > 0 && base > std::numeric_limits<long>::max() - offset) || base + offset < 0 ||
            base + offset > size)
            return 1;
        at_ = static_cast<std::size_t>(base + offset);
        eof_ = false;
        return 0;
    }
    Exiv2::byte* mmap(bool) override { return reinterpret_cast<Exiv2::byte*>(file_.data()); }
    int munmap() override { return 0; }
    long tell() const override { return static_cast<long>(at_); }
    std::size_t size() const override { return file_.size(); }
    bool isopen() const override { return open_; }
    int error() const override { return failed_ ? 1 : 0; }
    bool eof() const override { return eof_; }
    std::string path() const override { return {}; }

    // It is never written to.
    long write(const Exiv2::byte*, long) override { return 0; }
    long write(Exiv2::BasicIo&) override { return 0; }
    int putb(Exiv2::byte) override { return EOF; }
    void transfer(Exiv2::BasicIo&) override {}

private:
    std::size_t readable(long wanted) const {
        return wanted <= 0 ? 0 : std::min(static_cast<std::size_t>(wanted), file_.size() - at_);
    }

    LazyFile& file_;
    std::size_t at_ = 0;
    bool open_ = false;
    bool eof_ = false;
    bool failed_ = false;
};

constexpr std::size_t longestText = 256; // bytes

/// Panasonic's RAW has a JPEG with the rest of the EXIF data in this entry.
constexpr std::uint16_t jpegOfRaw = 0x002E;
constexpr std::size_t jpegHead = std::size_t{64} << 10; // its EXIF data is no longer

/// Reads the value of an entry, where it stands outside of it.
void fetchValue(LazyFile& file, const base::TiffBytes& tiff, std::size_t directory, std::uint16_t tag,
                std::size_t length = longestText) {
    const auto entry = tiff.findTag(directory, tag);
    if (const auto place = entry ? tiff.valueAt(*entry) : std::nullopt)
        file.fetch(*place, length);
}

bool fetchDirectory(LazyFile& file, std::size_t directory) {
    return file.fetch(directory, 2 + base::TiffBytes::mostEntries * base::TiffBytes::entrySize);
}

/// Exiv2 takes a TIFF structure as one piece of memory and asks for nothing, so what it will need is read
/// before. What it looks at beside that is zeros to it.
bool fetchTiff(LazyFile& file) {
    namespace Tags = base::TiffTags;
    const auto tiff = base::TiffBytes::in(file.bytes());
    const auto first = tiff ? tiff->firstDirectory() : std::nullopt;
    if (!first || !fetchDirectory(file, *first))
        return false;
    fetchValue(file, *tiff, *first, Tags::make);
    fetchValue(file, *tiff, *first, Tags::model);
    fetchValue(file, *tiff, *first, jpegOfRaw, jpegHead);
    const auto pointer = tiff->findTag(*first, Tags::exifDirectory);
    const auto exif = pointer ? tiff->valueAt(*pointer) : std::nullopt;
    if (!exif)
        return true; // there may be some elsewhere, as in a preview
    if (!fetchDirectory(file, *exif))
        return false;
    for (const std::uint16_t tag : {Tags::dateTimeOriginal, Tags::subSecTimeOriginal, Tags::isoSpeedRatings,
                                    Tags::isoSpeed, Tags::fNumber, Tags::exposureTime})
        fetchValue(file, *tiff, *exif, tag);
    return true;
}

std::optional<std::string> textOf(const Exiv2::ExifData& data, const char* key) {
    const auto found = data.findKey(Exiv2::ExifKey(key));
    if (found == data.end() || found->size() > static_cast<long>(longestText))
        return std::nullopt;
    std::string text = found->toString();
    text.resize(std::min(text.size(), text.find('\0')));
    return text;
}

std::optional<int> integerOf(const Exiv2::ExifData& data, const char* key) {
    const auto found = data.findKey(Exiv2::ExifKey(key));
    if (found == data.end() || found->count() < 1)
        return std::nullopt;
    const long value = found->toLong(0);
    return value >= 0 && value <= std::numeric_limits<int>::max() ? std::optional(static_cast<int>(value))
                                                                  : std::nullopt;
}

std::optional<double> ratioOf(const Exiv2::ExifData& data, const char* key) {
    const auto found = data.findKey(Exiv2::ExifKey(key));
    if (found == data.end() || found->count() < 1)
        return std::nullopt;
    double value = 0;
    if (found->typeId() == Exiv2::unsignedRational) {
        // Not toRational(), which makes signed numbers of them.
        const auto* ratios = dynamic_cast<const Exiv2::URationalValue*>(&found->value());
        if (!ratios || ratios->value_.empty() || ratios->value_[0].second == 0)
            return std::nullopt;
        value = static_cast<double>(ratios->value_[0].first) / ratios->value_[0].second;
    } else {
        const auto [numerator, denominator] = found->toRational(0);
        if (denominator == 0)
            return std::nullopt;
        value = static_cast<double>(numerator) / denominator;
    }
    return value >= 0 ? std::optional(value) : std::nullopt;
}

std::optional<std::string> either(std::optional<std::string> one, std::optional<std::string> other) {
    return one ? std::move(one) : std::move(other);
}

// Exiv2 0.27 takes and gives no other pointer.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
Exiv2::Image::AutoPtr opened(LazyFile& file) {
    return Exiv2::ImageFactory::open(Exiv2::BasicIo::AutoPtr(new LazyIo(file)));
}
#pragma GCC diagnostic pop

/// A damaged end does not cost what was read before it.
void readWhatCanBe(Exiv2::Image& image) {
    try {
        image.readMetadata();
    } catch (const std::exception&) {
        return;
    }
}

void readHeif(LazyFile& file, Exiv2::ExifData& data) {
    if (const auto piece = heifExif(file))
        Exiv2::ExifParser::decode(data, reinterpret_cast<const Exiv2::byte*>(file.data()) + piece->offset,
                                  static_cast<std::uint32_t>(piece->length));
}

std::mutex& xmpLock() {
    static std::mutex lock;
    return lock;
}

} // namespace

Exiv2Metadata::Exiv2Metadata() {
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::enableBMFF(true); // or CR3 and HEIC read as nothing
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        // Reading several at once needs it initialised, with a lock for what its XMP part shares.
        Exiv2::XmpParser::initialize([](void*, bool lock) { lock ? xmpLock().lock() : xmpLock().unlock(); },
                                     nullptr);
    });
}

std::optional<ports::ImageFields> Exiv2Metadata::read(const std::filesystem::path& path) {
    LazyFile file(path);
    return file ? fieldsOf(file) : std::nullopt;
}

std::optional<ports::ImageFields> Exiv2Metadata::fieldsOf(LazyFile& file) {
    try {
        if (!file.fetch(0, LazyFile::blockSize))
            return std::nullopt;
        if (base::TiffBytes::in(file.bytes()) && !fetchTiff(file))
            return std::nullopt;
        const auto image = opened(file);
        if (!image.get())
            return std::nullopt;
        readWhatCanBe(*image);
        Exiv2::ExifData& data = image->exifData();
        if (data.empty())
            readHeif(file, data);
        if (data.empty())
            return std::nullopt;
        return ports::ImageFields{
            .dateTimeOriginal = textOf(data, "Exif.Photo.DateTimeOriginal"),
            .subSecTimeOriginal = textOf(data, "Exif.Photo.SubSecTimeOriginal"),
            .isoSpeedRatings = integerOf(data, "Exif.Photo.ISOSpeedRatings"),
            .isoSpeed = integerOf(data, "Exif.Photo.ISOSpeed"),
            .fNumber = ratioOf(data, "Exif.Photo.FNumber"),
            .exposureTime = ratioOf(data, "Exif.Photo.ExposureTime"),
            .make = either(textOf(data, "Exif.Image.Make"), textOf(data, "Exif.PanasonicRaw.Make")),
            .model = either(textOf(data, "Exif.Image.Model"), textOf(data, "Exif.PanasonicRaw.Model")),
        };
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

} // namespace zenka::platform
