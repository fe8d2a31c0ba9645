#pragma once

#include "eclipse/Besselian.h"

#include <string_view>
#include <vector>

namespace zenka::eclipse {

/// A ready-made site that a view can offer: degrees, metres, time-zone identifier.
struct SitePreset {
    std::string name;
    double lat = 0;
    double lon = 0;
    double elev = 0;
    std::string tz;
};

/// The 101 central solar eclipses from 2024 to 2100, from data/eclipses.csv, which is built into the
/// program. Any thread.
namespace Catalog {

/// All rows in stored order, parsed once.
const std::vector<EclipseRecord>& all();

bool has(std::string_view id);

/// The eclipse of an id; an id that is in no row gives the first row.
Eclipse eclipse(std::string_view id);

/// The first one whose greatest eclipse is still to come; when there is none, the last.
Eclipse nextAfter(base::Instant now);

} // namespace Catalog

} // namespace zenka::eclipse
