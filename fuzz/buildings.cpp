// An answer on buildings may hold anything: what is taken of it raises the horizon to what a building can be.
#include "Check.h"
#include "rig/site/TerrainSource.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zenka;
    const std::string answer(reinterpret_cast<const char*>(data), size);
    const auto buildings = rig::buildingsIn(answer, 41.65, -0.88);
    if (!buildings)
        return 0;
    for (const auto& building : *buildings)
        check(std::isfinite(building.distanceM) && building.bearingDeg >= 0 && building.bearingDeg <= 360 &&
              building.heightM >= 0 && building.heightM <= 1000);
    std::vector<double> samples(eclipse::TerrainHorizon::azimuths, 0.0);
    raiseByBuildings(samples, *buildings);
    for (const double sample : samples)
        check(sample >= 0 && sample <= 80);
    return 0;
}
