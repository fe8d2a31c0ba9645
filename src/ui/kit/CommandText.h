#pragma once

#include "script/CommandLines.h"

#include <QString>

#include <span>

namespace zenka::ui {

/// Commands to be read before they may run, one a line: "line 12:  lights off". What is invisible in one, or
/// turns the text around it, stands as its number.
QString commandText(std::span<const script::CommandLine> commands);

} // namespace zenka::ui
