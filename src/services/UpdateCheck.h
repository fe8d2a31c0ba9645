#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"

#include <string>

namespace zenka::services {

/// The setting of the address that is asked.
inline constexpr char updateAddressKey[] = "zenka.updateAddress";

/// Whether there is a newer version of the program. Where an address is set, GET of it answers with
/// {"version": "1.2.3", "url": "where to get it"}; else the system's package manager has the say.
class UpdateCheck {
public:
    UpdateCheck(const ports::Ports& ports, std::string version);

    /// Empty when none is set.
    std::string address() const;
    void setAddress(const std::string& address);

    /// Asks; the answer comes in words. While one question is open another one changes nothing.
    void check();

    /// One or two sentences, empty before the first check.
    const base::Published<std::string>& words() const { return words_; }
    const base::Published<bool>& asking() const { return asking_; }

private:
    void read(const ports::HttpReply& reply);

    const ports::Ports& ports_;
    const std::string version_;
    base::Published<std::string> words_;
    base::Published<bool> asking_{false};
    base::Lifeline lifeline_;
};

/// Whether one version, "1.10.2", is later than another. What is no number counts as 0.
bool laterVersion(const std::string& candidate, const std::string& than);

} // namespace zenka::services
