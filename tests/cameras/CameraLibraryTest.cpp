#include "cameras/CameraLibrary.h"

#include "platform/virtual/VirtualMachine.h"
#include "support/MemoryFiles.h"

#include <gmock/gmock.h>

using namespace zenka;
using cameras::CameraLibrary;
using cameras::CameraLibraryEntry;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Optional;

namespace {

struct CameraLibraryTest : testing::Test {
    platform::VirtualTime time{{.epochSec = 0}};
    platform::VirtualLoop loop{time};
    platform::VirtualWorkQueues queues{time};
    std::vector<std::string> told;
    test::MemoryFiles files;
    test::MemoryFolders folders;
    const std::filesystem::path file = folders.applicationSupport() / "cameras.json";
    const std::filesystem::path damaged = file.string() + ".damaged";
    CameraLibrary library{means(), folders};

    ports::KeptFile::Means means() {
        return {.files = files, .loop = loop, .queues = queues, .tell = [this](const std::string& sentence) {
                    told.push_back(sentence);
                }};
    }
    const CameraLibraryEntry wide{.serial = "000006001234", .model = "Z 8", .label = "WIDE"};
    const CameraLibraryEntry tele{
        .serial = "DC\"7", .model = "DC-S1R", .label = "Téle", .lens = "FSQ-106 f/5"};

    std::string written() {
        time.runFor(base::Seconds(0.1));
        return files.contents[file];
    }
};

} // namespace

TEST_F(CameraLibraryTest, bodiesFollowTheirSerialsIntoTheNextSession) {
    EXPECT_EQ(library.load(), std::nullopt) << "no file is no damage";
    library.put(wide);
    library.put(tele);
    EXPECT_FALSE(files.exists(file)) << "the caller does not wait for the disk";
    EXPECT_EQ(written(), R"([
  {
    "serial": "000006001234",
    "model": "Z 8",
    "label": "WIDE"
  },
  {
    "serial": "DC\"7",
    "model": "DC-S1R",
    "label": "Téle",
    "lens": "FSQ-106 f/5"
  }
]
)");
    CameraLibrary next(means(), folders);
    EXPECT_EQ(next.load(), std::nullopt);
    EXPECT_THAT(next.entries(), ElementsAre(wide, tele));
    auto relabelled = wide;
    relabelled.label = "CAM1";
    next.put(relabelled);
    EXPECT_THAT(next.entries(), ElementsAre(relabelled, tele)) << "in its place";
    EXPECT_EQ(next.find(wide.serial), relabelled);
    next.remove(tele.serial);
    next.remove("unknown");
    EXPECT_EQ(next.find(tele.serial), std::nullopt);
    EXPECT_THAT(written(), HasSubstr("CAM1"));
    library.load();
    EXPECT_THAT(library.entries(), ElementsAre(relabelled));
}

TEST_F(CameraLibraryTest, aBodyWithoutASerialIsNotStored) {
    library.put({.serial = "", .model = "Z 8", .label = "CAM1"});
    EXPECT_THAT(library.entries(), IsEmpty());
    time.runFor(base::Seconds(0.1));
    EXPECT_FALSE(files.exists(file));
    files.contents[file] =
        R"([{"serial":"","model":"m","label":"l"},{"serial":"s","model":"m","label":"l"}])";
    EXPECT_EQ(library.load(), std::nullopt);
    EXPECT_THAT(library.entries(), ElementsAre(CameraLibraryEntry{"s", "m", "l", {}}));
}

TEST_F(CameraLibraryTest, aDamagedFileIsKeptAsideAndWhatCanBeReadOfItIsTaken) {
    for (const char* text : {"", "{}", "[{\"serial\":", "[7]", R"([{"serial":"s","model":"m"}])",
                             R"([{"serial":7,"model":"m","label":"l"}])"}) {
        files.contents[file] = text;
        EXPECT_THAT(library.load(), Optional(HasSubstr("begins anew"))) << text;
        EXPECT_THAT(library.entries(), IsEmpty()) << text;
        EXPECT_EQ(files.contents[damaged], text);
        EXPECT_EQ(written(), "[]\n");
        EXPECT_EQ(library.load(), std::nullopt) << "it is told once";
    }
    const std::string half = R"([{"serial":"a","model":"m","label":"l","lens":null},
                                 {"serial":"b","model":"m","label":"l","lens":7}])";
    files.contents[file] = half;
    EXPECT_THAT(library.load(), Optional(HasSubstr("cameras.json.damaged")));
    EXPECT_THAT(library.entries(), ElementsAre(CameraLibraryEntry{"a", "m", "l", {}}));
    EXPECT_EQ(files.contents[damaged], half);
    EXPECT_THAT(written(), Not(HasSubstr("lens")));
}

TEST_F(CameraLibraryTest, aDamagedFileThatCannotBeKeptAsideIsLeftAlone) {
    files.contents[file] = "damaged";
    files.broken = true;
    EXPECT_NE(library.load(), std::nullopt);
    files.broken = false;
    EXPECT_EQ(written(), "damaged");
}

TEST_F(CameraLibraryTest, theFramingStaysWithItsBodyAndItsDamageCostsOnlyItself) {
    auto framed = tele;
    framed.framing = {
        .focalMm = 530,
        .converter = 1.4,
        .own = cameras::Sensor{.widthMm = 17.7, .heightMm = 13.4, .widthPx = 4656, .heightPx = 3520},
        .rotationDeg = 90,
        .tracking = true};
    library.put(wide);
    library.put(framed);
    const std::string text = written();
    EXPECT_THAT(text.substr(0, text.find("Téle")), Not(HasSubstr("framing"))) << "only where there is one";
    CameraLibrary next(means(), folders);
    EXPECT_EQ(next.load(), std::nullopt);
    EXPECT_THAT(next.entries(), ElementsAre(wide, framed));

    files.contents[file] = R"([{"serial":"a","model":"m","label":"l","lens":"x","framing":
        {"focalMm":1e9,"converter":3,"sensor":"APS-C","ownSensor":{"widthMm":"36"},"rotationDeg":-90,
         "tracking":"yes","later":{}}}, {"serial":"b","model":"m","label":"l","framing":7},
        {"serial":"c","model":"m","label":"l","framing":{"focalMm":400,"later":1}}])";
    EXPECT_THAT(next.load(), Optional(HasSubstr("cameras read: 3")));
    ASSERT_EQ(next.entries().size(), 3U);
    EXPECT_EQ(next.entries()[0].lens, "x");
    EXPECT_EQ(next.entries()[0].framing, (cameras::FramingRecord{.sensor = "APS-C", .rotationDeg = -90}));
    EXPECT_EQ(next.entries()[2].framing, cameras::FramingRecord{.focalMm = 400});
    EXPECT_TRUE(files.exists(damaged));
}

TEST(FramingRecord, aLensTellsItsLongestFocalLength) {
    EXPECT_EQ(cameras::focalOf("400 mm f/5.6"), 400);
    EXPECT_EQ(cameras::focalOf("RF 100-500mm F4.5-7.1"), 500);
    EXPECT_EQ(cameras::focalOf("FSQ-106 f/5"), std::nullopt);
    EXPECT_EQ(cameras::focalOf("20000 MM"), std::nullopt);
    EXPECT_EQ(cameras::focalOf(" mm"), std::nullopt);
    EXPECT_EQ(cameras::framingFrom("[1]"), std::nullopt);
    EXPECT_EQ(cameras::framingFrom("{"), std::nullopt);
}
