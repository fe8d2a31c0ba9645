#include "analysis/ExifReader.h"

#include "analysis/ExposureTimeDirect.h"
#include "base/CivilTime.h"
#include "platform/virtual/VirtualMachine.h"
#include "support/ImageFiles.h"
#include "support/ScriptedCards.h"
#include "support/TempFolder.h"

#include <absl/strings/str_format.h>
#include <gmock/gmock.h>

#include <atomic>
#include <cmath>
#include <mutex>
#include <thread>

using namespace zenka;
using analysis::ExifFrame;
using analysis::ExifReader;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

/// A pool of threads that are really there.
struct Pool final : ports::WorkQueues {
    std::vector<std::jthread> threads;
    std::shared_ptr<ports::WorkQueue> serial(const std::string&) override { return nullptr; }
    void background(std::function<void()> function) override { threads.emplace_back(std::move(function)); }
};

struct ExifReaderTest : testing::Test {
    test::TempFolder card;
    test::ToldImages metadata;
    Pool pool;
    ExifReader reader{metadata, pool, absl::UTCTimeZone()};

    void put(const std::string& place, const std::string& date, const std::string& subSec = "",
             int iso = 100) {
        const std::filesystem::path file = card.path() / place;
        test::writeFile(file, "x");
        metadata.fields[file.filename()] = {.dateTimeOriginal = date,
                                            .subSecTimeOriginal = subSec,
                                            .isoSpeedRatings = iso,
                                            .fNumber = 8,
                                            .exposureTime = 0.01};
    }
    std::vector<std::string> read(const analysis::ReadWatch& watch = {}) {
        std::vector<std::string> list;
        for (const ExifFrame& frame : reader.read(card.path(), watch))
            list.push_back(
                absl::StrFormat("%s %.3f %d", frame.file, frame.date.epochSec - 1786566543, frame.iso));
        return list;
    }
};

constexpr char noon[] = "2026:08:12 20:29:03"; // 1786566543

} // namespace

TEST_F(ExifReaderTest, framesComeByTheirTimeFromTheWholeCardAndNotFromBeyondIt) {
    put("100_PANA/P1.JPG", noon, " 07");
    put(".hidden/P2.rw2", noon, "5");
    put("P3.heic", "2026:08:12 20:29:02", "no digit");
    put("late.dng", noon, "123456789", 0);
    test::TempFolder elsewhere;
    test::writeFile(elsewhere.path() / "OUT.JPG", "x");
    metadata.fields["OUT.JPG"] = metadata.fields["P1.JPG"];
    std::filesystem::create_directory_symlink(elsewhere.path(), card.path() / "out");
    std::filesystem::create_directory_symlink(card.path(), card.path() / "100_PANA/loop");
    std::filesystem::create_symlink(card.path() / "P3.heic", card.path() / "again.heic");
    EXPECT_THAT(read(), ElementsAre("P3.heic -1.000 100", "P1.JPG 0.070 100", "late.dng 0.123 0",
                                    "P2.rw2 0.500 100"));
}

TEST_F(ExifReaderTest, whatCannotBeReadIsCountedAndCostsNothingElse) {
    put("A.JPG", noon);
    for (const char* date : {"0000:00:00 00:00:00", "2026:02:30 12:00:00", "2026-08-12 20:29:03",
                             "2026:08:12 24:00:00", "    :  :     :  :  ", "", "2026:08:12 20:29:+3"})
        put(absl::StrFormat("bad%d.jpg", card.path().string().size() + metadata.fields.size()), date);
    test::writeFile(card.path() / "silent.NEF", "x"); // no answer at all
    for (const char* other : {"a.MOV", "b.mov", "c.xmp", "noextension", ".trash"})
        test::writeFile(card.path() / other, "x");
    EXPECT_THAT(read(), ElementsAre("A.JPG 0.000 100"));
    EXPECT_EQ(reader.lastUnreadable(), 8);
    EXPECT_THAT(reader.lastSkippedExtensions(), ElementsAre(Pair("mov", 2), Pair("xmp", 1)));
    EXPECT_THAT(reader.read(card.path() / "no such folder"), IsEmpty());
    EXPECT_THAT(reader.lastSkippedExtensions(), IsEmpty());
    EXPECT_EQ(reader.lastUnreadableFolders(), 1);
}

TEST_F(ExifReaderTest, rawAndJpegOfOneShotAreOneFrameWithTheValuesOfTheRaw) {
    put("a/IMG_0001.JPG", noon, "10", 100);
    put("b/img_0001.RW2", noon, "10", 125);
    put("c/IMG_0001.NEF", noon, "10", 160);  // a second RAW is the same shot
    put("d/IMG_0001.HIF", noon, "101", 200); // a millisecond later is another one
    put("e/IMG_0002.JPG", noon, "10", 250);
    put("f/IMG_0002.JPEG", noon, "10", 320);
    EXPECT_THAT(read(),
                ElementsAre("img_0001.RW2 0.100 125", "IMG_0002.JPG 0.100 250", "IMG_0001.HIF 0.101 200"));
    EXPECT_EQ(reader.lastImageFiles(), 6);
}

TEST_F(ExifReaderTest, isoComesFromTheFirstTagThatHasIt) {
    const auto iso = [](std::optional<int> ratings, std::optional<int> speed) {
        return ExifReader::frameOf("a",
                                   {.dateTimeOriginal = noon, .isoSpeedRatings = ratings, .isoSpeed = speed},
                                   absl::UTCTimeZone())
            ->iso;
    };
    EXPECT_EQ(iso(320, 400), 320);
    EXPECT_EQ(iso(std::nullopt, 102400), 102400);
    EXPECT_EQ(iso(std::nullopt, std::nullopt), 0);
    const auto bare =
        ExifReader::frameOf("a", {.dateTimeOriginal = noon}, *base::findTimeZone("Asia/Kolkata"));
    EXPECT_EQ(bare, (ExifFrame{.file = "a", .date = {1786566543 - 19800}}));
}

TEST_F(ExifReaderTest, aThousandFilesAreReadOnceEachAndAReadCanBeGivenUp) {
    for (int i = 0; i < 1000; ++i)
        put(absl::StrFormat("DCIM/%03d/IMG%04d.JPG", i % 7, i), noon, absl::StrFormat("%03d", i));
    int most = 0;
    std::mutex lock;
    EXPECT_EQ(read({.progress =
                        [&](int done, int found) {
                            const std::lock_guard guard(lock);
                            most = std::max(most, done);
                            EXPECT_EQ(found, 1000);
                        }})
                  .size(),
              1000U);
    EXPECT_EQ(most, 1000);
    EXPECT_EQ(metadata.asked.size(), 1000U);
    std::atomic<bool> enough = false;
    EXPECT_THAT(read({.progress = [&](int done, int) { enough = done >= 10; },
                      .cancelled = [&] { return enough.load(); }}),
                IsEmpty());
    EXPECT_LT(metadata.asked.size(), 1100U);
}

TEST_F(ExifReaderTest, theCameraIsNamedByTheFirstImageThatTellsIt) {
    EXPECT_EQ(reader.firstCameraModel(card.path()), std::nullopt);
    put("A.JPG", noon);
    put("B.JPG", noon);
    put("C.JPG", noon);
    metadata.fields["A.JPG"].make = "  ";
    metadata.fields["B.JPG"].make = "NIKON CORPORATION ";
    metadata.fields["B.JPG"].model = " NIKON Z 8";
    EXPECT_EQ(reader.firstCameraModel(card.path()), "NIKON CORPORATION NIKON Z 8");
    EXPECT_THAT(metadata.asked, ElementsAre("A.JPG", "B.JPG"));
}

TEST_F(ExifReaderTest, aPanasonicRawTellsItsExactExposureTime) {
    const test::ImageTags tags{.exposureTime = {1, 3}};
    put("P1.RW2", noon);
    put("P2.RW2", noon);
    put("P3.NEF", noon);
    for (const char* name : {"P1.RW2", "P3.NEF"})
        test::writeFile(card.path() / name, test::tiffFile(tags, {.magic = 0x55}));
    test::writeFile(card.path() / "P2.RW2", test::tiffFile(tags, {.magic = 0x55, .exifDirectory = 0x100010}));
    std::vector<double> shutters;
    for (const ExifFrame& frame : reader.read(card.path()))
        shutters.push_back(frame.shutterSec);
    EXPECT_THAT(shutters, ElementsAre(1.0 / 3, 0.01, 0.01)) << "the second lies past the first megabyte";
}

TEST(ExposureTimeDirect, anyOrderOfBytesIsReadAndNoLieIsFollowed) {
    const test::ImageTags tags{.exposureTime = {13, 10}};
    for (const bool bigEndian : {false, true}) {
        for (const std::uint16_t magic : {std::uint16_t{42}, std::uint16_t{0x55}})
            EXPECT_EQ(
                analysis::exposureTimeIn(test::tiffFile(tags, {.bigEndian = bigEndian, .magic = magic})),
                1.3);
        EXPECT_EQ(analysis::exposureTimeIn(test::tiffFile(tags, {.bigEndian = bigEndian, .magic = 43})),
                  std::nullopt);
    }
    EXPECT_EQ(analysis::exposureTimeIn(test::tiffFile(tags, {.exposureType = 10})), std::nullopt) << "signed";
    EXPECT_EQ(analysis::exposureTimeIn(test::tiffFile(tags, {.exifDirectory = 0x100010}).substr(0, 0x100000)),
              std::nullopt);

    const std::string whole = test::tiffFile(tags);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        if (const auto told = analysis::exposureTimeIn(whole.substr(0, length))) {
            EXPECT_EQ(*told, 1.3) << length;
        } // only what lies behind the rational may be missing
    }
    for (const auto& file : std::filesystem::directory_iterator(ZENKA_SOURCE_DIR "/tests/data/images")) {
        // The one that claims too many entries has the right ones among them.
        const bool there = file.path().filename() == "65535-entries.rw2";
        EXPECT_EQ(analysis::exifExposureTimeDirect(file.path()), there ? std::optional(1.3) : std::nullopt)
            << file.path();
    }
    // Every word of it claims to be as far or as many as can be.
    for (std::size_t at = 2; at + 4 <= whole.size(); ++at) {
        std::string lie = whole;
        lie.replace(at, 4, "\xFF\xFF\xFF\xFF");
        analysis::exposureTimeIn(lie); // read under the sanitizer
        lie.replace(at, 4, std::string(4, '\0'));
        if (const auto told = analysis::exposureTimeIn(lie)) {
            EXPECT_TRUE(std::isfinite(*told)) << at;
        }
    }
}
