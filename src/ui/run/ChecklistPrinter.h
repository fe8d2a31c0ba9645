#pragma once

#include "base/Lifeline.h"
#include "ports/Ports.h"

#include <functional>
#include <memory>
#include <string>

class QUrl;

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// Puts the checklist of the rig as it stands into the reports' folder, and opens it. Main thread; it is
/// drawn and written on a queue.
class ChecklistPrinter {
public:
    ChecklistPrinter(rig::RigModel& rig, const ports::Ports& ports, std::string appVersion,
                     std::function<void(const QUrl&)> open);

    void print();

private:
    rig::RigModel& rig_;
    const ports::Ports& ports_;
    const std::string appVersion_;
    const std::function<void(const QUrl&)> open_;
    const std::shared_ptr<ports::WorkQueue> queue_;
    base::Lifeline lifeline_;
};

} // namespace zenka::ui
