#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/MachineNames.h"
#include "ports/Ports.h"
#include "services/TelemetrySpool.h"

#include <nlohmann/json_fwd.hpp>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zenka::services {

/// The setting of whether the user lets usage reports be sent; unset as long as nobody has asked.
inline constexpr char telemetryAllowedKey[] = "zenka.telemetryAllowed";

/// Usage reports: what the program has to tell of itself is kept on the disk and sent to the service when
/// there is a network. Nothing is kept or sent without the user's yes and the address of a service. No fault
/// of a disk or a network ever gets out of here. Main thread, but for track().
class Telemetry {
public:
    /// The ports and the names outlive it.
    Telemetry(const ports::Ports& ports, ports::MachineNames& names, std::string appVersion);
    Telemetry(const Telemetry&) = delete;
    Telemetry& operator=(const Telemetry&) = delete;
    ~Telemetry();

    /// Sends what an earlier process has left behind.
    void start();

    /// Keeps an event and sends it by and by. The properties are a JSON object. Any thread; never waits.
    void track(const std::string& event, const nlohmann::json& props);

    /// Sends what is kept and is not on its way.
    void flush();

    /// Forgets a record that the service has.
    void clear(const std::string& id);

    /// Keeps a record. The body is a JSON object.
    void appendSpool(const std::string& id, const std::string& body);
    /// Gives what is kept, oldest first.
    void readSpool(std::function<void(std::vector<TelemetrySpool::Record>)> arrived);

    /// The user's yes or no. A no also deletes what is kept.
    void allow(bool allowed);
    /// The user's yes or no, or the address of the service, may be another now.
    void followSettings();
    /// Nothing is sent while held, as a run has the computer to itself.
    void hold(bool held);

    /// What is sent for an event, as an example, in lines for people.
    const base::Published<std::string>& example() const { return example_; }

private:
    using Record = TelemetrySpool::Record;
    struct Store; // what the queue works on

    /// Does a piece of work on the queue.
    template <typename Work>
    void onQueue(Work work);
    void take(std::vector<Record> records);
    void sendNext();
    void upload(const Record& record);
    void send(const Record& record);
    void answered(const Record& record, const ports::HttpReply& reply);
    void backOff();
    void stopBackingOff();
    void forgetCleared();
    void stopSending();

    const ports::Ports& ports_;
    const std::string appVersion_;
    const std::shared_ptr<Store> store_;
    std::shared_ptr<ports::WorkQueue> queue_;
    bool started_ = false;
    bool held_ = false;
    std::deque<Record> waiting_;
    bool more_ = false;                                              ///< wait on the disk than in memory
    std::map<std::string, ports::HttpClient::RequestId> onTheirWay_; ///< by id of the record
    std::set<std::string> known_;   ///< ids that wait, are on their way or are being cleared
    std::set<std::string> cleared_; ///< ids that are still to be taken out of the file
    bool clearing_ = false;
    base::Seconds pause_;
    ports::MainLoop::TimerId retry_ = ports::MainLoop::TimerId::none;
    base::Published<std::string> example_;
    base::Lifeline lifeline_;
};

} // namespace zenka::services
