#pragma once

#include <string>

namespace zenka::cli {

/// --og PATH: writes a picture of the next eclipse's path for sharing, 1200 by 630 pixels, as a PNG.
void renderOGImage(const std::string& path);

} // namespace zenka::cli
