#pragma once

#include "eclipse/Besselian.h"
#include "script/ZenkaScript.h"

namespace zenka::cli {

/// The fixed place of the command line's test drivers: the eclipse of 2024-04-08 at Carbondale, IL, with
/// UTC as its time zone, whatever a script was meant for.
const eclipse::Eclipse& testEclipse();
script::CompileContext carbondaleContext();

} // namespace zenka::cli
