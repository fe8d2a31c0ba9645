#include "geo/TimeZoneAreas.h"

#include "geo/Bundled.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace zenka::geo {
namespace {

struct KnownPoint {
    const char* what;
    double lat;
    double lon;
    const char* zone;
};

void expectZones(std::initializer_list<KnownPoint> points) {
    for (const KnownPoint& point : points) {
        EXPECT_EQ(bundledZones().zoneAt(point.lat, point.lon).value_or("nothing"), point.zone) << point.what;
    }
}

TEST(TimeZoneAreas, knowsCapitalsAndLargeCities) {
    expectZones({
        {"Madrid", 40.4168, -3.7038, "Europe/Madrid"},
        {"Zaragoza", 41.65, -0.88, "Europe/Madrid"},
        {"Lisbon", 38.7223, -9.1393, "Europe/Lisbon"},
        {"Reykjavik", 64.146, -21.94, "Atlantic/Reykjavik"},
        {"London", 51.5074, -0.1278, "Europe/London"},
        {"Kyiv", 50.4501, 30.5234, "Europe/Kyiv"},
        {"Cairo", 30.0444, 31.2357, "Africa/Cairo"},
        {"Luxor", 25.6872, 32.6396, "Africa/Cairo"},
        {"Nairobi", -1.2921, 36.8219, "Africa/Nairobi"},
        {"Buenos Aires", -34.6037, -58.3816, "America/Argentina/Buenos_Aires"},
        {"New York", 40.7128, -74.0060, "America/New_York"},
        {"Mazatlan", 23.2494, -106.4111, "America/Mazatlan"},
        {"Carbondale", 37.7273, -89.2168, "America/Chicago"},
        {"Tokyo", 35.6762, 139.6503, "Asia/Tokyo"},
        {"Beijing", 39.9042, 116.4074, "Asia/Shanghai"},
        {"Urumqi has two times, the official one is Beijing's", 43.8256, 87.6168, "Asia/Shanghai"},
        {"Sydney", -33.8688, 151.2093, "Australia/Sydney"},
    });
}

TEST(TimeZoneAreas, knowsZonesThatAreOffByPartsOfAnHour) {
    expectZones({
        {"Tehran", 35.6892, 51.3890, "Asia/Tehran"},
        {"Kabul", 34.5553, 69.2075, "Asia/Kabul"},
        {"Kolkata", 22.5726, 88.3639, "Asia/Kolkata"},
        {"Kathmandu", 27.7172, 85.3240, "Asia/Kathmandu"},
        {"Yangon", 16.8409, 96.1735, "Asia/Yangon"},
        {"Adelaide", -34.9285, 138.6007, "Australia/Adelaide"},
        {"Darwin", -12.4634, 130.8456, "Australia/Darwin"},
        {"Broken Hill", -31.9539, 141.4539, "Australia/Broken_Hill"},
        {"St. John's", 47.5615, -52.7126, "America/St_Johns"},
        {"Eucla", -31.677, 128.885, "Australia/Eucla"},
        {"Chatham Islands", -43.951, -176.561, "Pacific/Chatham"},
        {"Lord Howe Island", -31.5553, 159.0821, "Australia/Lord_Howe"},
        {"Nuku Hiva", -8.9110, -140.0997, "Pacific/Marquesas"},
    });
}

TEST(TimeZoneAreas, tellsTheTwoSidesOfABorderApart) {
    expectZones({
        {"Badajoz", 38.8794, -6.9707, "Europe/Madrid"},
        {"Elvas", 38.8811, -7.1628, "Europe/Lisbon"},
        {"Tui, across the river from Valenca", 42.0472, -8.6444, "Europe/Madrid"},
        {"Valenca", 42.0285, -8.6337, "Europe/Lisbon"},
        {"Raxaul, India", 26.980, 84.850, "Asia/Kolkata"},
        {"Birgunj, Nepal", 27.020, 84.877, "Asia/Kathmandu"},
        {"Llivia, Spanish land within France", 42.464, 1.981, "Europe/Madrid"},
        {"Ceuta", 35.8894, -5.3198, "Africa/Ceuta"},
        {"Busingen, German land within Switzerland", 47.697, 8.690, "Europe/Busingen"},
        {"Kaliningrad", 54.7104, 20.4522, "Europe/Kaliningrad"},
    });
}

TEST(TimeZoneAreas, knowsTheExceptionsOfArizonaAndIndiana) {
    expectZones({
        {"Phoenix", 33.4484, -112.0740, "America/Phoenix"},
        {"Page", 36.9147, -111.4558, "America/Phoenix"},
        {"Window Rock, Navajo Nation", 35.6806, -109.0526, "America/Denver"},
        {"Tuba City, Navajo Nation", 36.1350, -111.2399, "America/Denver"},
        {"Kykotsmovi, Hopi land within", 35.8739, -110.6200, "America/Phoenix"},
        {"Indianapolis", 39.7684, -86.1581, "America/Indiana/Indianapolis"},
        {"Evansville", 37.9716, -87.5711, "America/Chicago"},
        {"Gary", 41.5934, -87.3464, "America/Chicago"},
        {"Tell City", 37.9514, -86.7678, "America/Indiana/Tell_City"},
        {"Knox", 41.2959, -86.6250, "America/Indiana/Knox"},
        {"Petersburg", 38.4920, -87.2786, "America/Indiana/Petersburg"},
        {"Vincennes", 38.6773, -87.5286, "America/Indiana/Vincennes"},
        {"Winamac", 41.0514, -86.6031, "America/Indiana/Winamac"},
        {"Marengo", 38.3692, -86.3436, "America/Indiana/Marengo"},
        {"Vevay", 38.7478, -85.0672, "America/Indiana/Vevay"},
    });
}

TEST(TimeZoneAreas, knowsBothSidesOfTheDateLine) {
    expectZones({
        {"Tarawa", 1.3291, 172.979, "Pacific/Tarawa"},
        {"Kanton", -2.81, -171.68, "Pacific/Kanton"},
        {"Kiritimati", 1.9836, -157.4750, "Pacific/Kiritimati"},
        {"Apia", -13.8333, -171.7667, "Pacific/Apia"},
        {"Pago Pago", -14.2756, -170.7020, "Pacific/Pago_Pago"},
        {"Taveuni, west of 180", -16.90, 179.97, "Pacific/Fiji"},
        {"Taveuni, east of 180", -16.85, -179.95, "Pacific/Fiji"},
        {"Chukotka, on 180", 68.0, 180.0, "Asia/Anadyr"},
        {"Chukotka, on -180", 68.0, -180.0, "Asia/Anadyr"},
        {"Egvekinot", 66.3215, -179.12, "Asia/Anadyr"},
        {"Egvekinot, a turn on", 66.3215, 180.88, "Asia/Anadyr"},
        {"Big Diomede", 65.78, -169.06, "Asia/Anadyr"},
        {"Little Diomede", 65.7583, -168.9519, "America/Nome"},
    });
}

TEST(TimeZoneAreas, knowsIslandsAndTheFarNorthAndSouth) {
    expectZones({
        {"Las Palmas", 28.1235, -15.4363, "Atlantic/Canary"},
        {"Funchal", 32.6669, -16.9241, "Atlantic/Madeira"},
        {"Ponta Delgada", 37.7412, -25.6756, "Atlantic/Azores"},
        {"Torshavn", 62.0079, -6.7908, "Atlantic/Faroe"},
        {"Jamestown", -15.9387, -5.7168, "Atlantic/St_Helena"},
        {"Easter Island", -27.1127, -109.3497, "Pacific/Easter"},
        {"Puerto Ayora", -0.7433, -90.3157, "Pacific/Galapagos"},
        {"Norfolk Island", -29.0408, 167.9547, "Pacific/Norfolk"},
        {"Kerguelen", -49.35, 70.22, "Indian/Kerguelen"},
        {"Longyearbyen", 78.2232, 15.6267, "Arctic/Longyearbyen"},
        {"Ittoqqortoormiit", 70.4853, -21.9667, "America/Scoresbysund"},
        {"McMurdo", -77.8463, 166.6683, "Antarctica/McMurdo"},
        {"Troll", -72.0117, 2.5350, "Antarctica/Troll"},
        {"Vostok", -78.4645, 106.8339, "Antarctica/Vostok"},
    });
}

TEST(TimeZoneAreas, givesNothingOutAtSea) {
    expectZones({
        {"North Atlantic", 30, -45, "nothing"},
        {"equatorial Atlantic", 0, -30, "nothing"},
        {"Bay of Biscay", 45.5, -5, "nothing"},
        {"western Mediterranean", 38, 5, "nothing"},
        {"South Pacific", -40, -120, "nothing"},
        {"North Pacific", 45, -150, "nothing"},
        {"on the date line", 30, 180, "nothing"},
        {"Indian Ocean", -30, 80, "nothing"},
        {"Arctic Ocean", 86, 10, "nothing"},
    });
}

TEST(TimeZoneAreas, givesNothingForWhatIsNoPoint) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    expectZones({
        {"latitude too large", 90.01, 0, "nothing"},
        {"latitude too small", -91, 0, "nothing"},
        {"no latitude", nan, 0, "nothing"},
        {"no longitude", 40, nan, "nothing"},
        {"an endless longitude", 40, -infinity, "nothing"},
        {"Madrid after many turns", 40.4168, -3.7038 + 360e6, "Europe/Madrid"},
    });
}

} // namespace
} // namespace zenka::geo
