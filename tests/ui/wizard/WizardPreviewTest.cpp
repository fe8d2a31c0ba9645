#include "ui/wizard/WizardPreview.h"

#include "support/VirtualRig.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace zenka;
using namespace zenka::ui;
using script::WizardChoices;

namespace {

struct WizardPreviewOf : testing::Test {
    test::VirtualRig rig;
    WizardRequest request;

    void SetUp() override {
        rig.model.bootstrap();
        standAt(41.65, -0.88);
        request.plans = {WizardChoices{}};
    }
    void standAt(double lat, double lon) {
        rig::Site site = rig.model.site().site();
        site.lat = lat;
        site.lon = lon;
        site.label = "Here";
        rig.model.site().setSite(site);
        rig.model.recompute();
        request.site = wizardSite(rig.model.site());
    }
    WizardChoices& plan() { return request.plans.front(); }
    static bool says(const WizardPreview& preview, const char* words) {
        return std::ranges::any_of(preview.remarks, [&](const WizardRemark& remark) {
            return remark.text.find(words) != remark.text.npos;
        });
    }
    static std::string all(const WizardPreview& preview) {
        std::string text;
        for (const WizardRemark& remark : preview.remarks)
            text += remark.text + "\n";
        return text;
    }
};

} // namespace

TEST_F(WizardPreviewOf, countsTheFramesOfEachCameraAndWhatTheyTakeOfTotality) {
    plan().cameras = {"CAM1", "CAM2"};
    plan().earthshine = plan().prominences = plan().beads = plan().diamondRings = false;
    const WizardPreview preview = wizardPreview(request);
    ASSERT_EQ(preview.cameras.size(), 2U);
    EXPECT_EQ(preview.cameras[0].frames + preview.cameras[1].frames, preview.frames);
    EXPECT_EQ(preview.cues, 6);
    ASSERT_EQ(preview.lanes.size(), 3U) << "and one for the cues";
    EXPECT_EQ(preview.lanes[0].offsets.size(), static_cast<std::size_t>(preview.cameras[0].frames));
    // Sets of 7 frames of 0.127 s in all with a second behind each fill totality but for gaps and margins.
    const WizardCamera& camera = preview.cameras[0];
    EXPECT_EQ(camera.framesInTotality % 7, 0) << "whole sets";
    EXPECT_NEAR(camera.usedSec, camera.framesInTotality * (1 + 0.127 / 7), 0.5);
    EXPECT_LT(camera.usedSec, request.site.totalitySec);
    plan().coronaSetGap = 30;
    EXPECT_LT(wizardPreview(request).cameras[0].usedSec, camera.usedSec);
}

TEST_F(WizardPreviewOf, theShutterThatAGaugeSuggestsIsOnTarget) {
    plan().tracking = true;
    const WizardGauges before = wizardPreview(request).cameras.at(0).gauges;
    plan().diamondShutter = before.singles[0].verdict.suggestedShutter;
    plan().beadsShutter = before.singles[1].verdict.suggestedShutter;
    plan().promShutter = before.singles[2].verdict.suggestedShutter;
    plan().earthshineShutter = before.singles[3].verdict.suggestedShutter;
    EXPECT_NE(before.singles[0].verdict.level, script::EspenakGuide::Level::good);
    const WizardGauges after = wizardPreview(request).cameras.at(0).gauges;
    for (const WizardGauge& gauge : after.singles)
        EXPECT_EQ(gauge.verdict.text, "On target") << gauge.name;
    plan().tracking = false;
    plan().maxShutter = "1/4";
    EXPECT_EQ(wizardPreview(request).cameras.at(0).gauges.singles[3].verdict.text,
              "No frame: all are longer than the longest shutter, 1/4");
}

TEST_F(WizardPreviewOf, whatTheScriptCannotDoIsSaidAndWhoseItIs) {
    request.plans = {WizardChoices{.camera = "CAM1"}, WizardChoices{.camera = "CAM2"}};
    request.plans[0].minShotGap = 100;
    request.plans[0].minShotGapSame = 60;
    request.plans[1].filter = WizardChoices::Filter::none;
    WizardPreview preview = wizardPreview(request);
    EXPECT_TRUE(says(preview, "CAM1: Spacing: 100 cannot be used, 60 is taken.")) << all(preview);
    EXPECT_TRUE(says(preview, "CAM1: The cadence is wider than asked for")) << "though it says so twice\n"
                                                                            << all(preview);
    EXPECT_TRUE(says(preview, "CAM2: Partials requested but no filter selected")) << all(preview);
    request.plans[0] = request.plans[1];
    request.plans[0].camera = "CAM1";
    preview = wizardPreview(request);
    EXPECT_FALSE(says(preview, "CAM2: Partials requested")) << "both have it\n" << all(preview);
    EXPECT_TRUE(says(preview, "Partials requested")) << all(preview);
}

TEST_F(WizardPreviewOf, issuesOfTheCapturesJoinTheRemarksWithErrorsFirst) {
    plan().tracking = true;
    plan().coronaFastest = "1";
    plan().coronaBracketVar = script::BracketVar::iso;
    plan().minShotGap = 0.5;
    const auto tight = [&] { return says(wizardPreview(request), "drop floor"); };
    EXPECT_FALSE(tight()) << "nothing is known of a body that is not there";
    request.bodies["CAM1"] = {{.name = "CAM1", .driver = "gphoto2"}};
    plan().partialCadence = WizardChoices::PartialCadence::interval;
    plan().partialIntervalSec = 1;
    EXPECT_TRUE(tight());
    WizardPreview preview = wizardPreview(request);
    EXPECT_LT(preview.remarks.size(), 30U) << "what many pairs come to is one";
    EXPECT_TRUE(std::ranges::is_sorted(preview.remarks, {}, &WizardRemark::kind));
}

TEST_F(WizardPreviewOf, noScriptIsEmptyWithoutAReason) {
    request.plans.clear();
    EXPECT_TRUE(says(wizardPreview(request), "No camera is chosen"));

    request.plans = {WizardChoices{}};
    standAt(48.85, 2.35); // partial
    ASSERT_EQ(request.site.central, WizardForm::Central::none);
    EXPECT_GT(wizardPreview(request).frames, 0);
    plan().filter = WizardChoices::Filter::none;
    EXPECT_TRUE(says(wizardPreview(request), "Choose a filter."));
    plan() = {.partials = false};
    EXPECT_TRUE(says(wizardPreview(request), "the partial phases are not ticked"));

    plan() = {};
    standAt(-33.9, 151.2); // the other side of the Earth
    ASSERT_FALSE(request.site.seen);
    const WizardPreview unseen = wizardPreview(request);
    ASSERT_FALSE(unseen.remarks.empty());
    EXPECT_NE(unseen.remarks.front().text.find("Choose another site"), std::string::npos) << all(unseen);
}

TEST_F(WizardPreviewOf, atATotalityOfSecondsTheCoronaIsLeftOutInWords) {
    // Towards the southern limit of the path.
    double inside = 41.65;
    double outside = 36;
    for (int i = 0;
         i < 60 && !(request.site.central == WizardForm::Central::total && request.site.totalitySec < 4);
         ++i) {
        const double middle = (inside + outside) / 2;
        standAt(middle, -0.88);
        (request.site.central == WizardForm::Central::total ? inside : outside) = middle;
    }
    ASSERT_EQ(request.site.central, WizardForm::Central::total);
    ASSERT_LT(request.site.totalitySec, 4);
    EXPECT_GT(request.site.totalitySec, 0);
    const WizardPreview preview = wizardPreview(request);
    EXPECT_TRUE(says(preview, "Corona omitted: a set takes")) << all(preview);
    EXPECT_EQ(preview.cameras.at(0).gauges.corona.covered, 0);
    EXPECT_GT(preview.frames, 0) << "the partial phases stay";
}
