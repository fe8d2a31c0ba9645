#pragma once

#include "platform/LinuxProcessTable.h"
#include "ports/SerialPorts.h"

#include <filesystem>

namespace zenka::platform {

/// The serial lines of USB devices by termios: ttyACM* and ttyUSB* below a folder.
///
/// A device that another program has open is left alone: one of this user is seen in the process table,
/// others by a lock on the device (flock) or its exclusive mode. Both are held here as long as the line is
/// open, so that whoever comes later is refused and does not get every other byte. The lock files of old
/// below /var/lock are not looked at: they outlive their programs, and few write nothing but them.
///
/// Opening raises DTR, on which some boards start anew, and Linux has no way around it. DTR is left up when
/// the line is closed (no HUPCL), so that this happens once and not at each look.
class LinuxSerialPorts final : public ports::SerialPorts {
public:
    explicit LinuxSerialPorts(std::filesystem::path folder = "/dev");

    /// ttyACM before ttyUSB, each by number: ttyUSB2 before ttyUSB10.
    std::vector<std::string> candidates() override;

    /// Discards what has come in before.
    Opened open(const std::string& path, int baud) override;

private:
    const std::filesystem::path folder_;
    LinuxProcessTable processes_;
};

} // namespace zenka::platform
