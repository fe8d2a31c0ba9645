#pragma once

namespace zenka::rig {
class SiteDesk;
}

namespace zenka::ui {

/// A place in the sky relative to the Sun's centre, in solar radii: right is towards greater azimuth, up
/// is towards the zenith.
struct SkyOffset {
    double right = 0;
    double up = 0;
};

/// Sun and Moon at one instant, as the picture of the sky shows them. Lengths in solar radii.
struct SkyScene {
    double separation = 9;   ///< of the discs' centres
    double moonRadius = 1;   ///< of the Moon's disc
    double directionDeg = 0; ///< of the Moon's centre from the Sun's: 0 right, 90 towards the zenith
    double altitudeDeg = 0;  ///< of the Sun's centre, geometric
    double azimuthDeg = 0;
    double magnitude = 0;

    SkyOffset moon() const;
    /// The fraction of the Sun's disc that the Moon covers, 0 to 1; in a ring less than 1.
    double obscuration() const;
    /// The thickest place of what the Moon leaves of the Sun's disc; 0 or less when nothing is left.
    double crescentThickness() const { return 1 + separation - moonRadius; }
    bool total() const { return crescentThickness() <= 0; }
    bool ring() const { return moonRadius < 1 && separation + moonRadius <= 1; }

    friend bool operator==(const SkyScene&, const SkyScene&) = default;
};

/// The scene at a clock value. Worked out for that instant and not read from the site's curve: between two
/// samples of the curve, half a minute apart, the discs are off by seconds' worth of motion near C2 and C3,
/// and beyond C1 and C4 it has only its ends.
SkyScene skyScene(const rig::SiteDesk& site, double clock);

} // namespace zenka::ui
