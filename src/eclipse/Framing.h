#pragma once

#include "eclipse/Besselian.h"

#include <optional>

/// What a sensor behind a lens sees of the Sun, and how the Sun moves across it on a fixed tripod. The sky is
/// the geometric one: refraction, which a few degrees above the horizon slows the Sun's sinking by some
/// hundredths, is left out.
namespace zenka::eclipse::Framing {

struct Optics {
    double widthMm = 36; ///< of the sensor, above 0
    double heightMm = 24;
    int widthPx = 0; ///< 0: not known
    int heightPx = 0;
    double focalMm = 400;   ///< of the lens alone, above 0
    double converter = 1;   ///< factor of the teleconverter
    double rotationDeg = 0; ///< of the camera around its axis, clockwise as seen from behind; 0 landscape

    double wholeFocalMm() const { return focalMm * converter; }
    /// The long side of the frame stands up more than it lies.
    bool portrait() const;
    bool pixelsKnown() const { return widthPx > 0 && heightPx > 0; }

    friend bool operator==(const Optics&, const Optics&) = default;
};

/// A direction: altitude, and azimuth from north through east; degrees.
struct SkyPlace {
    double altDeg = 0;
    double azDeg = 0;
};

/// Millimetres on the sensor from its middle, as the picture is looked at: along the sensor's own sides.
struct FramePoint {
    double right = 0;
    double up = 0;

    friend bool operator==(const FramePoint&, const FramePoint&) = default;
};

/// Numbers in pixels are 0 where the sensor's are not known.
struct Facts {
    double fieldWidthDeg = 0; ///< along the sensor's width
    double fieldHeightDeg = 0;
    double arcsecPerPx = 0; ///< in the middle
    double sunMm = 0;       ///< diameter of the Sun's picture
    double sunPx = 0;
    double sunOfHeight = 0;     ///< the same as a part of the frame's height as the camera is held
    double radiiAlongWidth = 0; ///< solar radii from the Sun in the middle to the edge, along the width
    double radiiAlongHeight = 0;
};

/// The Sun's angular radius from a place, degrees, by the cones of the shadow: the elements tell how far Moon
/// and Sun are.
double sunRadiusDeg(const Eclipse& eclipse, double tHours, const Observer& observer);

Facts facts(const Optics& optics, double sunRadiusDeg);

SkyPlace sunAt(const Eclipse& eclipse, double tHours, const Observer& observer);

/// Where a direction falls on the sensor of a camera that is aimed at another one and stands level, but for
/// the rotation; nothing for what is 90° away or more. The sky turning past a fixed camera is all in this.
std::optional<FramePoint> onSensor(const Optics& optics, const SkyPlace& aimed, const SkyPlace& at);

/// A point or a way on the sensor as it lies with the zenith up, however the camera is turned.
FramePoint zenithUp(const Optics& optics, const FramePoint& point);

/// Whether a circle around a point is within the frame, all of it.
bool holds(const Optics& optics, const FramePoint& point, double radiusMm);

/// The way between two points, pixels; 0 where the sensor's are not known.
double pixelsBetween(const Optics& optics, const FramePoint& from, const FramePoint& to);

/// How fast the Sun moves over the sky, arc seconds a second.
double sunSpeed(const Eclipse& eclipse, double tHours, const Observer& observer);

/// How fast that is in the middle of the frame, pixels a second; 0 where the sensor's are not known.
double pixelsPerSecond(const Optics& optics, double speed);

/// When a circle of some solar radii around the Sun first touches the edge of a fixed frame, hours; nothing
/// if it does not between the two instants, or is over the edge at the first one.
std::optional<double> leavesAt(const Eclipse& eclipse, const Observer& observer, const Optics& optics,
                               const SkyPlace& aimed, double radii, double fromHours, double toHours);

} // namespace zenka::eclipse::Framing
