#pragma once

#include "ports/ChildProcess.h"

namespace zenka::test {

/// Child processes of this machine, small and for tests: a wait beyond its limit is the test's fault.
class RealChildren final : public ports::ChildProcesses {
public:
    Started start(const ports::ChildStart& start) override;

    /// True when this process has no child, a zombie neither.
    static bool none();
};

} // namespace zenka::test
