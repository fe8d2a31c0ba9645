#pragma once

#include <string>
#include <vector>

namespace zenka::ports {

/// Shows one page to browsers, and lets them do nothing. It answers on threads of its own, so that nobody who
/// asks can hold the program up.
class PageServer {
public:
    struct Wanted {
        std::string secret;        ///< the page is at "/" + secret, all else does not exist
        bool wholeNetwork = false; ///< for the machines of the local network, else for this one alone
        int port = 0;              ///< another is taken when it is not free
        std::string silence;       ///< the page once none was published for 10 s
    };
    struct Listening {
        int port = 0;                       ///< 0: it does not listen
        std::vector<std::string> addresses; ///< of this machine, as others reach it: "192.168.1.20"
        std::string fault;                  ///< why it does not listen, as the end of a sentence
    };

    virtual ~PageServer() = default;

    /// Listens, in the place of what it listened to before. Main thread, at once.
    virtual Listening listen(const Wanted& wanted) = 0;

    /// The page from now on, HTML in UTF-8.
    virtual void publish(std::string page) = 0;

    virtual void close() = 0;
};

} // namespace zenka::ports
