#include "platform/Exiv2Metadata.h"

#include "analysis/ExifReader.h"
#include "platform/LazyFile.h"
#include "platform/ThreadWorkQueues.h"
#include "support/ImageFiles.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <mutex>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

using namespace zenka;
using platform::LazyFile;
using testing::DoubleNear;
using testing::Optional;

namespace {

namespace fs = std::filesystem;

constexpr std::size_t megabyte = std::size_t{1} << 20;

struct Exiv2MetadataTest : testing::Test {
    test::TempFolder root;
    platform::Exiv2Metadata metadata;

    fs::path put(const std::string& name, std::string_view bytes) {
        test::writeFile(root.path() / name, bytes);
        return root.path() / name;
    }
    static std::string content(const fs::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    /// Runs a command in the folder.
    void run(const std::string& command) const {
        ASSERT_EQ(std::system(("cd \"" + root.path().string() + "\" && " + command).c_str()), 0) << command;
    }
};

const test::ImageTags shot{.date = "2026:08:12 20:29:03",
                           .subSec = "07",
                           .iso = 400,
                           .fNumber = {80, 10},
                           .exposureTime = {1, 500},
                           .make = "Panasonic",
                           .model = "DC-GH6"};

void expectShot(const std::optional<ports::ImageFields>& fields, const std::string& of) {
    ASSERT_TRUE(fields) << of;
    EXPECT_EQ(fields->dateTimeOriginal, "2026:08:12 20:29:03") << of;
    EXPECT_EQ(fields->subSecTimeOriginal, "07") << of;
    EXPECT_EQ(fields->isoSpeedRatings, 400) << of;
    EXPECT_THAT(fields->fNumber, Optional(DoubleNear(8, 1e-9))) << of;
    EXPECT_THAT(fields->exposureTime, Optional(DoubleNear(0.002, 1e-9))) << of;
    EXPECT_EQ(fields->make, "Panasonic") << of;
    EXPECT_EQ(fields->model, "DC-GH6") << of;
}

} // namespace

TEST_F(Exiv2MetadataTest, imagesOfOtherProgramsReadAsTheyWereTagged) {
    run("convert -size 64x48 xc:red a.jpg && convert a.jpg b.tif && convert a.jpg a.png && "
        "heif-enc -q 50 a.png -o c.heic >/dev/null && "
        "exiftool -q -overwrite_original -Make=Panasonic -Model=DC-GH6 '-DateTimeOriginal=2026:08:12 "
        "20:29:03' "
        "-SubSecTimeOriginal=07 -ISO=400 -FNumber=8 -ExposureTime=1/500 -XMP:Title=corona a.jpg b.tif "
        "c.heic");
    expectShot(metadata.read(root.path() / "a.jpg"), "JPEG");
    expectShot(metadata.read(root.path() / "c.heic"), "HEIC");
    const std::string tiff = content(root.path() / "b.tif");
    for (const char* name : {"b.arw", "b.nef", "b.dng", "b.pef", "b.cr2", "b.raw", "b.JPG"})
        expectShot(metadata.read(put(name, tiff)), name); // by its content, however it is named
    expectShot(metadata.read(put("d.cr3", test::cr3File(shot))), "CR3");
}

TEST_F(Exiv2MetadataTest, onlyTheBlocksWithTheTagsAreRead) {
    const auto far = static_cast<std::uint32_t>(40 * megabyte);
    const test::TiffForm forms[] = {{},
                                    {.bigEndian = true},
                                    {.magic = 0x55},
                                    {.firstDirectory = far},
                                    {.bigEndian = true, .exifDirectory = far}};
    for (const test::TiffForm& form : forms) {
        const fs::path file = put("far.rw2", test::tiffFile(shot, form));
        fs::resize_file(file, 60 * megabyte);
        LazyFile lazy(file);
        expectShot(platform::Exiv2Metadata::fieldsOf(lazy), "TIFF");
        EXPECT_LE(lazy.bytesRead(), 5 * LazyFile::blockSize) << form.magic << " at " << form.firstDirectory;
    }
    const fs::path jpeg = put("a.jpg", test::jpegFile(shot));
    fs::resize_file(jpeg, 20 * megabyte);
    LazyFile lazy(jpeg);
    expectShot(platform::Exiv2Metadata::fieldsOf(lazy), "JPEG");
    EXPECT_EQ(lazy.bytesRead(), LazyFile::blockSize);
}

TEST_F(Exiv2MetadataTest, valuesThatMeanNothingAreAbsent) {
    test::ImageTags odd = shot;
    odd.exposureTime = {4000000000U, 4000000000U}; // above the signed range
    EXPECT_THAT(metadata.read(put("a.jpg", test::jpegFile(odd)))->exposureTime, Optional(1.0));
    std::string zero = test::jpegFile(shot);
    const std::string ratio("\x01\0\0\0\xF4\x01\0\0", 8);
    zero.replace(zero.find(ratio), 8, std::string("\x01\0\0\0\0\0\0\0", 8));
    const auto fields = metadata.read(put("b.jpg", zero));
    ASSERT_TRUE(fields);
    EXPECT_EQ(fields->exposureTime, std::nullopt);
    EXPECT_EQ(fields->isoSpeedRatings, 400);
}

TEST_F(Exiv2MetadataTest, whatIsNoImageCostsNothing) {
    for (const char* name : {"empty.jpg", "text.jpg", "half.jpg", "half.rw2"})
        put(name, "");
    put("text.jpg", "not an image at all");
    put("half.jpg", test::jpegFile(shot).substr(0, 60));
    put("half.rw2", test::tiffFile(shot).substr(0, 30));
    put("endless.nef", test::tiffFile(shot, {.firstDirectory = 0xFFFFFFF0U - 0xFFFF0000U}));
    fs::create_directory(root.path() / "folder.jpg");
    fs::create_symlink(put("a.jpg", test::jpegFile(shot)), root.path() / "link.jpg");
    ASSERT_EQ(mkfifo((root.path() / "pipe.jpg").c_str(), 0600), 0);
    for (const char* name : {"empty.jpg", "text.jpg", "half.jpg", "half.rw2", "folder.jpg", "link.jpg",
                             "pipe.jpg", "missing.jpg"}) {
        const auto fields = metadata.read(root.path() / name);
        EXPECT_FALSE(fields && fields->dateTimeOriginal) << name;
    }
}

// 8 GB each, with a structure at the front that claims all of it.
TEST_F(Exiv2MetadataTest, aHugeFileIsNotTakenIntoMemory) {
    std::string box("\0\0\0\x18"
                    "ftypheic\0\0\0\0mif1heic",
                    24);
    box += std::string("\0\0\0\x01"
                       "meta\0\0\0\x01\xF0\0\0\0",
                       16); // 8,321,499,136 bytes long
    std::string jpeg("\xFF\xD8");
    for (int i = 0; i < 400; ++i)
        jpeg += std::string("\xFF\xE5\xFF\xFF", 4) + std::string(0xFFFD, 'x'); // 26 MB of segments
    put("box.heic", box);
    put("long.jpg", jpeg);
    put("huge.arw", test::tiffFile(shot, {.exifDirectory = 3'000'000'000U - 2'900'000'000U}));
    for (const char* name : {"box.heic", "huge.arw", "long.jpg"}) {
        const fs::path file = root.path() / name;
        fs::resize_file(file, std::uintmax_t{8} << 30);
        LazyFile lazy(file);
        ASSERT_TRUE(lazy);
        platform::Exiv2Metadata::fieldsOf(lazy);
        EXPECT_LE(lazy.bytesRead(), LazyFile::budget) << name;
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    EXPECT_LT(usage.ru_maxrss, 700'000) << "kilobytes";
}

TEST_F(Exiv2MetadataTest, ofAFileWithAFaultNothingIsReadThatItDoesNotSay) {
    for (const auto& file : fs::directory_iterator(ZENKA_SOURCE_DIR "/tests/data/images")) {
        const auto fields = metadata.read(file.path());
        const std::string date = fields ? fields->dateTimeOriginal.value_or("") : "";
        EXPECT_TRUE(date.empty() || date == "0000:00:00 00:00:00" || date == shot.date) << file.path();
    }
}

TEST_F(Exiv2MetadataTest, aCardThatIsPulledWhileItIsReadGivesWhatWasReadBefore) {
    for (int i = 0; i < 300; ++i)
        put("DCIM/" + std::to_string(i % 5) + "/IMG" + std::to_string(i) + ".JPG", test::jpegFile(shot));
    platform::ThreadWorkQueues queues;
    analysis::ExifReader reader(metadata, queues, absl::UTCTimeZone());
    std::once_flag pulled;
    const auto frames =
        reader.read(root.path(), {.progress = [&](int read, int) {
                        if (read >= 100)
                            std::call_once(pulled, [&] { fs::remove_all(root.path() / "DCIM"); });
                    }});
    EXPECT_GE(frames.size(), 100U);
    EXPECT_LT(frames.size(), 300U);
    EXPECT_EQ(frames.size() + static_cast<std::size_t>(reader.lastUnreadable()), 300U);
    EXPECT_TRUE(reader.read(root.path()).empty());
}

TEST_F(Exiv2MetadataTest, damagedFilesReadAtTheSameTimeEndTheProgramNever) {
    std::vector<std::string> seeds{test::jpegFile(shot), test::tiffFile(shot),
                                   test::tiffFile(shot, {.bigEndian = true, .magic = 0x55}),
                                   test::cr3File(shot)};
    const auto damage = [&](unsigned seed) {
        std::mt19937 random(seed);
        const fs::path file = root.path() / ("damaged" + std::to_string(seed));
        for (int round = 0; round < 150; ++round) {
            std::string bytes = seeds[random() % seeds.size()];
            for (unsigned i = 0; i < 1 + random() % 8; ++i)
                bytes[random() % bytes.size()] = static_cast<char>(random());
            bytes.resize(random() % 4 ? bytes.size() : random() % bytes.size());
            test::writeFile(file, bytes);
            metadata.read(file);
        }
    };
    std::jthread one(damage, 1);
    std::jthread two(damage, 2);
}
