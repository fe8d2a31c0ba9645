#pragma once

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace zenka::test {

/// The emulated USB bus that this program was started on by tests/support/usb_cameras.py.
class UsbCameras {
public:
    void plug(const std::string& serial, const std::string& vendor, const std::string& product, int vid,
              int address) {
        order({{"do", "plug"},
               {"serial", serial},
               {"vendor", vendor},
               {"product", product},
               {"vid", vid},
               {"address", address}});
    }
    void pull(const std::string& serial) { order({{"do", "pull"}, {"serial", serial}}); }
    /// It takes commands and answers none until it is reset or plugged in again.
    void silence(const std::string& serial) { order({{"do", "silence"}, {"serial", serial}}); }
    /// Its next answer is behind a stall.
    void stall(const std::string& serial) { order({{"do", "stall"}, {"serial", serial}}); }
    /// A number of a body since it was plugged in: "shots", "sets", "iso".
    int tell(const std::string& serial, const std::string& what) {
        return order({{"do", "tell"}, {"serial", serial}}).at(what).get<int>();
    }

private:
    nlohmann::json order(const nlohmann::json& words) {
        const char* number = std::getenv("USB_CAMERAS_FD");
        if (!number)
            throw std::runtime_error("not on an emulated bus");
        const int socket = std::atoi(number);
        const std::string line = words.dump() + "\n";
        std::string answer;
        if (::write(socket, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
            throw std::runtime_error("the emulated bus is gone");
        for (char c = 0; c != '\n'; answer += c)
            if (::read(socket, &c, 1) != 1)
                throw std::runtime_error("the emulated bus is gone");
        return nlohmann::json::parse(answer);
    }
};

} // namespace zenka::test
