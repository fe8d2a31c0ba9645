#include "eclipse/Fault.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace zenka::eclipse::detail {

void fault(std::string_view sentence, std::string_view what) {
    const std::string line = "eclipse catalogue: " + std::string(sentence) + ": " + std::string(what) + "\n";
    std::fputs(line.c_str(), stderr);
    std::abort();
}

} // namespace zenka::eclipse::detail
