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
    answerOwed_ = false;
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
    if (left <= 0)
        return false;
    const auto output = child.read(base::Seconds{left});
    outBuf_ += output.out;
    errorTail_ += output.err;
    if (errorTail_.size() > keptErrors)
        errorTail_.erase(0, errorTail_.size() - keptErrors);
    return !output.ended || !output.out.empty();
}

/// Drops what came in answer to a request that nobody waits for any more. A helper that repeats the id of a
/// request needs this not.
void LumixHelper::dropStale(ports::ChildProcess& child) {
    if (!std::exchange(answerOwed_, false))
        return;
    const auto output = child.read(base::Seconds{0});
    errorTail_ += output.err;
    outBuf_.clear();
}

std::optional<LumixHelper::Json> LumixHelper::request(Json dictionary, base::Seconds timeout) {
    const Child child = this->child();
    if (!child)
        return std::nullopt;
    dropStale(*child);
    const int id = ++lastRequest_;
    dictionary["id"] = id;
    const std::string line = dictionary.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
    const double deadline = machine_.drivers.clock.continuousSeconds() + timeout.count();
    std::string why;
    if (child->write(line, std::min(requestWriteLimit, timeout))) {
        do {
            for (std::string came; nextLine(came);) {
                Json answer = Json::parse(came, nullptr, false);
                if (!answer.is_object()) {
                    setFault("an answer that cannot be read");
                    return std::nullopt;
                }
                // one of another id answers a request that was given up
                if (const auto its = answer.find("id"); its == answer.end() || *its == id)
                    return answer;
            }
            if (outBuf_.size() > longestLine) {
                outBuf_.clear();
                setFault("an answer that does not end");
                return std::nullopt;
            }
        } while (readMore(*child, deadline));
        why = absl::StrFormat("no answer within %gs", timeout.count());
    } else {
        why = "it takes no requests";
    }
    answerOwed_ = true;
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
