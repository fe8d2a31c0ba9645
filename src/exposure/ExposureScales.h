#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The standard scales of a camera, and how their values are written.
namespace zenka::exposure {

/// 64 standard shutters, fast to slow, as written in scripts ("1/500", "0.3", "1").
std::span<const std::string_view> standardShutters();
/// 33 third-stop and 12 whole-stop ISO values, ascending.
std::span<const int> standardISOs(bool wholeStops);
/// 31 standard f-numbers, ascending, as written in scripts.
std::span<const std::string_view> standardApertures();

/// The nearest standard shutter in log distance, the faster one of equals; "1/1000" for 0 or less.
std::string_view snapToStandard(double seconds);
/// "a/b" as a fraction, otherwise the number; 0 for a text that is neither.
double shutterSeconds(std::string_view text);
/// The nearest standard ISO in log distance; 100 for 0 or less.
int snapISO(double iso, bool wholeStops = false);
/// The nearest standard f-number in log distance; "8.0" for 0 or less.
std::string_view snapAperture(double fNumber);

/// A shutter for people: "1/500", "2s", "1.3s", "0.3s"; "-" for 0 or less.
std::string shutterLabel(double seconds);

/// A shutter as a camera's own list writes it: "1/500", "0.3", "2s", "0,5"; nothing for "bulb" and for
/// what is no number. A numerator above 1000 is not believed.
std::optional<double> readShutterChoice(std::string_view text);

} // namespace zenka::exposure
