#include "rig/machine/TimeSources.h"

#include "base/HttpDate.h"
#include "base/Text.h"
#include "rig/shared/SettingsKeys.h"

#include <string_view>
#include <utility>

namespace zenka::rig {

namespace {

constexpr base::Seconds checkLimit{5.0};
constexpr double publishPeriod = 2.0; // seconds
/// Asked where nothing else is set: the service that heights come from by default, so that no further party
/// hears of the program.
constexpr char usualServer[] = "https://api.open-meteo.com";

} // namespace

TimeSources::TimeSources(const ports::Ports& ports, RigLog& log)
    : ports_(ports), log_(log), gps_(ports.serialPorts, ports.queues, ports.loop, ports.clock) {
    const auto tell = [this](const auto&) { changed_.emit(); };
    clockSkewSeconds_.changed().connect(tell);
    gpsOffsetSeconds_.changed().connect(tell);
    gpsConnected_.changed().connect(tell);
    gpsFix_.changed().connect(tell);
    checking_.changed().connect(tell);
}

// --- the receiver

void TimeSources::startGPS() {
    gps_.start(
        {.onUpdate = [this](const gps::GPSFix& fix, std::optional<base::Instant> wall) { update(fix, wall); },
         .onConnectionChange = [this](bool connected) { connectionChanged(connected); },
         .onPassedOver = [this](const std::string& why) { log_.pushLog("🛰 " + why + "."); }});
}

void TimeSources::connectionChanged(bool connected) {
    if (connected) {
        gpsAcquiringSince_ = ports_.clock.now();
        log_.pushLog("🛰 Satellite receiver connected.");
    } else {
        gpsAcquiringSince_.reset();
        lastGPSStamp_.reset();
        lastGPSPublish_.reset();
        gpsOffsetSeconds_.set(std::nullopt);
        gpsFix_.set(std::nullopt);
        log_.pushLog("🛰 Satellite receiver gone.");
    }
    gpsConnected_.set(connected);
}

void TimeSources::update(const gps::GPSFix& fix, std::optional<base::Instant> wall) {
    // The views are not driven at the rate of the sentences.
    const double now = ports_.clock.uptimeSeconds();
    const auto& before = gpsFix_.get();
    const bool lockChanged = !before || before->hasFix != fix.hasFix;
    if (lockChanged || !lastGPSPublish_ || now - *lastGPSPublish_ >= publishPeriod) {
        lastGPSPublish_ = now;
        gpsFix_.set(fix);
    }
    if (!fix.hasFix) {
        gpsOffsetSeconds_.set(std::nullopt);
        if (!gpsAcquiringSince_)
            gpsAcquiringSince_ = ports_.clock.now();
    } else if (fix.utc && wall) {
        lastGPSStamp_ = wall;
        gpsAcquiringSince_.reset();
        gpsOffsetSeconds_.set((*wall - *fix.utc).count());
    }
}

// --- the server

std::string TimeSources::timeServer() const {
    if (const auto set = ports_.settings.text(settingsKeys::timeServer))
        return std::string(base::trimmed(*set));
    const std::string service(base::trimmed(ports_.settings.text(settingsKeys::serviceHost).value_or("")));
    return service.empty() ? usualServer : service;
}

void TimeSources::setTimeServer(const std::string& address) {
    ports_.settings.setText(settingsKeys::timeServer, std::string(base::trimmed(address)));
}

void TimeSources::checkClockSkew() {
    std::string server = timeServer();
    if (checking_.get() || server.empty())
        return;
    if (!server.ends_with('/'))
        server += '/';
    checking_.set(true);
    ports::HttpRequest request;
    request.method = "HEAD";
    request.url = server;
    request.headers = {{"Cache-Control", "no-cache"}};
    request.timeout = checkLimit;
    const base::Instant asked = ports_.clock.now();
    ports_.http.send(std::move(request), lifeline_.guard([this, asked](const ports::HttpReply& reply) {
        takeReply(reply, asked);
        checking_.set(false);
    }));
}

void TimeSources::takeReply(const ports::HttpReply& reply, base::Instant asked) {
    checkFault_.clear();
    if (reply.status == 0) {
        checkFault_ = "The time server could not be asked: " + reply.fault + ".";
        return;
    }
    const auto header = reply.headers.find("date");
    const auto date = header == reply.headers.end() ? std::nullopt : base::httpDate(header->second);
    if (date)
        clockSkewSeconds_.set((asked - *date).count());
    else
        checkFault_ = "The time server gave no date.";
}

TimeSources::ClockSource TimeSources::activeClockSource() const {
    if (gpsOffsetSeconds_.get())
        return ClockSource::gps;
    return clockSkewSeconds_.get() ? ClockSource::network : ClockSource::systemOnly;
}

} // namespace zenka::rig
