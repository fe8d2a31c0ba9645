#pragma once

#include <string>
#include <vector>

namespace zenka::services {

/// What somebody may see of a run who stands beside the tripod with a phone. Neither where the site is nor
/// what the script holds.
struct GlanceState {
    struct Contact {
        std::string key;
        std::string time;
        bool past = false;
    };
    struct Body {
        std::string label;
        std::string model;
        std::string symbol;
        std::string state; ///< in a word or two
        bool trouble = false;
        int fired = 0;
        int dropped = 0;
        std::string battery; ///< "80 %", empty where it is not known
    };

    bool live = false;
    std::string eclipse;
    std::string time; ///< of the site, with its zone
    std::string countdownTitle;
    std::string countdown;
    std::string status; ///< what the clock does
    std::string nextShot;
    std::string alarm; ///< empty: none
    int skipped = 0;
    std::vector<Contact> contacts;
    std::vector<Body> bodies;
    std::vector<std::string> log; ///< newest first
};

/// A whole page that asks for itself anew every 2 s; it has no script in it, and nothing that can be sent.
/// Pure.
std::string glancePage(const GlanceState& state);

/// The page once the program has not been heard of for a while.
std::string silentGlancePage();

} // namespace zenka::services
