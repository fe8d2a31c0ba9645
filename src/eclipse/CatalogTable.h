#pragma once

#include "eclipse/EclipseRecord.h"

#include <string_view>
#include <vector>

namespace zenka::eclipse::detail {

/// Reads the text of data/eclipses.csv: a line of headings, then a row each, with the columns id, type,
/// region, t0_hour, delta_t, tan_f1, tan_f2, four coefficients each of x, y, d, l1, l2 and mu, and notes.
/// A table that is not of this form, or has no row, is a fault of the program.
std::vector<EclipseRecord> readTable(std::string_view csv);

} // namespace zenka::eclipse::detail
