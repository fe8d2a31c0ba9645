#pragma once

#include "rig/bodies/BurstDrift.h"
#include "ui/sky/SkyScene.h"

#include <QString>

#include <vector>

/// What a framing comes to, in words.
namespace zenka::ui {

struct FramingNumber {
    QString name;
    QString value;
};

struct BurstRow {
    QString title;   ///< "C2 −5s to C3 +5s"
    QString facts;   ///< how many frames in which time
    QString drift;   ///< how far the Sun goes in the frame
    QString trail;   ///< of the longest exposure
    QString warning; ///< with its symbol; empty for none
    int level = 0;   ///< 0 nothing to say, 1 the corona is cut, 2 the Sun is
    bool picked = false;

    friend bool operator==(const BurstRow&, const BurstRow&) = default;
};

/// What is looked at.
struct FramingFrame {
    eclipse::Framing::Optics optics;
    eclipse::Framing::Facts facts;
    double speed = 15; ///< the Sun's on the sky, arc seconds a second
    bool tracking = false;
    double trailPx = 1;     ///< that a shutter may trail
    double wantedRadii = 4; ///< of the corona

    /// Solar radii from the middle to the nearer edges.
    double room() const;
};

std::vector<FramingNumber> framingNumbers(const FramingFrame& frame);
/// Where the Moon is, "0.10 solar radii from the Sun, to the upper right, 1.030 of its size".
QString moonWords(const SkyScene& sky);
/// Whether the corona fits, with a symbol.
QString framingVerdict(const FramingFrame& frame);
BurstRow burstRow(const FramingFrame& frame, const script::Burst& burst, const rig::BurstDrift& drift);

/// "1/8" for 0.13 s: the slowest standard shutter that is no slower; empty where there is none.
std::string shutterWithin(double seconds);

} // namespace zenka::ui
