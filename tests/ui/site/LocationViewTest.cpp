#include "ui/site/LocationView.h"

#include "painting/EclipseTrack.h"
#include "support/VirtualRig.h"

#include <gtest/gtest.h>

#include <memory>

namespace zenka::ui {
namespace {

class LocationViewTest : public testing::Test {
protected:
    LocationViewTest() {
        rig.model.bootstrap();
        view = std::make_unique<LocationView>(rig.model, rig.machine.all, nullptr);
        view->open();
    }
    const rig::Site& site() { return rig.model.site().site(); }
    QString savedId(int row) { return view->savedSites()[row].toMap()["siteId"].toString(); }

    test::VirtualRig rig;
    std::unique_ptr<LocationView> view;
};

TEST_F(LocationViewTest, whatIsTypedBecomesTheSiteOnlyWhenItIsUsed) {
    const rig::Site before = site();
    view->typeLatitude("40°30'0\"N");
    view->typeLongitude("W 3,25");
    view->typeElevation("850 m");
    view->typeLabel("Our field");
    EXPECT_EQ(site(), before);
    EXPECT_TRUE(view->edited());

    rig.model.site().confirmLocation(false);
    ASSERT_TRUE(view->apply());
    EXPECT_EQ(
        site(),
        (rig::Site{.lat = 40.5, .lon = -3.25, .elev = 850, .label = "Our field", .tzId = "Europe/Madrid"}));
    EXPECT_TRUE(rig.model.site().locationConfirmed().get());
    EXPECT_FALSE(view->edited());
    const auto fresh = rig.model.site().eclipse().localCircumstances(rig.model.site().observer());
    EXPECT_EQ(rig.model.site().circ()->totalitySeconds, fresh.totalitySeconds);
}

TEST_F(LocationViewTest, aFaultIsToldBesideItsFieldAndChangesNothing) {
    const rig::Site before = site();
    const auto faultOf = [&](auto type, auto fault, const char* text) {
        (view.get()->*type)(text);
        view->check();
        return (view.get()->*fault)();
    };
    for (const char* text : {"", "N", "ninety", "91", "-90.01", "3 W", "41.65, west"})
        EXPECT_NE(faultOf(&LocationView::typeLatitude, &LocationView::latFault, text), QString()) << text;
    for (const char* text : {"", "E", "181", "-180.5", "40 N"})
        EXPECT_NE(faultOf(&LocationView::typeLongitude, &LocationView::lonFault, text), QString()) << text;
    for (const char* text : {"", "high", "-501", "1e9", "nan"})
        EXPECT_NE(faultOf(&LocationView::typeElevation, &LocationView::elevFault, text), QString()) << text;
    for (const char* text : {"Madrid", "Europe/Nowhere", "../../etc/localtime"})
        EXPECT_NE(faultOf(&LocationView::typeZone, &LocationView::zoneFault, text), QString()) << text;
    EXPECT_FALSE(view->apply());
    EXPECT_EQ(site(), before);
    EXPECT_EQ(view->latText(), "41.65, west") << "what was typed stays to be mended";

    view->typeLatitude("41.65");
    EXPECT_EQ(view->latFault(), QString()) << "gone as soon as it can be read";
    view->reset();
    EXPECT_TRUE(view->apply());
    EXPECT_EQ(site(), before);
}

TEST_F(LocationViewTest, aHalfTypedTextIsNotBlamed) {
    view->typeLatitude("-");
    EXPECT_EQ(view->latFault(), QString());
    view->check();
    EXPECT_NE(view->latFault(), QString());
}

TEST_F(LocationViewTest, numbersAreNudgedWithinTheirRange) {
    view->typeLatitude("89.9995");
    view->nudgeLatitude(1);
    EXPECT_EQ(view->latText(), "90");
    view->typeLongitude("179.9995");
    view->nudgeLongitude(1);
    EXPECT_EQ(view->lonText(), "-179.9995") << "around the date line";
    view->typeElevation("12.5");
    view->nudgeElevation(-10);
    EXPECT_EQ(view->elevText(), "2.5");
}

TEST_F(LocationViewTest, aPastedPairFillsBothFields) {
    for (const char* pair : {"40.5, -3.25", "40.5,  −3.25", "40°30′0″ N, 3°15′0″ W", "40.5;-3.25"}) {
        view->reset();
        view->typeLatitude(QString::fromUtf8(pair));
        EXPECT_NEAR(view->draftPoint().lat, 40.5, 1e-9) << pair;
        EXPECT_NEAR(view->draftPoint().lon, -3.25, 1e-9) << pair;
        EXPECT_EQ(view->lonText(), "-3.25") << pair;
    }
    view->typeLatitude("40,5"); // a decimal comma is no pair
    EXPECT_EQ(view->draftPoint().lat, 40.5);
    EXPECT_EQ(view->lonText(), "-3.25");
}

TEST_F(LocationViewTest, theZoneFollowsThePointUntilItIsTyped) {
    view->typeZone("");
    view->typeLongitude("-20"); // at sea
    view->check();
    EXPECT_EQ(view->zone(), QString());
    ASSERT_TRUE(view->apply());
    EXPECT_EQ(site().tzId, "Etc/GMT+1");
    EXPECT_TRUE(rig.logged("ESTIMATED"));

    view->typeLongitude("-1");
    EXPECT_EQ(view->zone(), "Europe/Madrid");
    view->typeZone("Atlantic/Canary");
    view->typeLongitude("-2");
    ASSERT_TRUE(view->apply());
    EXPECT_EQ(site().tzId, "Atlantic/Canary");
}

TEST_F(LocationViewTest, aFoundPlaceIsTakenWithItsZone) {
    view->takePoint({.lat = 30, .lon = -40}, 2);
    view->search("zara");
    ASSERT_EQ(view->results().size(), 1);
    view->takeResult(1);
    EXPECT_EQ(view->latText(), "30");
    view->takeResult(0);
    ASSERT_TRUE(view->apply());
    EXPECT_EQ(site().label, "Zaragoza, ES");
    EXPECT_EQ(site().lat, 41.65);
    EXPECT_EQ(site().tzId, "Europe/Madrid");
}

TEST_F(LocationViewTest, savedSitesAreTakenSavedAndDeletedWithAWayBack) {
    const int seeds = static_cast<int>(view->savedSites().size());
    ASSERT_EQ(seeds, 3);
    view->takeSaved(savedId(2));
    EXPECT_EQ(site().label, "Zaragoza, ES") << "not before it is used";
    ASSERT_TRUE(view->apply());
    EXPECT_EQ(site().label, "Reykjavík, IS");
    EXPECT_EQ(site().tzId, "Atlantic/Reykjavik");

    view->typeLatitude("64.5");
    EXPECT_FALSE(view->saveAs("  "));
    EXPECT_FALSE(view->saveAs("Valencia, ES")) << "there is one of this name";
    EXPECT_FALSE(view->saveAs("Glacier")) << "no zone is known there";
    view->typeZone("Atlantic/Reykjavik");
    ASSERT_TRUE(view->saveAs("Glacier")) << view->saveFault().toStdString();
    const auto& saved = rig.model.sites().savedSites().get();
    ASSERT_EQ(saved.size(), 4u);
    EXPECT_EQ(saved.back().lat, 64.5);

    view->toggleDefault(savedId(3));
    view->deleteSaved(savedId(3));
    EXPECT_EQ(saved.size(), 3u);
    EXPECT_FALSE(rig.model.sites().defaultSiteId());
    view->undoDelete();
    ASSERT_EQ(saved.size(), 4u);
    EXPECT_EQ(saved.back().name, "Glacier");
    EXPECT_EQ(rig.model.sites().defaultSiteId(), saved.back().id);
}

TEST_F(LocationViewTest, greatestDurationIsOfferedOnceItIsKnown) {
    EXPECT_FALSE(view->hasGreatest());
    EXPECT_EQ(view->trackText(), "Computing the path…");
    rig.run(0.1);
    ASSERT_TRUE(view->hasGreatest());
    const rig::Site before = site();
    view->goToGreatest();
    EXPECT_EQ(site(), before);
    ASSERT_TRUE(view->apply());
    EXPECT_EQ(site().label, "Greatest duration");
    EXPECT_NEAR(rig.model.site().circ()->totalitySeconds, view->track()->greatest->seconds, 0.01);
}

TEST_F(LocationViewTest, anotherEclipseHasAnotherPath) {
    rig.run(0.1);
    const painting::EclipseTrack* first = view->track();
    rig.model.site().selectEclipse("2027-08-02");
    EXPECT_EQ(view->track(), nullptr);
    view->open();
    rig.run(0.1);
    ASSERT_TRUE(view->track());
    EXPECT_NE(view->track(), first);
}

TEST_F(LocationViewTest, whatWasTypedOutlivesTheSheetUnlessTheSiteIsMovedElsewhere) {
    view->typeLatitude("40.5");
    view->open();
    EXPECT_EQ(view->latText(), "40.5");
    rig.model.sites().moveTo(43, -5, std::nullopt, true);
    view->open();
    EXPECT_EQ(view->latText(), "43");
}

TEST_F(LocationViewTest, thePickedPointGetsItsHeightUnlessOneWasTypedMeanwhile) {
    view->takePoint({.lat = 41, .lon = -3}, 2);
    view->takePoint({.lat = 42, .lon = -3}, 2);
    EXPECT_NE(view->elevNote(), QString());
    rig.http.answer(200, R"({"elevation": [11]})");
    EXPECT_EQ(view->elevText(), "200") << "the answer for the point before";
    rig.http.answer(200, R"({"elevation": [930]})");
    EXPECT_EQ(view->elevText(), "930");

    view->takePoint({.lat = 43, .lon = -3}, 2);
    view->typeElevation("5");
    rig.http.answer(200, R"({"elevation": [44]})");
    EXPECT_EQ(view->elevText(), "5");

    view->takePoint({.lat = 44, .lon = -3}, 2);
    rig.http.fail("there is no network");
    EXPECT_EQ(view->elevText(), "5");
    EXPECT_TRUE(view->elevNote().contains("did not answer"));

    view->takePoint({.lat = 42, .lon = -2}, 2);
    ASSERT_TRUE(view->apply()) << "nobody has to wait for it";
    while (!rig.http.waiting.empty())
        rig.http.answer(200, R"({"elevation": [77]})");
    EXPECT_EQ(site().elev, 77);
}

TEST_F(LocationViewTest, aClosedProgramIsNotReachedByItsPath) {
    view.reset();
    rig.run(0.1); // the path arrives after its view has gone
}

TEST_F(LocationViewTest, theMapTellsWhatTheEclipseIsUnderThePointer) {
    view->probe({.lat = 41.65, .lon = -0.88}, 2);
    EXPECT_EQ(view->probeText().toStdString(),
              "41.65° N  0.88° W   totality 1 m 23.5 s · C2 20:29:03 CEST · Sun 6° up");
    view->probe({.lat = 48, .lon = 2}, 2);
    EXPECT_TRUE(view->probeText().contains("partial, magnitude 0.9")) << view->probeText().toStdString();
    view->probe({.lat = -40, .lon = 100}, 2);
    EXPECT_TRUE(view->probeText().contains("not seen here")) << view->probeText().toStdString();
}

} // namespace
} // namespace zenka::ui
