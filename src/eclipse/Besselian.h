#pragma once

#include "base/Instant.h"
#include "base/Uuid.h"
#include "eclipse/EclipseRecord.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::eclipse {

/// Where one stands: degrees, north and east positive, and metres above the ellipsoid.
struct Observer {
    double lat = 0;
    double lon = 0;
    double elev = 0;

    friend bool operator==(const Observer&, const Observer&) = default;
};

/// The shadow and the Sun at one instant, seen from one place. Lengths in Earth radii on the
/// fundamental plane.
struct Geom {
    double m = 0;      ///< distance of the observer from the shadow axis
    double L1 = 0;     ///< radius of the outer shadow at the observer's height
    double L2 = 0;     ///< radius of the inner shadow there, negative where the phase is total
    double u = 0;      ///< x − ξ
    double v = 0;      ///< y − η
    double zeta = 0;   ///< the observer's height above the fundamental plane
    double altDeg = 0; ///< the Sun's geometric altitude, degrees
    double azDeg = 0;  ///< the Sun's azimuth from north through east, 0 to 360 degrees
    double q = 0;      ///< parallactic angle, radians
};

struct ContactEvent {
    base::Uuid id;     ///< fresh whenever the event is computed
    std::string key;   ///< "C1", "C2", "MAX", "C3" or "C4"
    std::string label; ///< "First contact, partial begins" and so on
    double tHours = 0; ///< from the reference instant, TDT
    base::Instant utc;
    double sunAltDeg = 0; ///< geometric altitude, degrees
    double sunAzDeg = 0;  ///< from north through east, 0 to 360 degrees

    friend bool operator==(const ContactEvent&, const ContactEvent&) = default;
};

/// What an eclipse is at one place. Events are read by key, never by position.
struct LocalCircumstances {
    std::string eclipseId;
    bool isTotal = false;             ///< a central phase is seen, total or annular
    double maxMagnitude = 0;          ///< 0 where nothing is seen
    double maxObscuration = 0;        ///< 0 to 1; 1 within an annular path as well
    double totalitySeconds = 0;       ///< of the central phase
    std::vector<ContactEvent> events; ///< in time order; "MAX" is always there
    std::optional<base::Instant> sunriseUTC;
    std::optional<base::Instant> sunsetUTC;

    const ContactEvent* event(std::string_view key) const;
};

/// The eclipse of one record. Immutable, so any thread may use it.
class Eclipse {
public:
    explicit Eclipse(EclipseRecord record);

    const EclipseRecord rec;

    /// The reference instant of the elements, on their own time scale (TDT).
    base::Instant baseTDT() const { return baseTDT_; }

    /// The instant in UT of tHours: baseTDT + tHours − ΔT.
    base::Instant utc(double tHours) const;

    Geom geometry(double tHours, const Observer& observer) const;

    /// Contacts, maximum, magnitude and Sun times. Gives to the last bit what a walk over a grid of 4
    /// seconds across ±4 hours gives, but steps over stretches in which no contact can be.
    LocalCircumstances localCircumstances(const Observer& observer) const;

    /// Sunrise and sunset by the almanac's method on the date of the elements; absent where the Sun
    /// stays up or down. There is no roll to the next day.
    struct SunTimes {
        std::optional<base::Instant> rise;
        std::optional<base::Instant> set;
    };
    SunTimes sunriseSunset(double lat, double lon) const;

    /// The fraction of the Sun's disc that is covered, 0 to 1, from the centre distance d and the radii
    /// of the cones, l2 as an absolute value.
    static double obscuration(double d, double l1, double l2);

private:
    base::Instant baseTDT_;
};

/// Magnitude at a place: (L1 − m) / (L1 + L2), never below 0, and 0 where the denominator is 0.
double magnitude(const Geom& geom);

double julianDay(int year, int month, int day);
int dayOfYear(int year, int month, int day);

} // namespace zenka::eclipse
