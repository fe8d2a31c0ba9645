#include "rig/links/CameraDetector.h"

#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <atomic>
#include <optional>
#include <set>
#include <utility>

namespace zenka::rig {

namespace {

constexpr base::Seconds afterRelease{0.5}; ///< for the bus to come to rest
constexpr base::Seconds afterListing{0.7};

constexpr char beginning[] = "Detecting cameras (LUMIX-PTP + Sony native SDK + universal driver)…";
constexpr char nothingFound[] =
    "No camera found. Connect a body in PC / PTP (tether) mode and quit any vendor tether app (LUMIX Tether, "
    "Imaging Edge, EOS Utility, etc.), then Detect.";
constexpr char sonyFallbackAdvice[] =
    "⚠️ A Sony is on the fallback (universal) driver, which is slow and can spray a burst on a single "
    "fire. "
    "For full-speed native control, set the camera's USB connection mode to Remote Shooting (older bodies "
    "call it PC Remote) — not MTP, Mass Storage, or USB Streaming — then Detect again.";
constexpr char claimedAlone[] =
    "Canon claimed natively — skipping the universal-driver scan (it would sever the Canon session). "
    "Nikon/Fuji/Olympus bodies: detect them separately with the Canon unplugged.";

} // namespace

/// What a pass carries from step to step on the queue. It outlives a detector that goes meanwhile.
struct CameraDetector::Pass : std::enable_shared_from_this<Pass> {
    Families families;
    std::vector<CameraFamily::MakeDriver> found;
    std::shared_ptr<ports::WorkQueue> queue;
    CameraFamily::Tell tell;
    std::function<void(const std::string&)> say; ///< the step, for the operator
    std::function<void()> done;
    std::atomic<bool> cancelled = false;

    void then(base::Seconds pause, void (Pass::*next)()) {
        queue->postAfter(pause, [self = shared_from_this(), next] {
            if (self->cancelled)
                self->done();
            else
                (*self.*next)();
        });
    }

    void askThoseThatWorkAlone() {
        for (const auto& family : families) {
            if (family->turn() != CameraFamily::Turn::alone || cancelled)
                continue;
            say("Looking for " + family->backend() + " bodies");
            connectAll(*family, family->enumerate({}, tell));
            if (!found.empty()) {
                tell(claimedAlone);
                done();
                return;
            }
        }
        then(base::Seconds{0}, &Pass::list);
    }

    void list() {
        // Not before: ending a service that looks at a body can end the session of one that works alone.
        for (const auto& family : families)
            servicesOff.push_back(std::make_unique<ServicesOff>(family));
        say("Listing the USB bus");
        if (const auto universal = universalFamily())
            listed = universal->enumerate({}, tell);
        seen = listed;
        then(afterListing, &Pass::askTheMakers);
    }

    void askTheMakers() {
        for (const auto& family : families) {
            if (family->turn() != CameraFamily::Turn::beforeOthers || cancelled)
                continue;
            std::vector<FoundBody> its;
            std::ranges::copy_if(listed, std::back_inserter(its),
                                 [&](const FoundBody& body) { return family->takes(body); });
            if (its.empty())
                continue;
            say("Asking " + family->backend());
            const std::vector<FoundBody> left = connectAll(*family, family->enumerate(its, tell));
            // What the family has taken the universal driver must not touch.
            std::erase_if(listed, [&](const FoundBody& body) {
                return family->takes(body) && std::ranges::find(left, body) == left.end();
            });
            const std::string reason = left.empty() ? std::string() : family->explainFallback();
            if (!reason.empty())
                tell(reason);
            if (std::ranges::any_of(left, &FoundBody::isSony))
                sonyFallbackReason = reason;
        }
        then(base::Seconds{0}, &Pass::takeTheRest);
    }

    void takeTheRest() {
        if (const auto universal = universalFamily()) {
            const std::vector<FoundBody> left = connectAll(*universal, listed);
            sonyOnFallback = std::ranges::any_of(listed, [&](const FoundBody& body) {
                return body.isSony && std::ranges::find(left, body) == left.end();
            });
        }
        done();
    }

    /// Gives back those that could not be held.
    std::vector<FoundBody> connectAll(CameraFamily& family, const std::vector<FoundBody>& bodies) {
        std::vector<FoundBody> left;
        for (const FoundBody& body : bodies) {
            if (cancelled)
                break;
            say("Connecting " + body.model);
            if (auto make = family.connect(body, tell))
                found.push_back(std::move(make));
            else
                left.push_back(body);
        }
        return left;
    }

    std::shared_ptr<CameraFamily> universalFamily() const {
        const auto one = std::ranges::find(families, CameraFamily::Turn::universal,
                                           [](const auto& family) { return family->turn(); });
        return one == families.end() ? nullptr : *one;
    }

    std::vector<std::unique_ptr<ServicesOff>> servicesOff;
    std::vector<FoundBody> listed; ///< and not taken yet
    std::vector<FoundBody> seen;
    bool sonyOnFallback = false;
    std::string sonyFallbackReason;
};

CameraDetector::CameraDetector(const ports::Ports& ports, RigLog& log, CameraRoster& roster,
                               const Transport& transport, Families families)
    : ports_(ports), log_(log), roster_(roster), transport_(transport), families_(std::move(families)),
      queue_(ports.queues.serial("detect")) {
}

CameraDetector::~CameraDetector() {
    if (pass_) {
        pass_->cancelled = true;
    }
}

std::shared_ptr<CameraFamily> CameraDetector::familyOf(const std::string& backend) const {
    const auto one =
        std::ranges::find(families_, backend, [](const auto& family) { return family->backend(); });
    return one == families_.end() ? nullptr : *one;
}

void CameraDetector::useRealCameras() {
    roster_.setCameraMode(CameraMode::live);
    log_.pushLog("Cameras: LIVE. Connect bodies in PC/PTP mode, then Detect.");
}

void CameraDetector::detectCameras() {
    if (pass_) {
        log_.pushLog("Detect is running already. Wait for it or cancel it.");
        return;
    }
    const bool realBodies = std::ranges::any_of(
        roster_.cameras(), [](const auto& camera) { return camera->isReal() && camera->connected(); });
    if (transport_.runActive() && realBodies) {
        log_.pushLog(
            "A run is on, and Detect would take its cameras out of its hands. A body that is lost comes "
            "back by itself; to detect others, pause or leave the run first.");
        return;
    }
    passBegan_.emit();
    detecting_.set(true);
    pass_ = std::make_shared<Pass>();
    // A maker's link that never came back from its last look would not come back from another.
    for (const auto& family : families_) {
        const std::string advice =
            family->turn() == CameraFamily::Turn::universal ? std::string() : family->stuckAdvice();
        if (advice.empty())
            pass_->families.push_back(family);
        else
            log_.pushLog(advice);
    }
    log_.pushLog(beginning);
    pass_->queue = queue_;
    step_.set("Letting go of the bodies from before");
    for (const auto& camera : roster_.cameras()) {
        if (camera->isReal())
            camera->suspend();
    }
    ports::MainLoop& loop = ports_.loop;
    pass_->tell = [&loop, tell = lifeline_.guard([this](const std::string& text) { log_.pushLog(text); })](
                      std::string text) { loop.post([tell, text = std::move(text)] { tell(text); }); };
    pass_->say = [&loop, say = lifeline_.guard([this](const std::string& text) { step_.set(text); })](
                     const std::string& text) { loop.post([say, text] { say(text); }); };
    pass_->done = [&loop, weak = std::weak_ptr(pass_),
                   arrive = lifeline_.guard([this](const std::shared_ptr<Pass>& pass) {
                       endPass();
                       if (!pass->cancelled)
                           publish(*pass);
                       else // what it has connected goes with it, and those of before are back
                           for (const auto& camera : roster_.cameras())
                               camera->resume();
                   })] { loop.post([arrive, pass = weak.lock()] { arrive(pass); }); };
    pass_->then(afterRelease, &Pass::askThoseThatWorkAlone);
}

void CameraDetector::cancelDetect() {
    if (!pass_ || pass_->cancelled.exchange(true))
        return;
    log_.pushLog("Stopping detect…");
    step_.set("Stopping after this step");
}

void CameraDetector::endPass() {
    pass_->servicesOff.clear();
    pass_.reset();
    step_.set("");
    detecting_.set(false);
}

void CameraDetector::publish(const Pass& pass) {
    std::vector<CameraRoster::Camera> found;
    found.reserve(pass.found.size());
    for (const auto& make : pass.found)
        found.push_back(make());
    hubs_.clear();
    for (const FoundBody& body : pass.seen) {
        if (!body.serial.empty() && !body.hub.empty())
            hubs_[body.serial] = body.hub;
    }
    std::map<std::string, std::string> idsBefore; // by serial
    for (const auto& camera : roster_.cameras()) {
        if (camera->isReal() && !camera->serial().empty())
            idsBefore[camera->serial()] = camera->id();
    }
    for (const auto& camera : roster_.cameras()) {
        if (camera->isReal())
            camera->disconnect();
    }
    if (!found.empty())
        roster_.setCameraMode(CameraMode::live);
    roster_.setRealCameras(found);
    for (const auto& camera : found) {
        const auto before = idsBefore.find(camera->serial());
        if (before != idsBefore.end() && before->second != camera->id())
            carried_.emit(before->second, camera->id());
    }
    sonyFallbackReason_.set(pass.sonyFallbackReason);
    tellWhatWasFound(found, pass.sonyOnFallback);
    published_.emit();
}

void CameraDetector::tellWhatWasFound(const std::vector<CameraRoster::Camera>& found, bool sonyOnFallback) {
    if (found.empty()) {
        log_.pushLog(nothingFound);
        return;
    }
    std::string list;
    std::set<std::string> serials;
    std::set<std::string> shared;
    for (const auto& camera : found) {
        list += (list.empty() ? "" : ", ") + roster_.labelFor(*camera) + " (" + camera->backend() + ")";
        if (!camera->serial().empty() && !serials.insert(camera->serial()).second)
            shared.insert(camera->serial());
    }
    log_.pushLog(absl::StrFormat("Detected %d: %s.", static_cast<int>(found.size()), list));
    for (const std::string& serial : shared)
        log_.pushLog("⚠️ Two bodies report the serial number " + serial +
                     ", so their labels hold for this session only, and a lost one cannot be told from the "
                     "other. Label both now.");
    if (sonyOnFallback)
        log_.pushLog(sonyFallbackAdvice);
}

} // namespace zenka::rig
