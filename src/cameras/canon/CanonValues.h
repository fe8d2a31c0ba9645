#pragma once

#include <cstdint>

/// EDSDK's codes for exposure settings. Each gives the code of the nearest value of its table, the first of
/// equals.
namespace zenka::cameras::CanonValues {

/// Nearest in ISO.
std::uint32_t isoCode(int iso);
/// Nearest in f-number.
std::uint32_t apertureCode(double fNumber);
/// Nearest in the logarithm, for seconds above 0. The tables end at 30 s and 1/10000 s.
std::uint32_t shutterCode(double seconds);
/// Nearest in stops.
std::uint32_t expCompCode(double stops);

} // namespace zenka::cameras::CanonValues
