#include "Sites.h"
#include "base/CivilTime.h"
#include "script/MagnitudeSearch.h"

#include <gmock/gmock.h>

#include <iostream>

namespace zenka::script {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

double offsetOf(const Site& site, const std::string& reference) {
    const CompiledScript script = site.compile({"TAKEPIC," + reference + ",+,0,CAM1"});
    EXPECT_THAT(script.diagnostics, IsEmpty()) << reference;
    return script.captures.empty() ? NAN : script.captures[0].offsetSec;
}

/// The universal time that a reference gives.
std::string clockOf(const Site& site, const std::string& reference) {
    return base::formatTime("%Y-%m-%d %H:%M:%E3S", site.context.eclipse.utc(offsetOf(site, reference) / 3600),
                            absl::UTCTimeZone());
}

TEST(References, contactsHaveTwoNames) {
    for (const char* digit : {"1", "2", "3", "4"}) {
        const double contact = carbondale().contact(std::string("C") + digit);
        EXPECT_EQ(offsetOf(carbondale(), std::string("c") + digit), contact);
        EXPECT_EQ(offsetOf(carbondale(), std::string("u") + digit), contact);
    }
    EXPECT_EQ(offsetOf(carbondale(), "max"), carbondale().contact("MAX"));
}

TEST(References, aMagnitudeIsFoundWhereTheGeometryHasIt) {
    double worst = 0;
    for (const char* reference :
         {"MAGPRE 0.1", "MAGPRE 50", "MAGPRE 99.9", "MAGPRE 100", "MAGPOST 99.5", "MAGPOST 1"}) {
        const double offset = offsetOf(carbondale(), reference);
        const double wanted = std::stod(std::string(reference).substr(7)) / 100;
        const auto geom = carbondale().context.eclipse.geometry(offset / 3600, carbondale().context.observer);
        worst = std::max(worst, std::abs(eclipse::magnitude(geom) - wanted));
        const bool before = std::string_view(reference).starts_with("MAGPRE");
        EXPECT_EQ(offset < carbondale().contact("MAX"), before) << reference;
    }
    std::cout << "largest error of a magnitude " << worst << ", ceiling 1e-7\n";
    EXPECT_LT(worst, 1e-7);
    EXPECT_EQ(offsetOf(carbondale(), "MAGPRE 50"),
              carbondale().compile({"TAKEPIC,MAGPRE,50,+,0,CAM1"}).captures.at(0).offsetSec);
}

TEST(References, keptMagnitudesDoNotChangeTheBisection) {
    const CompileContext& context = carbondale().context;
    const double lo0 = context.contactTHours.at("C1");
    const double hi0 = context.contactTHours.at("MAX");
    const auto value = [&](double t, double target) {
        return eclipse::magnitude(context.eclipse.geometry(t, context.observer)) - target;
    };
    const auto plain = [&](double target) -> double {
        double lo = lo0, hi = hi0, atLo = value(lo, target);
        for (int round = 0; round < 80; ++round) {
            const double mid = (lo + hi) / 2, atMid = value(mid, target);
            if (std::abs(atMid) < 1e-7 || hi - lo < 1e-9)
                return mid;
            if ((atMid >= 0) == (atLo >= 0)) {
                lo = mid;
                atLo = atMid;
            } else {
                hi = mid;
            }
        }
        return (lo + hi) / 2;
    };
    MagnitudeSearch search(context.eclipse, context.observer, lo0, hi0);
    for (int i = 1; i < 2000; ++i) {
        const double target = (i * 7919 % 2000) / 2000.0; // out of order, so that what is kept gets used
        ASSERT_EQ(search.find(target), plain(target)) << target;
    }
    EXPECT_EQ(search.find(0), std::nullopt);
    EXPECT_EQ(search.find(1.2), std::nullopt);
}

TEST(References, sunriseIsBeforeMaximumAndSunsetAfter) {
    double worst = 0;
    for (const Site* site : {&carbondale(), &paris()}) {
        const double rise = offsetOf(*site, "SUNRISE");
        const double set = offsetOf(*site, "sunset");
        EXPECT_LT(rise, site->contact("MAX"));
        EXPECT_GT(set, site->contact("MAX"));
        EXPECT_LT(site->sunAltDeg(rise - 60), 0);
        EXPECT_GT(site->sunAltDeg(set - 60), 0);
        worst = std::max({worst, std::abs(site->sunAltDeg(rise)), std::abs(site->sunAltDeg(set))});
    }
    std::cout << "largest altitude at a horizon crossing " << worst << " degrees, ceiling 1e-6\n";
    EXPECT_LT(worst, 1e-6);
    // A maximum in the night looks backward for the last rising of the dark all the same.
    const Site night("2026-08-12", {-30, -170, 0}, "UTC");
    EXPECT_LT(offsetOf(night, "SUNRISE"), night.contact("MAX"));
}

TEST(References, clockTimesAreOfTheEclipseDayAtTheSite) {
    EXPECT_EQ(clockOf(carbondale(), "A 18:32"), "2024-04-08 18:32:00.000");
    EXPECT_EQ(clockOf(carbondale(), "a 18:32:05.7"), "2024-04-08 18:32:00.000"); // seconds are whole
    EXPECT_EQ(clockOf(carbondale(), "A 18:32:05"), "2024-04-08 18:32:05.000");
    EXPECT_EQ(clockOf(carbondale(), "L 13:32:05"), "2024-04-08 18:32:05.000");
    EXPECT_EQ(clockOf(carbondale(), "13:32:05"), "2024-04-08 18:32:05.000");
    EXPECT_EQ(clockOf(carbondale(), "A 2024-04-09 00:01"), "2024-04-09 00:01:00.000");
    EXPECT_EQ(clockOf(carbondale(), "A 2024-xx-09 00:01"), "2024-04-08 00:01:00.000"); // no date
    EXPECT_EQ(clockOf(carbondale(), "A 25:00"), "2024-04-09 01:00:00.000");
    const Site india("2034-03-20", {34.16, 77.58, 3500}, "Asia/Kolkata");
    EXPECT_EQ(clockOf(india, "L 16:00"), "2034-03-20 10:30:00.000");
    // The day is the local one where it differs from the elements' day.
    const Site honolulu("2035-09-02", {21.3, -157.9, 0}, "Pacific/Honolulu");
    EXPECT_EQ(clockOf(honolulu, "A 08:00"), "2035-09-02 08:00:00.000");
    EXPECT_EQ(clockOf(honolulu, "L 08:00"), "2035-09-01 18:00:00.000");
    const Site nowhere("2024-04-08", {37.7273, -89.2168, 121}, "Mars/Olympus");
    EXPECT_EQ(clockOf(nowhere, "L 18:32"), "2024-04-08 18:32:00.000");
}

TEST(References, aContextWithoutContactsStillCompiles) {
    CompileContext bare{carbondale().context.eclipse, carbondale().context.observer, {}, "UTC"};
    const CompiledScript script = ZenkaScript::compile(
        "TAKEPIC,LAST,+,5,CAM1\nTAKEPIC,MAGPOST 50,+,0,CAM1\nTAKEPIC,SUNSET,+,0,CAM1\nTAKEPIC,MAX,+,0,CAM1\n",
        bare);
    ASSERT_THAT(script.captures, SizeIs(2)); // at 0 the eclipse comes only in: nothing on the way out
    EXPECT_EQ(script.captures[0].offsetSec, 5);
    EXPECT_THAT(script.diagnostics, SizeIs(3));
}

} // namespace
} // namespace zenka::script
