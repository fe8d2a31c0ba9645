#include "cli/Switches.h"

#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    const std::vector<std::string> arguments(argv, argv + argc);
    if (zenka::cli::runSwitch(arguments))
        return 0;
    std::fputs("zenka: this version has no window yet. To run a script's whole eclipse on simulated cameras: "
               "zenka --rehearse SCRIPT [ECLIPSE-ID LAT LON ELEV TZ]\n",
               stderr);
    return 1;
}
