#pragma once

#include <string>

namespace zenka::cli {

/// --compile: what a script compiles to at Carbondale.
void compileFile(const std::string& path);

} // namespace zenka::cli
