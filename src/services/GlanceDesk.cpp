#include "services/GlanceDesk.h"

#include "base/Text.h"
#include "base/TimeWords.h"
#include "rig/run/Countdown.h"
#include "services/GlancePage.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <random>
#include <string_view>
#include <utility>

namespace zenka::services {

namespace {

constexpr char reachKey[] = "zenka.glanceReach";
constexpr char secretKey[] = "zenka.glanceSecret";
constexpr int usualPort = 8412;
constexpr base::Seconds beatPeriod{1};
constexpr double tooNear = 0.1; ///< seconds to a frame or cue that are left to it
constexpr int mostPassedOver = 3;
constexpr std::size_t mostLines = 40;
constexpr std::size_t secretLetters = 20;

constexpr std::array<std::pair<GlanceDesk::Reach, const char*>, 3> words{
    {{GlanceDesk::Reach::off, "off"},
     {GlanceDesk::Reach::thisComputer, "computer"},
     {GlanceDesk::Reach::localNetwork, "network"}}};

/// 100 bits from the system's own source. No letter can be taken for another one when it is typed on a phone.
std::string freshSecret() {
    constexpr std::string_view alphabet = "abcdefghijkmnpqrstuvwxyz23456789";
    static_assert(alphabet.size() == 32);
    std::random_device device;
    std::string secret;
    while (secret.size() < secretLetters)
        secret += alphabet[device() % alphabet.size()];
    return secret;
}

template <typename Counts>
int countOf(const Counts& counts, const std::string& key) {
    const auto found = counts.find(key);
    return found == counts.end() ? 0 : found->second;
}

GlanceState::Body bodyOf(rig::RigModel& rig, const rig::CameraRoster::Camera& camera) {
    const std::string& id = camera->id();
    GlanceState::Body body{.label = rig.roster().labelFor(*camera),
                           .model = rig::CameraRoster::bareModel(camera->model())};
    body.fired = countOf(rig.outcomes().shotCounts(), id);
    body.dropped = countOf(rig.outcomes().drops(), id);
    body.trouble = rig.roster().isDisconnected(id) || !camera->connected();
    body.symbol = body.trouble ? "○" : "●";
    body.state = body.trouble ? "gone" : camera->isReal() ? "ready" : "simulated";
    if (const auto percent = rig.modes().of(id).batteryPercent)
        body.battery = absl::StrFormat("%d %%", *percent);
    return body;
}

GlanceState stateOf(rig::RigModel& rig) {
    const rig::SiteDesk& site = rig.site();
    const double now = rig.transport().clockNow();
    const rig::Countdown countdown = rig::countdownAt(site, now);
    GlanceState state{.live = rig.transport().live(),
                      .eclipse = site.eclipse().rec.shortName,
                      .time = site.fmtClock(now) + " " + base::tzAbbr(site.site().tzId, site.wallAt(now)),
                      .countdownTitle = countdown.title,
                      .countdown = countdown.text(),
                      .status = rig.transport().timingStatus().get(),
                      .nextShot = rig::nextShotText(rig.script(), rig.fireLoop().nextOffset(), now),
                      .skipped = rig.fireLoop().skippedCount().get()};
    if (rig.reconnect().showDisconnectAlarm().get())
        state.alarm = base::joined(rig.reconnect().disconnectedNames().get()) + " DISCONNECTED";
    if (const auto& circ = site.circ()) {
        for (const eclipse::ContactEvent& event : circ->events)
            state.contacts.push_back({.key = event.key,
                                      .time = site.fmtClock(event.tHours * 3600),
                                      .past = event.tHours * 3600 <= now});
    }
    for (const auto& camera : rig.roster().cameras())
        state.bodies.push_back(bodyOf(rig, camera));
    const auto& lines = rig.log().lines();
    state.log.assign(lines.begin(),
                     lines.begin() + static_cast<std::ptrdiff_t>(std::min(lines.size(), mostLines)));
    return state;
}

} // namespace

GlanceDesk::GlanceDesk(const ports::Ports& ports, ports::PageServer& pages, rig::RigModel& rig)
    : ports_(ports), pages_(pages), rig_(rig) {
}

GlanceDesk::~GlanceDesk() {
    ports_.loop.cancel(timer_);
    pages_.close();
}

void GlanceDesk::start() {
    const std::string kept = ports_.settings.text(reachKey).value_or("");
    const auto found =
        std::ranges::find(words, kept, [](const auto& each) { return std::string(each.second); });
    if (found == words.end() || found->first == Reach::off)
        return;
    reach_.set(found->first);
    listen();
}

void GlanceDesk::setReach(Reach reach) {
    if (reach == reach_.get())
        return;
    reach_.set(reach);
    ports_.settings.setText(
        reachKey, std::ranges::find(words, reach, [](const auto& each) { return each.first; })->second);
    listen();
}

void GlanceDesk::renewAddress() {
    ports_.settings.setText(secretKey, freshSecret());
    listen();
}

std::string GlanceDesk::secret() {
    std::string kept = ports_.settings.text(secretKey).value_or("");
    if (kept.size() != secretLetters) {
        kept = freshSecret();
        ports_.settings.setText(secretKey, kept);
    }
    return kept;
}

void GlanceDesk::listen() {
    ports_.loop.cancel(timer_);
    pages_.close();
    addresses_.set({});
    fault_.set({});
    if (reach_.get() == Reach::off)
        return;
    const std::string address = secret();
    const auto listening = pages_.listen({.secret = address,
                                          .wholeNetwork = reach_.get() == Reach::localNetwork,
                                          .port = usualPort,
                                          .silence = silentGlancePage()});
    if (listening.port == 0)
        return fault_.set("The page cannot be shown: " + listening.fault + ".");
    std::vector<std::string> found;
    found.reserve(listening.addresses.size());
    for (const std::string& host : listening.addresses)
        found.push_back(absl::StrFormat("http://%s:%d/%s", host, listening.port, address));
    if (found.empty())
        fault_.set("This computer is in no local network. Join one, or let a phone make one, and switch this "
                   "on again.");
    addresses_.set(std::move(found));
    pages_.publish(glancePage(stateOf(rig_)));
    timer_ = ports_.loop.every(beatPeriod, [this] { beat(); });
}

void GlanceDesk::beat() {
    if (rig_.transport().runActive() && rig_.timeToNextEvent() < tooNear && ++passedOver_ <= mostPassedOver)
        return;
    passedOver_ = 0;
    pages_.publish(glancePage(stateOf(rig_)));
}

} // namespace zenka::services
