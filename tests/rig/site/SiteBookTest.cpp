#include "rig/shared/SettingsKeys.h"
#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;
using test::VirtualRig;

namespace {

std::filesystem::path sitesFile(const VirtualRig& rig) {
    return rig.folders.applicationSupport() / "sites.json";
}

} // namespace

TEST(SiteBook, beginsWithThreeSitesAndKeepsWhatIsAdded) {
    VirtualRig rig;
    rig.model.sites().restore();
    ASSERT_EQ(rig.model.sites().savedSites().get().size(), 3U);
    rig.model.sites().saveCurrentSite("My \"hill\", by the road");
    rig.run(0.1);

    VirtualRig next;
    next.files.contents = rig.files.contents;
    next.model.sites().restore();
    ASSERT_EQ(next.model.sites().savedSites().get().size(), 4U);
    const auto added = next.model.sites().savedSites().get().back();
    EXPECT_EQ(added.name, "My \"hill\", by the road");
    next.model.sites().setDefaultSite(added.id);
    next.model.sites().deleteSite(added.id);
    EXPECT_EQ(next.model.sites().savedSites().get().size(), 3U);
    EXPECT_FALSE(next.model.sites().defaultSiteId()) << "a default that is gone is none";
}

TEST(SiteBook, aDamagedFileIsKeptAsideAndToldOf) {
    VirtualRig rig;
    rig.files.contents[sitesFile(rig)] = "[{\"id\": 7}]";
    rig.model.sites().restore();
    rig.run(0.1);
    EXPECT_EQ(rig.model.sites().savedSites().get().size(), 3U);
    EXPECT_EQ(rig.files.contents[sitesFile(rig).string() + ".damaged"], "[{\"id\": 7}]");
    EXPECT_TRUE(rig.logged("⚠️ The saved sites could not be read."));
}

TEST(SiteBook, theDefaultSiteStandsWhereTheEclipseHasNoneOfItsOwn) {
    VirtualRig rig;
    rig.model.sites().restore();
    rig.run(0.1);
    const auto valencia = rig.model.sites().savedSites().get()[1];
    rig.model.sites().setDefaultSite(valencia.id);
    rig.model.bootstrap();
    EXPECT_EQ(rig.model.site().site().label, "Valencia, ES");
    EXPECT_TRUE(rig.model.site().locationConfirmed().get());
    rig.model.site().setSite(
        {.lat = 43.36, .lon = -8.41, .elev = 20, .label = "A Coruña", .tzId = "Europe/Madrid"});
    rig.model.bootstrap();
    EXPECT_EQ(rig.model.site().site().label, "A Coruña") << "the eclipse's own site goes first";
}

TEST(SiteBook, aPointOnLandGetsItsZoneAndNameAndOneAtSeaAnEstimate) {
    VirtualRig rig;
    rig.model.site().setSite({.lat = 10, .lon = 10, .elev = 5, .label = "x", .tzId = "UTC"});
    rig.model.sites().moveTo(41.6, -0.9, std::nullopt, false);
    EXPECT_EQ(rig.model.site().site().tzId, "Europe/Madrid");
    EXPECT_EQ(rig.model.site().site().label, "Zaragoza, ES");
    EXPECT_EQ(rig.model.site().site().elev, 5);
    EXPECT_TRUE(rig.logged("Time zone set from the new location: Europe/Madrid"));

    const std::pair<double, const char*> estimates[] = {
        {-97, "Etc/GMT+6"}, {-30, "Etc/GMT+2"}, {-179, "Etc/GMT+12"}};
    for (const auto& [lon, zone] : estimates) {
        rig.model.sites().moveTo(30, lon, 0, false);
        EXPECT_EQ(rig.model.site().site().tzId, zone);
        EXPECT_TRUE(rig.logged(std::string("⚠️ Time zone ESTIMATED from longitude as ") + zone + "."));
    }
    rig.model.sites().setLocationFromGPS(41.65, -0.88, 210.4);
    EXPECT_TRUE(rig.logged("Location set from GPS: 41.65000, -0.88000, 210 m"));
    EXPECT_TRUE(rig.model.site().locationConfirmed().get());
}
