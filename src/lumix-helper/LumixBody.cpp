#include "lumix-helper/LumixBody.h"

#include "cameras/lumix/LumixEncode.h"

#include <absl/strings/str_format.h>

#include <algorithm>

namespace zenka::lumixHelper {

namespace {

namespace LumixPTP = cameras::LumixPTP;

constexpr Milliseconds infoLimit{2000};
constexpr Milliseconds settingLimit{3000};
constexpr Milliseconds triggerLimit{8000}; ///< a body that writes to its card answers late
constexpr Milliseconds askLimit{2000};
constexpr Milliseconds releaseLimit{500};

bool has(const std::vector<std::uint16_t>& list, std::uint16_t code) {
    return std::ranges::count(list, code) > 0;
}

/// The values of the standard's exposure program.
std::string programName(std::uint32_t program) {
    constexpr const char* names[] = {"M", "P", "A", "S", "Creative", "Action", "Portrait"};
    return program >= 1 && program <= std::size(names) ? names[program - 1]
                                                       : absl::StrFormat("mode 0x%04x", program);
}

} // namespace

LumixBody::Link LumixBody::linkOf(const PtpAnswer& answer) {
    if (!answer.answered())
        told_.clear(); // who knows what it took
    switch (answer.kind) {
    case PtpAnswer::Kind::answered: return Link::answered;
    case PtpAnswer::Kind::gone: return Link::gone;
    case PtpAnswer::Kind::stopped: return Link::stopped;
    case PtpAnswer::Kind::silent: break;
    }
    return Link::silent;
}

/// Opens the session where it is not open, and has another look at a body that would not be driven before.
LumixBody::Link LumixBody::ensureOpen() {
    if (session_.isOpen() && inPcMode_)
        return Link::answered;
    if (session_.isOpen())
        session_.close();
    told_.clear();
    inPcMode_ = false;
    const PtpAnswer opened = session_.open();
    if (!opened.ok())
        return linkOf(opened);
    const PtpAnswer answer = session_.transact(ptp::getDeviceInfo, {}, infoLimit);
    if (!answer.answered())
        return linkOf(answer);
    info_ = ptp::parseDeviceInfo(answer.data).value_or(ptp::DeviceInfo{});
    frames_.expect(info_.events);
    inPcMode_ =
        has(info_.operations, LumixPTP::setProperty) && has(info_.operations, LumixPTP::captureOperation);
    return Link::answered;
}

/// False where the body refuses a setting; the others are sent all the same.
bool LumixBody::apply(const Order& order, Link& link) {
    bool taken = true;
    const bool bulb = order.bulbSec > 0;
    if (order.full)
        told_.clear();
    for (const auto& [name, value, uint16] :
         cameras::LumixEncode::settings(order.iso, order.aperture, order.shutterSec, bulb)) {
        if (const auto before = told_.find(name); before != told_.end() && before->second == value)
            continue;
        const PtpAnswer answer = session_.transact(LumixPTP::setProperty, {name},
                                                   LumixPTP::setPayload(name, value, uint16), settingLimit);
        link = linkOf(answer);
        if (link != Link::answered)
            return false; // a silent body would cost the next frame as well
        if (answer.ok())
            told_[name] = value;
        else
            told_.erase(name);
        taken = taken && answer.ok();
    }
    return taken;
}

std::uint16_t LumixBody::act(std::uint32_t action, Milliseconds limit, Link& link) {
    const PtpAnswer answer = session_.transact(LumixPTP::captureOperation, {action}, limit);
    link = linkOf(answer);
    return answer.code;
}

/// Holds a bulb open. A wish to end cuts it short.
LumixBody::Link LumixBody::hold(double seconds) {
    PtpTransport& transport = session_.transport();
    const double end = transport.nowMs() + seconds * 1000;
    for (double left = end - transport.nowMs(); left > 0; left = end - transport.nowMs()) {
        const auto span = Milliseconds(std::max<Milliseconds::rep>(1, static_cast<Milliseconds::rep>(left)));
        const auto fault = transport.wait(span);
        if (fault == PtpTransport::Fault::gone)
            return Link::gone;
        if (fault == PtpTransport::Fault::stopped) {
            transport.beginRelease();
            return Link::stopped;
        }
        if (fault != PtpTransport::Fault::none)
            break;
    }
    return Link::answered;
}

LumixBody::Fired LumixBody::fire(const Order& order) {
    PtpTransport& transport = session_.transport();
    const double begin = transport.nowMs();
    Fired result{.bulb = order.bulbSec > 0};
    const auto done = [&](bool fired) {
        result.fired = fired;
        result.latencyMs = transport.nowMs() - begin;
        if (!fired)
            told_.clear();
        return result;
    };
    takeEvents(); // which also tells whether a dial was turned
    result.link = ensureOpen();
    if (result.link != Link::answered)
        return done(false);
    result.setOk = apply(order, result.link);
    if (result.link != Link::answered)
        return done(false);
    frames_.noteFired(); // its events may come before the answer
    const std::uint16_t code =
        act(result.bulb ? LumixPTP::bulbStart : LumixPTP::singleShot, triggerLimit, result.link);
    if (code != LumixPTP::success) {
        frames_.noteNotFired();
        return done(false);
    }
    if (!result.bulb)
        return done(true);
    const Link held = hold(order.bulbSec);
    if (held == Link::gone) {
        result.link = held;
        return done(false);
    }
    const std::uint16_t stopped =
        act(LumixPTP::bulbStop, held == Link::stopped ? releaseLimit : triggerLimit, result.link);
    return done(stopped == LumixPTP::success && held == Link::answered);
}

std::optional<std::uint32_t> LumixBody::property(std::uint16_t code, Link& link) {
    if (link != Link::answered || !has(info_.properties, code))
        return std::nullopt;
    const PtpAnswer answer = session_.transact(ptp::getDevicePropValue, {code}, askLimit);
    link = linkOf(answer);
    return answer.ok() ? ptp::number(answer.data) : std::nullopt;
}

LumixBody::Status LumixBody::status() {
    constexpr std::uint32_t burst = 2;
    takeEvents();
    Status status{.link = ensureOpen()};
    status.pcMode = inPcMode_;
    if (status.link != Link::answered || !session_.isOpen())
        return status;
    if (!has(info_.properties, ptp::batteryLevel) && !has(info_.properties, ptp::stillCaptureMode)) {
        // any question is a sign of life
        status.link = linkOf(session_.transact(ptp::getDeviceInfo, {}, askLimit));
        return status;
    }
    if (const auto level = property(ptp::batteryLevel, status.link); level && *level <= 100)
        status.battery = static_cast<int>(*level);
    if (const auto mode = property(ptp::stillCaptureMode, status.link))
        status.driveBurst = *mode == burst;
    return status;
}

LumixBody::Dials LumixBody::dials() {
    constexpr std::uint32_t manual = 1;
    constexpr std::uint32_t automatic = 0xFFFF;
    Dials dials{.status = status()};
    Link& link = dials.status.link;
    if (const auto program = property(ptp::exposureProgram, link)) {
        dials.isManual = *program == manual;
        dials.modeGuess = programName(*program);
    }
    if (const auto aperture = property(ptp::fNumber, link)) {
        dials.apertureKnown = true;
        dials.manualLens = *aperture == 0 || *aperture == automatic;
    }
    if (const auto iso = property(ptp::exposureIndex, link))
        dials.autoIso = *iso == automatic;
    return dials;
}

void LumixBody::takeEvents() {
    for (const ptp::Container& event : session_.takeEvents()) {
        frames_.note(event);
        if (event.code == ptp::devicePropChanged)
            told_.clear();
    }
}

std::optional<int> LumixBody::confirmed() {
    takeEvents();
    return frames_.total();
}

void LumixBody::release() {
    session_.transport().beginRelease();
    session_.close();
}

} // namespace zenka::lumixHelper
