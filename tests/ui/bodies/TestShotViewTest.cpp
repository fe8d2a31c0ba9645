#include "ui/bodies/TestShotView.h"

#include "exposure/ExposureScales.h"
#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;
using ui::ExposureFields::Field;
using ui::ExposureFields::nudged;
using ui::ExposureFields::read;
using ui::ExposureFields::textOf;

TEST(ExposureFields, readWhatPeopleTypeAndPasteAndTellTheRest) {
    for (const Field field : ui::ExposureFields::all) {
        for (const char* own : {"", "  ", "-", "auto", "AUTO"})
            EXPECT_EQ(read(field, own), (ui::ExposureFields::Reading{})) << own;
        for (const char* bad : {"x", "1e999", "nan", "inf", "-3", "0", "1/0", "99999999999", "8 8"}) {
            EXPECT_NE(read(field, bad).fault, "") << bad;
            EXPECT_EQ(read(field, bad).value, 0) << bad;
        }
    }
    EXPECT_EQ(read(Field::iso, "ISO 100").value, 100);
    EXPECT_NE(read(Field::iso, "100.5").fault, "");
    EXPECT_EQ(read(Field::aperture, "f/5,6").value, 5.6);
    EXPECT_EQ(read(Field::aperture, "F8").value, 8);
    EXPECT_EQ(read(Field::shutter, " 1/500 s").value, 0.002);
    EXPECT_EQ(read(Field::shutter, "0,5").value, 0.5);
    EXPECT_TRUE(read(Field::shutter, "bulb 4").fault.starts_with("Bulb is for scripts."));
}

TEST(ExposureFields, aSettingReadsBackAsItIsWritten) {
    double worst = 0;
    for (const std::string_view text : exposure::standardShutters()) {
        const double seconds = exposure::shutterSeconds(text);
        const double back = read(Field::shutter, textOf(Field::shutter, {.shutterSec = seconds})).value;
        worst = std::max(worst, std::abs(back / seconds - 1));
    }
    EXPECT_LT(worst, 1e-12) << "largest relative error, ceiling 1e-12";
    EXPECT_EQ(textOf(Field::shutter, {.shutterSec = 12.5}), "12.5");
    EXPECT_EQ(textOf(Field::aperture, {.aperture = 5.6}), "5.6");
    EXPECT_EQ(textOf(Field::shutter, {.shutterSec = 4, .bulb = true}), "");
}

TEST(ExposureFields, arrowsGoFromOneStandardValueToTheNextAndStopAtTheEnds) {
    EXPECT_EQ(nudged(Field::iso, "100", 3), "200");
    EXPECT_EQ(nudged(Field::iso, "50", -1), "50");
    EXPECT_EQ(nudged(Field::aperture, "8", -1), "7.1");
    EXPECT_EQ(nudged(Field::shutter, "1/490", 1), "1/400");
    EXPECT_EQ(nudged(Field::shutter, "60", 1), "60");
    EXPECT_EQ(nudged(Field::shutter, "", 1), "1/1000");
}

namespace {

struct TestShotView : testing::Test {
    test::VirtualRig rig;
    ui::TestShotView view{rig.model, nullptr};

    std::string texts() const {
        return (view.iso() + u'|' + view.aperture() + u'|' + view.shutter()).toStdString();
    }
};

} // namespace

TEST_F(TestShotView, beginsWithTheNextFrameOfTheScriptElseWithWhatWasTypedLast) {
    view.open();
    EXPECT_FALSE(view.hasBody());
    EXPECT_TRUE(view.bodyFacts().startsWith(QStringLiteral("There is no body to test.")));
    view.typeIso(QStringLiteral("800"));
    view.fire();
    EXPECT_TRUE(rig.lines.empty());

    rig.load(rig.frameAt(rig.model.transport().clock() + 100, "CAM1"));
    const auto first = rig.addBody("CAM1");
    rig.addBody("CAM2");
    view.open();
    EXPECT_EQ(view.bodyName(), "CAM1");
    EXPECT_EQ(texts(), "200|8|1/500");
    EXPECT_TRUE(view.origin().startsWith(QStringLiteral("As its next frame in the script, MAX ")));
    view.nextBody();
    EXPECT_EQ(view.bodyName(), "CAM2");
    EXPECT_EQ(texts(), "||") << "the script has nothing for it, and nothing was typed";
    view.nextBody();

    view.typeShutter(QStringLiteral("1/60"));
    EXPECT_FALSE(view.scriptOffer().isEmpty());
    view.open();
    EXPECT_EQ(texts(), "200|8|1/60") << "typed and not fired yet";
    view.nextBody();
    EXPECT_EQ(texts(), "200|8|1/60") << "as typed last";
    view.nextBody();
    view.fire();
    ASSERT_EQ(first->shots.size(), 1U);
    EXPECT_EQ(first->shots[0].iso, 200);
    EXPECT_NEAR(first->shots[0].shutterSec, 1.0 / 60, 1e-12);
    EXPECT_EQ(texts(), "200|8|1/60") << "to be fired again";
    view.open();
    EXPECT_EQ(texts(), "200|8|1/500");
    EXPECT_TRUE(view.scriptOffer().isEmpty());
}

TEST_F(TestShotView, faultsAreToldWhenTheTypingIsOverAndNothingIsFired) {
    const auto body = rig.addBody("CAM1");
    view.open();
    view.typeAperture(QStringLiteral("f"));
    EXPECT_EQ(view.apertureFault(), "");
    view.fire();
    EXPECT_TRUE(view.apertureFault().startsWith(QStringLiteral("This is no aperture.")));
    EXPECT_TRUE(body->shots.empty());
    view.typeAperture(QStringLiteral("f/4"));
    EXPECT_EQ(view.apertureFault(), "") << "as soon as it is mended";
    view.fire();
    ASSERT_EQ(body->shots.size(), 1U);
    EXPECT_EQ(body->shots[0].aperture, 4);
    EXPECT_EQ(body->shots[0].iso, 0) << "an empty field leaves the body's own";
}

TEST_F(TestShotView, tellsHowAShotGoesAndWhatCameOfItForABodyThatGetsAnotherDriverToo) {
    const auto body = rig.addBody("CAM1");
    body->holdCompletions = true;
    body->outcomes = {{.ok = true, .latencyMs = 212.4, .sentShutter = "shutterspeed=1/500"}};
    view.open();
    view.typeIso(QStringLiteral("100"));
    view.fire();
    EXPECT_TRUE(view.firing());
    EXPECT_EQ(view.progress(), "Firing…");
    EXPECT_EQ(view.resultText(), "");
    body->complete();
    EXPECT_FALSE(view.firing());
    EXPECT_EQ(view.resultText(), "✓ 212 ms");
    EXPECT_EQ(view.resultDetail(), "Asked: ISO 100 f/auto auto · shutter sent: 1/500");

    view.typeIso(QStringLiteral("400"));
    const auto again = std::make_shared<test::ScriptedCamera>("another-id");
    again->serialNumber = body->serialNumber;
    rig.model.roster().replace(body->id(), again);
    EXPECT_EQ(texts(), "400||");
    again->outcomes = {{.ok = false, .note = "*** Error (-53: 'Could not claim')", .responded = true}};
    view.fire();
    EXPECT_EQ(again->shots.size(), 1U);
    EXPECT_EQ(view.resultText(), "✖ another app has the camera");
    EXPECT_EQ(view.resultDetail(),
              "Asked: ISO 400 f/auto auto · the driver said: *** Error (-53: 'Could not claim')");
}
