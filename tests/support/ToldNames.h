#pragma once

#include "ports/MachineNames.h"

namespace zenka::test {

/// A machine that is called what the test says.
class ToldNames final : public ports::MachineNames {
public:
    ports::MachineName now{.product = "ThinkPad T480", .system = "Debian GNU/Linux 12 (bookworm)"};

    ports::MachineName read() override { return now; }
};

} // namespace zenka::test
