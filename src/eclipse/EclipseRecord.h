#pragma once

#include <string>
#include <vector>

namespace zenka::eclipse {

/// One row of the catalogue: an eclipse with its Besselian elements. The polynomials hold coefficients
/// in rising powers of tHours, hours of dynamical time (TDT) from the reference hour.
struct EclipseRecord {
    std::string id;         ///< the date, "2024-04-08"
    std::string name;       ///< "Total Solar Eclipse of 2024 April 08"
    std::string shortName;  ///< "2024 Apr 08 · Mexico / US / Canada"
    std::string type;       ///< "Total", "Annular" or "Hybrid"
    std::string dateUTC;    ///< date of the elements, same form as the id
    std::string notes;      ///< where, how long, over which countries, and the source of ΔT
    double t0Hour = 0;      ///< reference hour of the elements, TDT
    double deltaT = 0;      ///< TDT − UT, seconds
    double tanF1 = 0;       ///< tangent of the outer shadow cone's angle
    double tanF2 = 0;       ///< tangent of the inner shadow cone's angle
    std::vector<double> x;  ///< shadow axis on the fundamental plane, Earth radii
    std::vector<double> y;  ///< shadow axis on the fundamental plane, Earth radii
    std::vector<double> d;  ///< declination of the shadow axis, degrees
    std::vector<double> l1; ///< radius of the outer shadow on the fundamental plane, Earth radii
    std::vector<double> l2; ///< radius of the inner shadow, negative for a total phase
    std::vector<double> mu; ///< Greenwich hour angle of the axis, degrees

    friend bool operator==(const EclipseRecord&, const EclipseRecord&) = default;
};

} // namespace zenka::eclipse
