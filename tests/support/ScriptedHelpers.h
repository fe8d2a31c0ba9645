#pragma once

#include "platform/virtual/VirtualTime.h"
#include "ports/ChildProcess.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zenka::test {

/// Lumix helpers in virtual time, which passes where the code under test waits for them.
class ScriptedHelpers final : public ports::ChildProcesses {
public:
    using Json = nlohmann::json;

    explicit ScriptedHelpers(platform::VirtualTime& time) : time_(time) {}

    /// What a request comes to: a line.
    struct Answer {
        Json words = Json::object();
        double seconds = 0.06;
        bool silent = false; ///< no answer at all
        bool dies = false;   ///< the helper ends instead
        std::string raw;     ///< printed instead of the words
    };
    std::function<Answer(const Json& request)> answer = [this](const Json& request) {
        if (request["cmd"] == "fire") {
            ++confirmed;
            return Answer{.words = {{"fired", true},
                                    {"bulb", false},
                                    {"set_ok", true},
                                    {"latency_ms", 61.5},
                                    {"confirmed", confirmed}}};
        }
        return Answer{.words = {{"confirmed", confirmed}, {"battery", 84}}};
    };

    std::string launchFault;
    std::string complaint; ///< every helper ends with it as soon as it has started
    int confirmed = 0;
    std::vector<ports::ChildStart> starts;
    std::vector<Json> requests;
    int living = 0;
    int terminated = 0;

    Started start(const ports::ChildStart& start) override {
        if (!launchFault.empty())
            return {.child = nullptr, .fault = launchFault};
        starts.push_back(start);
        return {.child = std::make_unique<Child>(*this), .fault = {}};
    }

    /// The requests since the last call.
    std::vector<std::string> sent() {
        std::vector<std::string> list;
        for (Json& request : requests) {
            list.push_back(request.dump());
        }
        requests.clear();
        return list;
    }

private:
    class Child final : public ports::ChildProcess {
    public:
        explicit Child(ScriptedHelpers& owner) : owner_(owner) {
            ++owner_.living;
            if (!owner_.complaint.empty()) {
                events_.push_back(
                    {.due = now(), .output = {.out = {}, .err = owner_.complaint, .ended = false}});
                ended_ = true;
            }
        }
        ~Child() override { --owner_.living; }

        bool write(std::string_view bytes, base::Seconds) override {
            if (ended_)
                return false;
            Json request = Json::parse(bytes);
            owner_.requests.push_back(request);
            if (request["cmd"] == "quit") {
                ended_ = true;
                return true;
            }
            const Answer said = owner_.answer(request);
            ended_ = said.dies;
            if (!said.silent && !said.dies)
                events_.push_back({.due = now() + said.seconds,
                                   .output = {.out = said.raw.empty() ? said.words.dump() + "\n" : said.raw,
                                              .err = {},
                                              .ended = false}});
            return true;
        }

        Output read(base::Seconds limit) override {
            const double end = now() + limit.count();
            if (events_.empty() || events_.front().due > end) {
                if (ended_)
                    return {.out = {}, .err = {}, .ended = true};
                passTo(end);
                return {};
            }
            passTo(events_.front().due);
            const Output output = events_.front().output;
            events_.pop_front();
            return output;
        }

        bool running() override { return !ended_; }
        std::optional<int> waitForEnd(base::Seconds limit) override {
            if (!ended_)
                passTo(now() + limit.count());
            return ended_ ? std::optional(0) : std::nullopt;
        }
        void terminate() override {
            ++owner_.terminated;
            ended_ = true;
        }
        void kill() override { ended_ = true; }

    private:
        struct Event {
            double due = 0;
            Output output;
        };
        double now() const { return owner_.time_.continuousSeconds(); }
        void passTo(double instant) {
            if (instant > now())
                owner_.time_.sleepFor(base::Seconds{instant - now()});
        }

        ScriptedHelpers& owner_;
        std::deque<Event> events_;
        bool ended_ = false;
    };

    platform::VirtualTime& time_;
};

} // namespace zenka::test
