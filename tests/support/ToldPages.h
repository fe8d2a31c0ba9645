#pragma once

#include "ports/PageServer.h"

#include <string>
#include <utility>
#include <vector>

namespace zenka::test {

/// A page server that nobody asks; it keeps what it was told.
class ToldPages final : public ports::PageServer {
public:
    std::string fault;                                ///< why it does not listen
    std::vector<std::string> network{"192.168.1.20"}; ///< this machine's addresses
    Wanted wanted;
    bool listening = false;
    int published = 0;
    std::string page;

    Listening listen(const Wanted& what) override {
        wanted = what;
        listening = fault.empty();
        if (!listening)
            return {.fault = fault};
        return {.port = what.port,
                .addresses = what.wholeNetwork ? network : std::vector<std::string>{"127.0.0.1"}};
    }
    void publish(std::string what) override {
        page = std::move(what);
        ++published;
    }
    void close() override { listening = false; }
};

} // namespace zenka::test
