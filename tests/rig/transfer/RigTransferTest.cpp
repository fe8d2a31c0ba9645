#include "rig/bodies/FramingBook.h"
#include "rig/shared/SettingsKeys.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <string>
#include <utility>

namespace zenka::test {

namespace {

using rig::RigPart;
using Json = nlohmann::json;

const std::set<RigPart> everything{RigPart::site,  RigPart::savedSites, RigPart::script,  RigPart::bodies,
                                   RigPart::rules, RigPart::floors,     RigPart::horizons};
constexpr char file[] = "/home/o'brien/My Documents/a.zenka-rig";

class RigTransferTest : public testing::Test {
protected:
    RigTransferTest() {
        desk.model.bootstrap();
        field.model.bootstrap();
        prepare(desk);
    }

    static void prepare(VirtualRig& rig) {
        rig.model.sites().addSite("Hill “É”", 42.1, -3.25, 880.5, "Europe/Madrid");
        rig.model.site().take(
            "2027-08-02",
            {.site = {.lat = 25.7, .lon = 32.6, .elev = 80, .label = "Luxor, EG", .tzId = "Africa/Cairo"},
             .confirmed = true});
        rig.model.site().recompute();
        rig.model.script().takeFromElsewhere(rig.frameAt(0) + rig.frameAt(60, "CAM2"), "two.zenka");
        rig.model.script().compile();
        const auto body = rig.addBody("CAM1");
        rig.model.roster().setLabel(*body, "CAM1");
        rig.model.library().setLens(body->serial(), "500 mm f/5.6");
        rig.model.library().setFraming(body->serial(), {.focalMm = 500, .rotationDeg = 12.5});
        rig::FramingBook(rig.machine.settings, rig.model.library()).keep("", "CAM2", {.focalMm = 85});
        rig.model.exposure().rules().saveCompRules({.isoMax = 800}, "CAM1");
        rig.model.exposure().rules().saveCompRules({.balanced = true}, "Nobody");
        rig.model.floors().saveMeasuredFloor("Z8", 0.35, false);
        rig.model.floors().saveBurstDepth("Z8", 70, 0.2);
        rig.model.floors().saveLongFrameFloor("Z8", 4, 5.5, true);
        rig::KnownHorizon hills{.lat = 42.1, .lon = -3.25, .result = {}};
        hills.result.samples[90] = 7.123;
        rig.model.horizons().merge({hills, {.lat = 10, .lon = 10, .result = {}}});
        rig.run(1);
    }

    std::string exported(VirtualRig& rig) {
        rig.model.transfer().exportTo(file, [](const std::string& fault) { EXPECT_EQ(fault, ""); });
        rig.run(1);
        return rig.files.contents[file];
    }
    rig::RigTransfer::Found read(VirtualRig& rig, const std::string& text) {
        rig.files.contents[file] = text;
        rig::RigTransfer::Found found;
        rig.model.transfer().read(file, [&](const auto& each) { found = each; });
        rig.run(1);
        return found;
    }
    static std::string withoutInstant(const std::string& text) {
        Json json = Json::parse(text);
        json.erase("exported");
        return json.dump();
    }

    VirtualRig desk;
    VirtualRig field;
};

TEST_F(RigTransferTest, aRigThatWasCarriedIsTheSameRig) {
    const std::string text = exported(desk);
    const auto found = read(field, text);
    ASSERT_TRUE(found.reading.contents) << found.reading.fault;
    EXPECT_THAT(found.reading.leftOut, testing::IsEmpty());
    EXPECT_EQ(found.frames, 2U);
    EXPECT_EQ(
        rig::RigTransfer::summary(*found.reading.contents, found.frames),
        "1 site in use, 4 saved sites, script “two.zenka” with 2 frames, 1 body and framings of 1 name, "
        "exposure rules of 2 bodies, measured floors of 1 model, horizons of 1 place");
    EXPECT_NE(withoutInstant(exported(field)), withoutInstant(text)) << "nothing is taken unasked";
    ASSERT_TRUE(field.model.transfer().apply(found, everything));
    field.run(1);
    EXPECT_EQ(withoutInstant(exported(field)), withoutInstant(text));
    EXPECT_EQ(field.model.script().captures().size(), 2U);
    EXPECT_EQ(field.model.site().contactTHours(), desk.model.site().contactTHours())
        << "what is computed follows";
    ASSERT_TRUE(field.model.transfer().apply(found, everything));
    field.run(1);
    EXPECT_EQ(withoutInstant(exported(field)), withoutInstant(text)) << "a second time doubles nothing";
}

TEST_F(RigTransferTest, whatBelongsToTheComputerStaysThere) {
    for (const char* key : rig::settingsKeys::deployment)
        desk.machine.settings.setText(key, "s3cret");
    desk.machine.settings.setText(rig::settingsKeys::allowedCommands, "[\"s3cret\"]");
    EXPECT_EQ(exported(desk).find("s3cret"), std::string::npos);
}

TEST_F(RigTransferTest, onlyWhatIsWantedIsTakenAndTheRestOfTheFieldStays) {
    field.model.sites().addSite("hill “é”", 1, 2, 3, "UTC");
    field.model.sites().setDefaultSite(field.model.sites().savedSites()->back().id);
    field.model.sites().addSite("Own", 5, 6, 7, "UTC");
    field.model.floors().saveMeasuredFloor("GH6", 0.9, false);
    const rig::Site before = field.model.site().site();
    const auto found = read(field, exported(desk));
    const auto words = field.model.transfer().describe(*found.reading.contents, found.frames);
    ASSERT_EQ(words.size(), 7U);
    EXPECT_EQ(words[0].effect, "Luxor, EG, 2027-08-02 in the place of Zaragoza, ES, 2026-08-12");
    ASSERT_TRUE(field.model.transfer().apply(found, {RigPart::savedSites, RigPart::floors}));
    EXPECT_EQ(field.model.site().site(), before);
    EXPECT_NE(field.model.script().currentScriptName().get(), "two.zenka");
    EXPECT_EQ(field.model.floors().measuredFloor("GH6"), 0.9);
    EXPECT_EQ(field.model.floors().measuredFloor("Z8"), 0.35);
    EXPECT_TRUE(std::ranges::any_of(field.model.sites().savedSites().get(),
                                    [](const auto& site) { return site.name == "Own"; }));
}

TEST_F(RigTransferTest, aCommandOfTheScriptWaitsForAYesThoughItWasAllowedElsewhere) {
    desk.load("COMMAND,MAX,-,00:20, , , , , , , , ,Lights;lights off\n");
    ASSERT_TRUE(desk.model.consent().mayRun("lights off"));
    int asked = 0;
    field.model.consent().asked().connect([&] { ++asked; });
    ASSERT_TRUE(field.model.transfer().apply(read(field, exported(desk)), everything));
    EXPECT_EQ(asked, 1);
    EXPECT_FALSE(field.model.consent().mayRun("lights off"));
}

TEST_F(RigTransferTest, aLiveRunKeepsWhatItBeganWithAndCanStillBeExported) {
    const auto found = read(field, exported(desk));
    field.load(field.frameAt(3000));
    field.model.transport().armRealEclipseTiming(true);
    ASSERT_TRUE(field.model.transport().live());
    EXPECT_NE(field.model.transfer().importFault(), "");
    const std::string before = withoutInstant(exported(field));
    EXPECT_FALSE(field.model.transfer().apply(found, everything));
    EXPECT_EQ(withoutInstant(exported(field)), before);
}

TEST_F(RigTransferTest, whatIsDamagedCostsOnlyItselfAndIsTold) {
    Json rig = Json::parse(exported(desk));
    rig["savedSites"][1]["lat"] = 91;
    rig["site"]["eclipse"] = "1999-08-11";
    rig["bodies"][0]["framing"]["focalMm"] = "long";
    rig["bodies"].push_back({{"serial", "S\n1"}, {"model", ""}, {"label", "X"}});
    rig["rules"]["else:1"] = rig["rules"]["token:Nobody"];
    rig["measured"]["Z9"] = {{"floorSec", -1}};
    rig["horizons"] = "flat";
    const auto found = read(field, rig.dump());
    ASSERT_TRUE(found.reading.contents);
    EXPECT_THAT(found.reading.leftOut,
                testing::UnorderedElementsAre(
                    "The site in use is for an eclipse that is not in this catalogue, and is left out.",
                    "Of 4 saved sites, 1 could not be read and are left out.",
                    "Of 2 bodies, 1 could not be read and are left out.",
                    "Some values of framings could not be read and are left out.",
                    "Of 3 exposure rules, 1 could not be read and are left out.",
                    "Of 2 measured models, 1 could not be read and are left out.",
                    "The horizons could not be read and are left out."));
    EXPECT_EQ(found.reading.contents->savedSites.size(), 3U);
    EXPECT_EQ(found.reading.contents->bodies.size(), 1U);
    EXPECT_TRUE(found.reading.contents->script);
}

TEST_F(RigTransferTest, aFileThatIsNoRigIsRefusedWithOneSentence) {
    Json newer = Json::parse(exported(desk));
    newer["version"] = 2;
    const std::string whole = exported(desk);
    const std::string deep = R"({"format": "zenka rig", "version": 1, "site": )" + std::string(300'000, '[');
    for (const auto& [text, words] :
         {std::pair<std::string, const char*>("TAKEPIC,MAX", "is no rig of Zenka's"),
          {"{}", "is no rig"},
          {whole.substr(0, whole.size() / 2), "or it is cut"},
          {newer.dump(), "newer Zenka"},
          {deep + std::string(300'000, ']') + "}", ""},
          {std::string(rig::RigTransfer::mostBytes + 1, ' '), "is too long for a rig"}}) {
        const auto found = read(field, text);
        if (*words == '\0') {
            ASSERT_TRUE(found.reading.contents) << "depth costs only the part that is deep";
            EXPECT_THAT(found.reading.leftOut,
                        testing::ElementsAre("The site in use could not be read and is left out."));
            continue;
        }
        EXPECT_FALSE(found.reading.contents) << words;
        EXPECT_THAT(found.reading.fault, testing::HasSubstr(words));
        EXPECT_THAT(found.reading.fault, testing::StartsWith("\"a.zenka-rig\" "));
    }
    std::string many = "0";
    for (int i = 0; i < 600'000; ++i)
        many += ",0";
    EXPECT_FALSE(
        read(field, R"({"format": "zenka rig", "version": 1, "x": [)" + many + "]}").reading.contents);
    EXPECT_FALSE(field.model.transfer().apply(read(field, "{}"), everything));
    field.files.contents.erase(file);
    rig::RigTransfer::Found gone;
    field.model.transfer().read(file, [&](const auto& each) { gone = each; });
    field.run(1);
    EXPECT_THAT(gone.reading.fault, testing::HasSubstr("cannot be read"));
    field.files.broken = true;
    std::string fault;
    field.model.transfer().exportTo(file, [&](const std::string& words) { fault = words; });
    field.run(1);
    EXPECT_THAT(fault, testing::HasSubstr("could not be written"));
}

} // namespace

} // namespace zenka::test
