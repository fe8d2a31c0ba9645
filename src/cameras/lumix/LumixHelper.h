#pragma once

#include "cameras/lumix/LumixMachine.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace zenka::cameras {

/// The process that holds a Lumix body's USB device and speaks lines of JSON. It is started for the address
/// of one body and is not started again by itself when it has ended.
///
/// What waits runs on queue(), one request at a time; before the queue is used also on the thread that made
/// it, as long as that is not the main one.
class LumixHelper {
public:
    using Json = nlohmann::json;

    LumixHelper(const LumixMachine& machine, int bus, int address);
    ~LumixHelper();
    LumixHelper(const LumixHelper&) = delete;
    LumixHelper& operator=(const LumixHelper&) = delete;

    int bus() const { return bus_; }
    int address() const { return address_; }
    ports::WorkQueue& queue() { return *q_; }

    /// False when there is no helper, or none that can be started; fault() says why.
    bool start();
    /// What went wrong last, in the words of the system or the helper; empty for nothing. Any thread.
    std::string fault() const;

    bool running();

    /// One request and its answer, an object. Nothing when none came within the time, or none that can be
    /// read. An answer that comes too late is dropped.
    std::optional<Json> request(const Json& dictionary, base::Seconds timeout);

    /// Asks the process to let the body go, and sees to it that it ends. Any thread; does not wait.
    void stop();
    /// The same with a word before it, and waits for the end, no longer than the limit and a second.
    void quit(base::Seconds limit);
    /// Ends it at once. Any thread.
    void kill();

private:
    using Child = std::shared_ptr<ports::ChildProcess>;

    Child child() const;
    Child takeChild();
    void setFault(std::string fault);
    bool nextLine(std::string& line);
    bool readMore(ports::ChildProcess& child, double deadline);
    void dropStale(ports::ChildProcess& child);

    const LumixMachine machine_;
    const int bus_;
    const int address_;
    std::shared_ptr<ports::WorkQueue> q_;
    std::string outBuf_;    // what came and is no whole line yet
    std::string errorTail_; // the last that it complained of
    int answersOwed_ = 0;   // to requests that were given up; each request gets one, in order

    mutable std::mutex mutex_;
    Child proc_;
    std::string fault_;
};

} // namespace zenka::cameras
