#pragma once

#include <string>

namespace zenka::webdata {

/// The land of the world for a small map, as a JSON array of rings: each [lon, lat, steps...] in hundredths
/// of a degree, the first point and then the steps of longitude and latitude from each point to the next. To
/// be filled ring by ring by the even-odd rule.
std::string landText();

} // namespace zenka::webdata
