#pragma once

#include "rig/site/HorizonDesk.h"

#include <string>
#include <vector>

namespace zenka::eclipse {
class Eclipse;
struct Observer;
} // namespace zenka::eclipse

namespace zenka::ui {

/// What the picture of a horizon shows. Degrees; azimuths go on beyond 360 where the Sun crosses north.
struct HorizonScene {
    struct Point {
        double az = 0;
        double alt = 0;
    };

    std::vector<double> samples; ///< of the terrain, by whole degrees; empty where it is not known
    std::vector<Point> path;     ///< the Sun's, from before C1 to behind C4; empty where no eclipse is seen
    std::vector<rig::ContactClearance> contacts; ///< with azimuths as in the path

    double leftAz = 0; ///< the part of the horizon that is shown
    double rightAz = 360;
    double lowestAlt = -2;
    double highestAlt = 10;
};

/// The scene for a place. The samples may be empty.
HorizonScene horizonScene(const eclipse::Eclipse& eclipse, const eclipse::Observer& observer,
                          std::vector<double> samples);

/// "N", "NE" and so on of one of the eight directions; empty for any other azimuth.
std::string compassName(int azDeg);

} // namespace zenka::ui
