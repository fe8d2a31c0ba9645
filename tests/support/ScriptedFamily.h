#pragma once

#include "rig/links/CameraFamily.h"
#include "support/ScriptedCamera.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zenka::test {

/// A family whose bus holds what a test plugs in. Each connection makes a new driver.
class ScriptedFamily final : public rig::CameraFamily {
public:
    explicit ScriptedFamily(std::string backend = "gphoto2", Turn turn = Turn::universal)
        : backend_(std::move(backend)), turn_(turn) {}

    std::vector<rig::FoundBody> bus;
    std::set<std::string> refusing;                       ///< serials that cannot be held
    std::function<void(const ScriptedCamera&)> onCapture; ///< of each body it makes
    std::function<void(const std::string& id)> onRelease; ///< before a driver is let go of for good
    std::string fallback;
    std::string stuck;
    int between = 1;
    int holds = 0;                  ///< of the desktop's services, kept away
    std::string takesModel;         ///< empty: all
    std::vector<std::string> calls; ///< in order, shared by the families of a test where it wants so
    std::vector<std::string>* shared = nullptr;
    std::map<std::string, std::shared_ptr<ScriptedCamera>> made; ///< the last driver by serial

    void plugIn(const std::string& serial, const std::string& model = "Z8",
                const std::string& port = "usb:001,002") {
        bus.push_back({.model = model, .port = port, .serial = serial, .hub = ""});
    }
    void pull(const std::string& serial) {
        std::erase_if(bus, [&](const auto& body) { return body.serial == serial; });
    }

    std::string backend() const override { return backend_; }
    Turn turn() const override { return turn_; }
    bool takes(const rig::FoundBody& body) const override {
        return takesModel.empty() || body.model.find(takesModel) != std::string::npos;
    }
    std::vector<rig::FoundBody> enumerate(const std::vector<rig::FoundBody>& listed, const Tell&) override {
        note("enumerate");
        return listed.empty() ? bus : listed;
    }
    MakeDriver connect(const rig::FoundBody& body, const Tell&) override {
        note("connect " + body.serial);
        if (refusing.contains(body.serial))
            return {};
        auto camera = std::make_shared<ScriptedCamera>(
            backend_ + "-" + body.serial + "-" + std::to_string(++number_), body.model);
        camera->serialNumber = body.serial;
        camera->family = backend_;
        camera->onCapture = onCapture;
        camera->portName = body.port;
        return [this, camera] {
            made[camera->serial()] = camera;
            return camera;
        };
    }
    std::string explainFallback() const override { return fallback; }
    void release(const Camera& camera) override {
        note("release " + camera->serial());
        if (onRelease)
            onRelease(camera->id());
        camera->disconnect();
    }
    std::vector<Rebound> rebind(const std::vector<rig::DownBody>& down, const Tell& tell) override {
        note("rebind");
        std::vector<Rebound> back;
        for (const rig::DownBody& wanted : down) {
            const auto body = std::ranges::find(bus, wanted.serial, &rig::FoundBody::serial);
            if (body == bus.end())
                continue;
            if (auto make = connect(*body, tell))
                back.push_back({.id = wanted.id, .make = std::move(make)});
        }
        return back;
    }
    std::vector<std::string> goneFromBus(const std::vector<rig::HeldBody>& held) override {
        std::vector<std::string> gone;
        for (const rig::HeldBody& body : held) {
            const bool there = std::ranges::any_of(bus, [&](const rig::FoundBody& found) {
                return found.serial == body.serial && found.port == body.port;
            });
            if (!there)
                gone.push_back(body.id);
        }
        return gone;
    }
    int pollsBetweenScans() const override { return between; }
    std::string stuckAdvice() const override { return stuck; }
    void holdServicesOff() override { ++holds; }
    void letServicesOn() override { --holds; }

    int count(const std::string& call) const { return static_cast<int>(std::ranges::count(calls, call)); }

private:
    void note(const std::string& call) {
        calls.push_back(call);
        if (shared)
            shared->push_back(backend_ + " " + call);
    }

    const std::string backend_;
    const Turn turn_;
    int number_ = 0;
};

} // namespace zenka::test
