#include "cameras/lumix/LumixHelper.h"

#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <utility>

namespace zenka::cameras {

namespace {

constexpr std::size_t longestLine = 65536;
constexpr std::size_t keptErrors = 2000;
constexpr base::Seconds requestWriteLimit{2};
constexpr base::Seconds endLimit{2};

/// The last line of a text that has any words.
std::string lastLineOf(const std::string& text) {
    const auto lines = base::splitPieces(text, '\n');
    const auto last = std::ranges::find_if(lines.rbegin(), lines.rend(),
                                           [](auto line) { return !base::trimmed(line).empty(); });
    return last == lines.rend() ? std::string() : std::string(base::trimmed(*last));
}

} // namespace

LumixHelper::LumixHelper(const LumixMachine& machine, int bus, int address)
    : machine_(machine), bus_(bus), address_(address), q_(machine.drivers.queues.serial("lumix.helper")) {
}

LumixHelper::~LumixHelper() {
    stop();
}

LumixHelper::Child LumixHelper::child() const {
    const std::lock_guard lock(mutex_);
    return proc_;
}

LumixHelper::Child LumixHelper::takeChild() {
    const std::lock_guard lock(mutex_);
    return std::exchange(proc_, nullptr);
}

std::string LumixHelper::fault() const {
    const std::lock_guard lock(mutex_);
    return fault_;
}

void LumixHelper::setFault(std::string fault) {
    const std::lock_guard lock(mutex_);
    fault_ = std::move(fault);
}

bool LumixHelper::start() {
    stop();
    outBuf_.clear();
    errorTail_.clear();
    answersOwed_ = 0;
    const auto start = LumixPlaces::startOf(machine_, bus_, address_);
    if (!start) {
        setFault("the helper program for LUMIX bodies, zenka-lumix-helper, is not installed");
        return false;
    }
    auto started = machine_.children.start(*start);
    const bool runs = started.child != nullptr;
    const std::lock_guard lock(mutex_);
    fault_ = runs ? std::string() : start->program + ": " + started.fault;
    proc_ = std::move(started.child);
    return runs;
}

bool LumixHelper::running() {
    const Child child = this->child();
    return child && child->running();
}

/// False when no whole line has come.
bool LumixHelper::nextLine(std::string& line) {
    const std::size_t newline = outBuf_.find('\n');
    if (newline == outBuf_.npos)
        return false;
    line = outBuf_.substr(0, newline);
    outBuf_.erase(0, newline + 1);
    return true;
}

/// False at the deadline and at the end of its output.
bool LumixHelper::readMore(ports::ChildProcess& child, double deadline) {
    const double left = deadline - machine_.drivers.clock.continuousSeconds();
    const auto output = child.read(base::Seconds{std::max(left, 0.0)});
    outBuf_ += output.out;
    errorTail_ += output.err;
    if (errorTail_.size() > keptErrors)
        errorTail_.erase(0, errorTail_.size() - keptErrors);
    return !output.out.empty() || (!output.ended && left > 0);
}

/// Drops what came since the last request: answers that nobody waits for any more, and what was no answer.
void LumixHelper::dropStale(ports::ChildProcess& child) {
    readMore(child, machine_.drivers.clock.continuousSeconds());
    for (std::string line; nextLine(line);)
        answersOwed_ = std::max(answersOwed_ - 1, 0);
}

std::optional<LumixHelper::Json> LumixHelper::request(const Json& dictionary, base::Seconds timeout) {
    const Child child = this->child();
    if (!child)
        return std::nullopt;
    dropStale(*child);
    const std::string line = dictionary.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
    const double deadline = machine_.drivers.clock.continuousSeconds() + timeout.count();
    std::string why;
    if (child->write(line, std::min(requestWriteLimit, timeout))) {
        do {
            for (std::string came; nextLine(came);) {
                if (answersOwed_ > 0) { // to a request that was given up
                    --answersOwed_;
                    continue;
                }
                Json answer = Json::parse(came, nullptr, false);
                if (answer.is_object())
                    return answer;
                setFault("an answer that cannot be read");
                return std::nullopt;
            }
            if (outBuf_.size() > longestLine) {
                outBuf_.clear();
                ++answersOwed_; // its end is still to come
                setFault("an answer that does not end");
                return std::nullopt;
            }
        } while (readMore(*child, deadline));
        ++answersOwed_;
        why = absl::StrFormat("no answer within %gs", timeout.count());
    } else {
        why = "it takes no requests";
    }
    readMore(*child, machine_.drivers.clock.continuousSeconds() + 0.01); // its last words, if it has ended
    const std::string words = lastLineOf(errorTail_);
    setFault(!words.empty() ? words : why);
    return std::nullopt;
}

void LumixHelper::stop() {
    if (Child child = takeChild()) {
        child->terminate();
        q_->post([child = std::move(child)] { child->waitForEnd(endLimit); }); // and kills what is left
    }
}

void LumixHelper::quit(base::Seconds limit) {
    if (running())
        request({{"cmd", "quit"}}, limit);
    if (const Child child = takeChild()) {
        if (!child->waitForEnd(base::Seconds{0.1})) {
            child->terminate();
            child->waitForEnd(base::Seconds{1});
        }
    }
}

void LumixHelper::kill() {
    if (const Child child = this->child())
        child->kill();
}

} // namespace zenka::cameras
