#include "services/GlanceDesk.h"

#include "services/GlancePage.h"
#include "support/ToldPages.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>

namespace zenka::services {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Reach = GlanceDesk::Reach;

namespace {

struct GlanceDeskTest : testing::Test {
    test::VirtualRig rig;
    test::ToldPages pages;
    GlanceDesk desk{rig.machine.all, pages, rig.model};
};

TEST_F(GlanceDeskTest, itIsOffUntilItIsWantedAndKeepsItsAddressOverARestart) {
    desk.start();
    EXPECT_FALSE(pages.listening);
    desk.setReach(Reach::localNetwork);
    EXPECT_TRUE(pages.wanted.wholeNetwork);
    ASSERT_EQ(desk.addresses()->size(), 1U);
    const std::string address = desk.addresses()->front();
    EXPECT_THAT(address, testing::MatchesRegex("http://192\\.168\\.1\\.20:[0-9]+/[a-z2-9]+"));
    EXPECT_GE(pages.wanted.secret.size(), 20U);

    GlanceDesk next(rig.machine.all, pages, rig.model);
    next.start();
    EXPECT_THAT(next.addresses().get(), ElementsAre(address));
    next.renewAddress();
    EXPECT_THAT(next.addresses().get(), Not(ElementsAre(address)));
    next.setReach(Reach::off);
    EXPECT_FALSE(pages.listening);
    EXPECT_THAT(next.addresses().get(), IsEmpty());
    const int told = pages.published;
    rig.run(5);
    EXPECT_EQ(pages.published, told + 5) << "the first desk's alone";
}

TEST_F(GlanceDeskTest, whatCannotBeShownIsSaid) {
    pages.fault = "Address already in use";
    desk.setReach(Reach::thisComputer);
    EXPECT_EQ(desk.fault().get(), "The page cannot be shown: Address already in use.");
    pages.fault.clear();
    pages.network.clear();
    desk.setReach(Reach::localNetwork);
    EXPECT_THAT(desk.fault().get(), HasSubstr("in no local network"));
    desk.setReach(Reach::off);
    EXPECT_EQ(desk.fault().get(), "");
}

TEST_F(GlanceDeskTest, aRunIsSeenAsItIsAndAFrameThatIsNearGoesFirst) {
    rig.addBody("CAM1 <b>");
    const double c2 = rig.model.site().contactTHours().at("C2") * 3600;
    rig.load(rig.frameAt(c2 - 20, "CAM1 <b>") + rig.frameAt(c2 - 18.95, "CAM1 <b>") +
             rig.frameAt(c2 + 5, "CAM1 <b>"));
    desk.setReach(Reach::thisComputer);
    rig.playFrom(c2 - 30);
    rig.run(13);
    EXPECT_THAT(pages.page, HasSubstr("SIMULATED"));
    EXPECT_THAT(pages.page, HasSubstr(">C2 in<"));
    EXPECT_THAT(pages.page, HasSubstr("CAM1 &lt;b&gt;"));
    EXPECT_THAT(pages.page, HasSubstr("<td class=\"n\">2</td>"));
    EXPECT_THAT(pages.page, HasSubstr("next: CAM1 &lt;b&gt;  MAX −37s"));
    EXPECT_THAT(pages.page, Not(HasSubstr("41.65"))) << "nobody is told where the site is";
    EXPECT_THAT(pages.page, Not(HasSubstr("Zaragoza")));

    rig.model.transport().togglePlay();
    // Frames that are always near hold the page up for seconds, not for ever.
    std::string dense;
    for (int i = 0; i < 300; ++i)
        dense += rig.frameAt(c2 + 10 + i * 0.05, "CAM9");
    rig.load(dense);
    rig.playFrom(c2 + 10);
    const int told = pages.published;
    rig.run(12);
    EXPECT_GE(pages.published, told + 3);
    EXPECT_LT(pages.published, told + 6);
}

} // namespace
} // namespace zenka::services
