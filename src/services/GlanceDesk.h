#pragma once

#include "base/Published.h"
#include "ports/PageServer.h"
#include "ports/Ports.h"
#include "rig/RigModel.h"

#include <string>
#include <vector>

namespace zenka::services {

/// Shows a run to phones and other machines nearby, on a page that can change nothing. Off until the user
/// wants it; whether it is on and its address outlive the program, so that a phone finds the page again after
/// a restart in mid-eclipse. Main thread.
class GlanceDesk {
public:
    enum class Reach { off, thisComputer, localNetwork };

    /// All of these outlive it.
    GlanceDesk(const ports::Ports& ports, ports::PageServer& pages, rig::RigModel& rig);
    GlanceDesk(const GlanceDesk&) = delete;
    GlanceDesk& operator=(const GlanceDesk&) = delete;
    ~GlanceDesk();

    /// Once the rig is up: listens if it did last time.
    void start();

    const base::Published<Reach>& reach() const { return reach_; }
    void setReach(Reach reach);

    /// Another secret in the address: who has the one of before sees nothing more.
    void renewAddress();

    /// Where the page is: "http://192.168.1.20:8412/…", one for each network. Empty when it is off.
    const base::Published<std::vector<std::string>>& addresses() const { return addresses_; }
    /// Why there is no page although it is wanted; empty when all is well.
    const base::Published<std::string>& fault() const { return fault_; }

private:
    void listen();
    void beat();
    std::string secret();

    const ports::Ports& ports_;
    ports::PageServer& pages_;
    rig::RigModel& rig_;
    base::Published<Reach> reach_{Reach::off};
    base::Published<std::vector<std::string>> addresses_;
    base::Published<std::string> fault_;
    ports::MainLoop::TimerId timer_ = ports::MainLoop::TimerId::none;
    int passedOver_ = 0; ///< beats in a row that a frame was too near for
};

} // namespace zenka::services
