// From a rehearsal to the verdict: what the engine fired is put on a card that somebody has tampered with.
#include "base/Text.h"
#include "exposure/ExposureScales.h"
#include "platform/Exiv2Metadata.h"
#include "support/ImageFiles.h"
#include "support/TempFolder.h"
#include "support/VirtualRig.h"

#include <absl/strings/str_format.h>
#include <gmock/gmock.h>

#include <set>

using namespace zenka;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr int frames = 60;
const std::set<int> lost{5, 17, 44};     // fired well, but not on the card
const std::set<int> wrongShutter{9, 23}; // of different frames
constexpr int dropped = 30;              // and told so by the body
constexpr int rounded = 12;              // ISO 320 that the body has made 400

/// "1/500" or "2s" as a rational.
std::pair<std::uint32_t, std::uint32_t> ratioOf(const std::string& shutter) {
    const double seconds = *exposure::readShutterChoice(shutter);
    return seconds < 1 ? std::pair(1U, static_cast<std::uint32_t>(std::lround(1 / seconds)))
                       : std::pair(static_cast<std::uint32_t>(std::lround(seconds * 10)), 10U);
}

} // namespace

TEST(Circle, whatWasTamperedWithIsFoundAndNothingElse) {
    test::VirtualRig rig;
    platform::Exiv2Metadata exiv2;
    rig.images.otherwise = &exiv2;
    rig.model.cards().start();
    const auto body = rig.addBody("CAM1");
    for (int frame = 0; frame < frames; ++frame)
        body->outcomes.push_back(frame == dropped
                                     ? cameras::CaptureOutcome{.note = "dropped, busy", .responded = true}
                                     : cameras::CaptureOutcome{.ok = true, .responded = true});
    const double maximum = rig.model.site().contactTHours().at("MAX") * 3600;
    const char* shutters[] = {"1/500", "1/125", "1/30", "2"};
    std::string script;
    for (int frame = 0; frame < frames; ++frame)
        script += absl::StrFormat("TAKEPIC,MAX,+,%g,CAM1,%s,8.0,%d,0.000,RAW,None,N,\n", 4.37 * frame,
                                  shutters[frame / 15], frame % 6 == 0 ? 320 : 100);
    rig.load(script);
    rig.playFrom(maximum - 5);
    rig.run(3 * 3600);
    const auto rows = rig.rows();
    ASSERT_EQ(rows.size(), static_cast<std::size_t>(frames));

    test::TempFolder root;
    const auto folder = root.path() / "LUMIX/DCIM/100_PANA";
    for (int frame = 0; frame < frames; ++frame) {
        const auto& row = rows[static_cast<std::size_t>(frame)];
        if (lost.contains(frame) || row[13] != "ok")
            continue;
        const std::string& fired = row[1]; // "20:29:03.412", and the card's clock is three hours ahead
        const int hour = *base::readInteger(fired.substr(0, 2)) + 3;
        test::ImageTags tags{.date = absl::StrFormat("2026:08:12 %02d%s", hour, fired.substr(2, 6)),
                             .subSec = fired.substr(9),
                             .iso = frame == rounded ? 400 : *base::readInteger(row[8]),
                             .fNumber = {80, 10},
                             .exposureTime =
                                 wrongShutter.contains(frame) ? std::pair(1U, 4000U) : ratioOf(row[10])};
        const std::string name = absl::StrFormat("P%04d", frame);
        test::writeFile(folder / (name + ".RW2"), test::tiffFile(tags, {.magic = 0x55}));
        test::writeFile(folder / (name + ".JPG"), test::jpegFile(tags));
    }
    rig.volumes.plug(root.path() / "LUMIX");
    std::optional<rig::RunAnalyzer::Outgoing> sent;
    rig.model.analyzer().toSend().connect([&](const auto& outgoing) { sent = outgoing; });
    rig.model.analyzer().analyzeRun();
    rig.run(1);
    rig.model.analyzer().sendReport("");
    ASSERT_TRUE(sent);

    const analysis::AnalysisResult& result = sent->result;
    EXPECT_EQ(result.expectedTotal, frames);
    EXPECT_EQ(result.actualTotal, frames - 4);
    EXPECT_EQ(result.matched, frames - 4 - 2);
    EXPECT_EQ(result.misExposed, 2);
    EXPECT_THAT(result.misExposedNote, testing::UnorderedElementsAre("asked 1/500, card says 1/4000 (x1)",
                                                                     "asked 1/125, card says 1/4000 (x1)"));
    EXPECT_EQ(result.nearMiss, 1);
    EXPECT_THAT(result.nearMissNote, ElementsAre("ISO 320→400 (×1)"));
    EXPECT_EQ(result.missing(), 4);
    EXPECT_EQ(result.dropSilent, static_cast<int>(lost.size()));
    EXPECT_EQ(result.dropDetected, 1);
    EXPECT_EQ(result.dropFalseAlarm, 0);
    EXPECT_EQ(result.extras, 0);
    EXPECT_FALSE(result.pass());
    EXPECT_THAT(sent->html, HasSubstr("112 image files"));
    EXPECT_THAT(sent->html, HasSubstr("3 SILENT drop(s)"));
}
