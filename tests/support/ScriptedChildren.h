#pragma once

#include "platform/virtual/VirtualTime.h"
#include "ports/ChildProcess.h"
#include "ports/ProcessTable.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zenka::test {

/// gphoto2 children in virtual time, which passes where the code under test waits for them.
class ScriptedChildren final : public ports::ChildProcesses {
public:
    explicit ScriptedChildren(platform::VirtualTime& time) : time_(time) {}

    static constexpr const char* prompt = "gphoto2: {/home/user/rig} /> ";

    /// What a command of the shell comes to.
    struct Answer {
        std::string text;
        double seconds = 0.002; ///< until the prompt behind it
        bool hangs = false;     ///< no prompt, nor anything more
        bool dies = false;      ///< the child ends after the text
    };
    std::function<Answer(const std::string& command)> answer = [](const std::string&) { return Answer{}; };

    struct Single {
        int code = 0;
        std::string out;
        std::string err;
        double seconds = 0.05;
    };
    /// What a single run comes to.
    std::function<Single(const std::vector<std::string>& arguments)> single =
        [](const std::vector<std::string>&) { return Single{}; };

    std::string launchFault; ///< no child starts
    bool promptless = false; ///< no shell gets to its first prompt
    std::string silentPort;  ///< neither does one on this port
    bool takesInput = true;  ///< else a write is not taken
    std::vector<ports::ChildStart> starts;
    std::vector<std::string> commands; ///< of all shells
    std::vector<std::string> writes;   ///< as they were written
    int living = 0;
    int killed = 0;

    Started start(const ports::ChildStart& start) override {
        if (!launchFault.empty())
            return {.fault = launchFault};
        starts.push_back(start);
        return {.child = std::make_unique<Child>(*this, start)};
    }

private:
    class Child final : public ports::ChildProcess {
    public:
        Child(ScriptedChildren& owner, const ports::ChildStart& start) : owner_(owner) {
            ++owner_.living;
            if (!start.arguments.empty() && start.arguments.back() == "--shell") {
                if (!owner_.promptless && start.arguments[1] != owner_.silentPort)
                    say(0.05, prompt);
                return;
            }
            const Single run = owner_.single(start.arguments);
            say(run.seconds, run.out, run.err);
            end(run.code);
        }
        ~Child() override { --owner_.living; }

        bool write(std::string_view bytes, base::Seconds limit) override {
            if (!running() || !owner_.takesInput) {
                owner_.time_.sleepFor(running() ? limit : base::Seconds{0});
                return false;
            }
            owner_.writes.emplace_back(bytes);
            while (!bytes.empty()) {
                const std::size_t newline = bytes.find('\n');
                take(std::string(bytes.substr(0, newline)));
                bytes.remove_prefix(newline == bytes.npos ? bytes.size() : newline + 1);
            }
            return true;
        }

        Output read(base::Seconds limit) override {
            const double end = owner_.time_.continuousSeconds() + limit.count();
            if (events_.empty() || events_.front().due > end) {
                passTo(end);
                return {};
            }
            passTo(events_.front().due);
            const Event event = events_.front();
            if (!event.output.ended) // that is heard again and again
                events_.pop_front();
            return event.output;
        }

        bool running() override { return !(code_ && owner_.time_.continuousSeconds() >= endsAt_); }

        std::optional<int> waitForEnd(base::Seconds limit) override {
            const double end = owner_.time_.continuousSeconds() + limit.count();
            if (!code_ || endsAt_ > end) {
                passTo(end);
                return std::nullopt;
            }
            passTo(endsAt_);
            return code_;
        }

        void terminate() override {
            if (!stubborn_)
                finish(-15);
        }
        void kill() override {
            ++owner_.killed;
            finish(-9);
        }

    private:
        struct Event {
            double due = 0;
            Output output;
        };

        void passTo(double instant) {
            if (instant > owner_.time_.continuousSeconds())
                owner_.time_.sleepFor(base::Seconds{instant - owner_.time_.continuousSeconds()});
        }

        void say(double seconds, std::string out, std::string err = {}) {
            free_ = std::max(free_, owner_.time_.continuousSeconds()) + seconds;
            events_.push_back({.due = free_, .output = {.out = std::move(out), .err = std::move(err)}});
        }

        void end(int code) {
            code_ = code;
            endsAt_ = std::max(free_, owner_.time_.continuousSeconds());
            events_.push_back({.due = endsAt_, .output = {.ended = true}});
        }

        void finish(int code) {
            if (running()) {
                events_.clear();
                free_ = 0;
                end(code);
            }
        }

        void take(const std::string& command) {
            owner_.commands.push_back(command);
            if (hung_ || code_)
                return;
            const std::string echo = command + "\n" + command + "\n";
            if (command == "exit") {
                say(0.003, echo);
                end(0);
                return;
            }
            const Answer said = owner_.answer(command);
            hung_ = stubborn_ = said.hangs;
            if (hung_)
                return;
            say(said.seconds, echo + said.text + (said.dies ? "" : prompt));
            if (said.dies)
                end(1);
        }

        ScriptedChildren& owner_;
        std::deque<Event> events_;
        double free_ = 0; // when all it has been told so far is done
        bool hung_ = false;
        bool stubborn_ = false;
        std::optional<int> code_;
        double endsAt_ = 0;
    };

    platform::VirtualTime& time_;
};

/// A process table that a test writes.
class ScriptedProcesses final : public ports::ProcessTable {
public:
    std::optional<std::vector<ports::RunningProcess>> list{std::in_place};
    std::vector<int> ended;
    int scans = 0;

    std::optional<std::vector<ports::RunningProcess>> running() override {
        ++scans;
        return list;
    }
    std::optional<std::vector<ports::RunningProcess>> holdersOf(const std::filesystem::path&) override {
        return list;
    }
    bool end(int id) override {
        ended.push_back(id);
        return true;
    }
};

} // namespace zenka::test
