#include "exposure/ExposureScales.h"

#include <gmock/gmock.h>

#include <cmath>
#include <iostream>
#include <limits>

namespace zenka::exposure {
namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(ExposureScales, haveTheirRowsInOrder) {
    EXPECT_EQ(standardShutters().size(), 64u);
    EXPECT_EQ(standardISOs(false).size(), 33u);
    EXPECT_EQ(standardISOs(true).size(), 12u);
    EXPECT_EQ(standardApertures().size(), 31u);
    double worst = 0; // a third of a stop, but for the marks that are rounded or skipped
    for (std::size_t i = 1; i < standardShutters().size(); ++i) {
        const double stops =
            std::log2(shutterSeconds(standardShutters()[i]) / shutterSeconds(standardShutters()[i - 1]));
        ASSERT_GT(stops, 0) << standardShutters()[i];
        worst = std::max(worst, std::abs(stops - 1.0 / 3));
    }
    std::cout << "largest departure from a third of a stop " << worst << ", ceiling 0.15\n";
    EXPECT_LT(worst, 0.15);
    for (const int iso : standardISOs(true))
        EXPECT_EQ(snapISO(iso), iso) << "whole stops are thirds too";
}

TEST(ExposureScales, everyRowSnapsToItself) {
    for (const auto row : standardShutters())
        EXPECT_EQ(snapToStandard(shutterSeconds(row)), row);
    for (const auto row : standardApertures())
        EXPECT_EQ(snapAperture(shutterSeconds(row)), row);
    for (const int row : standardISOs(false))
        EXPECT_EQ(snapISO(row), row);
}

TEST(ExposureScales, valuesSnapInLogDistance) {
    EXPECT_EQ(snapToStandard(0.0051), "1/200");
    EXPECT_EQ(snapToStandard(std::sqrt(2.0 * 2.5) * 0.9999), "2");
    EXPECT_EQ(snapToStandard(std::sqrt(2.0 * 2.5) * 1.0001), "2.5");
    EXPECT_EQ(snapToStandard(3600), "60");
    EXPECT_EQ(snapToStandard(inf), "60");
    EXPECT_EQ(snapToStandard(1e-300), "1/32000");
    for (const double bad : {0.0, -1.0, nan}) {
        EXPECT_EQ(snapToStandard(bad), "1/1000");
        EXPECT_EQ(snapISO(bad), 100);
        EXPECT_EQ(snapAperture(bad), "8.0");
    }
    EXPECT_EQ(snapISO(565), 500); // the middle is √(500 · 640) = 565.7
    EXPECT_EQ(snapISO(566), 640);
    EXPECT_EQ(snapISO(140, true), 100);
    EXPECT_EQ(snapISO(142, true), 200);
    EXPECT_EQ(snapISO(1e9), 102400);
    EXPECT_EQ(snapAperture(8.4), "8.0");
    EXPECT_EQ(snapAperture(100), "45");
}

TEST(ExposureScales, shutterLabelsAreForPeople) {
    const std::vector<std::pair<double, const char*>> cases{
        {0, "-"},        {-1, "-"},     {nan, "-"},       {1, "1s"},
        {30, "30s"},     {1.3, "1.3s"}, {2.5, "2.5s"},    {0.5, "1/2"},
        {0.3, "0.3s"},   {0.8, "0.8s"}, {0.002, "1/500"}, {1.0 / 32000, "1/32000"},
        {0.0125, "1/80"}};
    for (const auto& [seconds, label] : cases)
        EXPECT_EQ(shutterLabel(seconds), label) << seconds;
}

TEST(ExposureScales, shuttersReadAsCamerasWriteThem) {
    const std::vector<std::pair<const char*, std::optional<double>>> cases{
        {"1/500", 0.002},     {" 0,5 ", 0.5}, {"2s", 2},    {"0.3s", 0.3},  {"1000/1", 1000},
        {"13/10", 1.3},       {"bulb", {}},   {"Bulb", {}}, {"1001/1", {}}, {"1/0", {}},
        {"1/2/3", {}},        {"", {}},       {"s", {}},    {"Auto", {}},   {"1 /2", {}},
        {"1e300/1e-300", {}}, {"inf", {}}};
    for (const auto& [text, seconds] : cases)
        EXPECT_EQ(readShutterChoice(text), seconds) << text;
    EXPECT_EQ(shutterSeconds("1/0"), 0);
    EXPECT_EQ(shutterSeconds("fast"), 0);
    EXPECT_EQ(shutterSeconds("1.3"), 1.3);
}

} // namespace
} // namespace zenka::exposure
