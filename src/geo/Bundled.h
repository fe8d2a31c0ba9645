#pragma once

#include "geo/Gazetteer.h"
#include "geo/TimeZoneAreas.h"
#include "geo/WorldOutlines.h"

namespace zenka::geo {

/// The data built into the program. Made at the first call, which reads no more than the head of a file; the
/// rest comes into memory as it is asked for. Any thread.
const TimeZoneAreas& bundledZones();
const Gazetteer& bundledPlaces();
const WorldOutlines& bundledOutlines();

} // namespace zenka::geo
