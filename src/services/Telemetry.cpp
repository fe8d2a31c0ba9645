#include "services/Telemetry.h"

#include "base/CivilTime.h"
#include "base/Uuid.h"
#include "services/ServiceAddress.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <atomic>
#include <utility>

namespace zenka::services {

namespace {

using Json = nlohmann::json;

constexpr std::size_t mostOnTheirWay = 4;
constexpr std::size_t mostWaiting = 200; ///< in memory; the rest waits on the disk
constexpr base::Seconds uploadTimeout{60};
constexpr base::Seconds firstPause{30};
constexpr base::Seconds longestPause{3600};
constexpr base::Seconds gathering{1}; ///< of records to be cleared, into one rewrite

/// Whatever bytes a driver may have put in.
std::string textOf(const Json& json, int indent = -1) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

Json eventOf(const std::string& event, const Json& props, base::Instant at, const std::string& id) {
    return {{"event", event},
            {"props", props.is_object() ? props : Json::object()},
            {"ts", base::formatTime("%Y-%m-%dT%H:%M:%E3SZ", at, absl::UTCTimeZone())},
            {"id", id}};
}

Json bodyOf(const std::string& appVersion, const ports::MachineName& machine, Json event) {
    return {{"app_version", appVersion},
            {"os", machine.system},
            {"mac_model", machine.product},
            {"events", Json::array({std::move(event)})}};
}

} // namespace

struct Telemetry::Store {
    Store(ports::Files& files, const std::filesystem::path& folder, ports::MachineNames& machineNames)
        : spool(files, folder), names(machineNames) {}

    /// Somebody wants the events; any thread.
    std::atomic<bool> on = false;

    TelemetrySpool spool; // this and what follows belongs to the queue
    ports::MachineNames& names;
    std::optional<ports::MachineName> machine;

    const ports::MachineName& machineName() {
        if (!machine)
            machine = names.read();
        return *machine;
    }
};

Telemetry::Telemetry(const ports::Ports& ports, ports::MachineNames& names, std::string appVersion)
    : ports_(ports), appVersion_(std::move(appVersion)),
      store_(std::make_shared<Store>(ports.files, ports.folders.applicationSupport(), names)),
      queue_(ports.queues.serial("zenka.telemetry.spool")), pause_(firstPause) {
    followSettings();
}

Telemetry::~Telemetry() {
    stopSending();
    // What the service has is not to be sent again by the next process.
    if (!cleared_.empty())
        queue_->post([store = store_, ids = cleared_] { store->spool.remove(ids); });
}

template <typename Work>
void Telemetry::onQueue(Work work) {
    queue_->post([store = store_, work = std::move(work)]() mutable { work(*store); });
}

// --- what is kept

void Telemetry::start() {
    started_ = true;
    onQueue([&loop = ports_.loop, version = appVersion_, now = ports_.clock.now(),
             show = lifeline_.guard([this](const std::string& text) { example_.set(text); })](Store& store) {
        const Json event = eventOf("run_complete",
                                   {{"kind", "simulated"},
                                    {"complete", true},
                                    {"bodies", 2},
                                    {"frames", 412},
                                    {"ok", 409},
                                    {"dropped", 3},
                                    {"drop_rate", 3.0 / 412},
                                    {"backends", {"gphoto2"}},
                                    {"models", {"Nikon Z 8", "Nikon Z 8"}},
                                    {"asymmetry", ""},
                                    {"thermal", "nominal"}},
                                   now, base::Uuid::fresh().text());
        loop.post([show, text = textOf(bodyOf(version, store.machineName(), event), 2)] { show(text); });
    });
    followSettings();
    flush();
}

void Telemetry::track(const std::string& event, const Json& props) {
    if (!store_->on)
        return;
    try {
        const std::string id = base::Uuid::fresh().text();
        onQueue([&loop = ports_.loop, version = appVersion_, id,
                 event = eventOf(event, props, ports_.clock.now(), id),
                 kept = lifeline_.guard([this](Record record) { take({std::move(record)}); })](Store& store) {
            const Record record{.id = id, .body = textOf(bodyOf(version, store.machineName(), event))};
            // A no may have come between.
            if (store.on && store.spool.append(record))
                loop.post([kept, record] { kept(record); });
        });
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): nobody is to be disturbed
    }
}

void Telemetry::appendSpool(const std::string& id, const std::string& body) {
    onQueue([record = Record{.id = id, .body = body}](Store& store) {
        if (store.on)
            store.spool.append(record);
    });
}

void Telemetry::readSpool(std::function<void(std::vector<Record>)> arrived) {
    onQueue([&loop = ports_.loop, arrived = lifeline_.guard(std::move(arrived))](Store& store) {
        loop.post([arrived, records = store.spool.read()] { arrived(records); });
    });
}

void Telemetry::clear(const std::string& id) {
    cleared_.insert(id);
    if (std::exchange(clearing_, true))
        return;
    ports_.loop.after(gathering, lifeline_.guard([this] { forgetCleared(); }));
}

void Telemetry::forgetCleared() {
    onQueue([&loop = ports_.loop, ids = cleared_, done = lifeline_.guard([this](const auto& gone, bool ok) {
        clearing_ = false;
        for (const std::string& id : gone) {
            if (ok) {
                cleared_.erase(id);
                known_.erase(id);
            }
        }
        // A disk that does not let it gets another try with the next one.
        if (ok && !cleared_.empty())
            clear(*cleared_.begin());
    })](Store& store) { loop.post([done, ids, ok = store.spool.remove(ids)] { done(ids, ok); }); });
}

// --- who allows it

void Telemetry::allow(bool allowed) {
    ports_.settings.setFlag(telemetryAllowedKey, allowed);
    followSettings();
    if (!allowed)
        onQueue([](Store& store) { store.spool.clear(); });
}

void Telemetry::followSettings() {
    const bool on = ports_.settings.flag(telemetryAllowedKey).value_or(false) &&
                    !serviceAddress(ports_.settings, "").empty();
    const bool was = store_->on.exchange(on);
    if (!on)
        stopSending();
    else if (!was && started_)
        flush();
}

void Telemetry::hold(bool held) {
    held_ = held;
    sendNext();
}

void Telemetry::stopSending() {
    for (const auto& [id, request] : onTheirWay_)
        ports_.http.cancel(request);
    onTheirWay_.clear();
    waiting_.clear();
    known_ = cleared_;
    stopBackingOff();
}

// --- what is sent

void Telemetry::flush() {
    if (!store_->on)
        return;
    std::set<std::string> onTheirWay;
    for (const auto& [id, request] : onTheirWay_)
        onTheirWay.insert(id);
    onQueue([onTheirWay = std::move(onTheirWay)](Store& store) { store.spool.tidyOutbox(onTheirWay); });
    readSpool([this](std::vector<Record> records) { take(std::move(records)); });
}

void Telemetry::take(std::vector<Record> records) {
    if (!store_->on)
        return;
    for (Record& record : records) {
        more_ = more_ || waiting_.size() >= mostWaiting;
        if (more_)
            break;
        if (known_.insert(record.id).second)
            waiting_.push_back(std::move(record));
    }
    sendNext();
}

void Telemetry::sendNext() {
    const bool resting = held_ || retry_ != ports::MainLoop::TimerId::none;
    while (!resting && !waiting_.empty() && onTheirWay_.size() < mostOnTheirWay) {
        const Record record = std::move(waiting_.front());
        waiting_.pop_front();
        onTheirWay_[record.id] = ports::HttpClient::RequestId::none;
        upload(record);
    }
    if (!resting && waiting_.empty() && onTheirWay_.empty() && std::exchange(more_, false))
        flush();
}

void Telemetry::upload(const Record& record) {
    onQueue(
        [&loop = ports_.loop, record, go = lifeline_.guard([this, record] { send(record); })](Store& store) {
            if (store.on)
                store.spool.putOut(record);
            loop.post(go);
        });
}

void Telemetry::send(const Record& record) {
    const auto place = onTheirWay_.find(record.id);
    if (place == onTheirWay_.end())
        return; // it was called off
    ports::HttpRequest request;
    request.method = "POST";
    request.url = serviceAddress(ports_.settings, "/api/telemetry");
    request.headers = {{"Content-Type", "application/json"}};
    request.body = record.body;
    request.timeout = uploadTimeout;
    place->second = ports_.http.send(
        std::move(request),
        lifeline_.guard([this, record](const ports::HttpReply& reply) { answered(record, reply); }));
}

void Telemetry::answered(const Record& record, const ports::HttpReply& reply) {
    onTheirWay_.erase(record.id);
    if (reply.ok()) {
        stopBackingOff();
        clear(record.id);
    } else {
        // Behind the others, so that one that the service never takes does not stand in their way.
        waiting_.push_back(record);
        onQueue([id = record.id](Store& store) { store.spool.takeIn(id); });
        backOff();
    }
    sendNext();
}

void Telemetry::backOff() {
    if (retry_ != ports::MainLoop::TimerId::none)
        return;
    retry_ = ports_.loop.after(pause_, lifeline_.guard([this] {
        retry_ = ports::MainLoop::TimerId::none;
        more_ = false;
        flush();
    }));
    pause_ = std::min(pause_ * 2, longestPause);
}

void Telemetry::stopBackingOff() {
    ports_.loop.cancel(retry_);
    retry_ = ports::MainLoop::TimerId::none;
    pause_ = firstPause;
}

} // namespace zenka::services
