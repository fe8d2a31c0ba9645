#pragma once

#include "ports/PageServer.h"

#include <chrono>
#include <memory>
#include <mutex>

struct MHD_Daemon;

namespace zenka::platform {

/// The page server on libmicrohttpd, with a thread of its own. Only machines of the local network are let in,
/// a few at a time, and each for a few seconds.
class MicrohttpdPageServer final : public ports::PageServer {
public:
    /// A page is out of date when it is older than this.
    explicit MicrohttpdPageServer(std::chrono::milliseconds patience = std::chrono::seconds(10));
    MicrohttpdPageServer(const MicrohttpdPageServer&) = delete;
    MicrohttpdPageServer& operator=(const MicrohttpdPageServer&) = delete;
    ~MicrohttpdPageServer() override;

    Listening listen(const Wanted& wanted) override;
    void publish(std::string page) override;
    void close() override;

    struct Content; ///< shared with the server's thread

private:
    struct Stop {
        void operator()(MHD_Daemon* daemon) const;
    };

    const std::unique_ptr<Content> content_;
    std::unique_ptr<MHD_Daemon, Stop> daemon_;
};

} // namespace zenka::platform
