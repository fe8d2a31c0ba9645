// A library that has the symbols of EDSDK, records each call and plays what a test has scripted.
#include "cameras/canon/Edsdk.h"
#include "support/fake_edsdk/FakeEdsdk.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cstring>
#include <memory>

using namespace zenka::cameras::edsdk;
using zenka::test::FakeEdsdk;

namespace {

FakeEdsdk state;

/// What a reference stands for: a list of bodies, or one of them.
struct Object {
    std::vector<std::string> models;
    int count = 1;
    StateEventHandler handler = nullptr;
    void* context = nullptr;
};

/// Bodies have one reference however often they are asked for, as in the library.
std::map<std::string, Object*> cameras;
Error refusal = 0; // of the shutter button

Object& objectOf(Ref ref) {
    return *static_cast<Object*>(ref);
}

FakeEdsdk::Body* bodyOf(Ref ref) {
    const auto found = std::ranges::find(state.bodies, objectOf(ref).models.front(), &FakeEdsdk::Body::model);
    return found == state.bodies.end() ? nullptr : &*found;
}

Error result(const std::string& name) {
    auto& waiting = state.results[name];
    if (waiting.empty())
        return ok;
    const Error next = waiting.front();
    waiting.pop_front();
    return next;
}

Error recorded(const std::string& call, const std::string& name) {
    state.calls.push_back(call);
    return result(name);
}

} // namespace

extern "C" {

FakeEdsdk* fake_edsdk() {
    return &state;
}

Error EdsInitializeSDK() {
    return recorded("init", "init");
}

Error EdsTerminateSDK() {
    // What was not released goes with the SDK, and still counts as not released.
    for (const auto& [model, camera] : cameras)
        delete camera;
    cameras.clear();
    return recorded("terminate", "terminate");
}

Error EdsGetCameraList(Ref* list) {
    const Error error = recorded("list", "list");
    if (error != ok)
        return error;
    auto* taken = new Object;
    for (const auto& body : state.bodies)
        taken->models.push_back(body.model);
    ++state.references;
    *list = taken;
    return ok;
}

Error EdsGetChildCount(Ref list, std::uint32_t* count) {
    *count = static_cast<std::uint32_t>(objectOf(list).models.size());
    return result("count");
}

Error EdsGetChildAtIndex(Ref list, std::int32_t index, Ref* child) {
    if (const Error error = result("child"); error != ok)
        return error;
    const auto& models = objectOf(list).models;
    if (index < 0 || static_cast<std::size_t>(index) >= models.size())
        return 0x60;
    const std::string& model = models[static_cast<std::size_t>(index)];
    auto& camera = cameras[model];
    if (camera) {
        ++camera->count;
    } else {
        camera = new Object;
        camera->models = {model};
    }
    ++state.references;
    *child = camera;
    return ok;
}

Error EdsGetDeviceInfo(Ref camera, DeviceInfo* info) {
    std::strncpy(info->deviceDescription.data(), objectOf(camera).models.front().c_str(),
                 info->deviceDescription.size() - 1);
    return result("info");
}

Error EdsOpenSession(Ref camera) {
    const Error error = recorded("open " + objectOf(camera).models.front(), "open");
    FakeEdsdk::Body* body = bodyOf(camera);
    if (error != ok || !body)
        return error != ok ? error : 0x80;
    body->session = true;
    return ok;
}

Error EdsCloseSession(Ref camera) {
    if (FakeEdsdk::Body* body = bodyOf(camera))
        body->session = false;
    return recorded("close " + objectOf(camera).models.front(), "close");
}

Error EdsSetPropertyData(Ref, std::uint32_t property, std::int32_t, std::uint32_t size, const void* data) {
    std::uint32_t value = 0;
    std::memcpy(&value, data, std::min<std::size_t>(size, sizeof value));
    const std::string name = absl::StrFormat("set %x", property);
    return recorded(absl::StrFormat("%s=%x", name, value), name);
}

Error EdsGetPropertyData(Ref camera, std::uint32_t property, std::int32_t, std::uint32_t size, void* data) {
    state.calls.push_back(absl::StrFormat("get %x", property));
    FakeEdsdk::Body* body = bodyOf(camera);
    if (!body || body->serialRefusals-- > 0)
        return deviceBusy;
    std::strncpy(static_cast<char*>(data), body->serial.c_str(), size);
    return ok;
}

Error EdsSendCommand(Ref, std::uint32_t command, std::int32_t parameter) {
    state.calls.push_back(absl::StrFormat("command %d %x", command, static_cast<std::uint32_t>(parameter)));
    if (command == commandPressShutterButton && parameter == shutterCompletelyNonAF)
        return refusal = result("fire");
    return command == commandTakePicture ? refusal : ok;
}

std::uint32_t EdsRelease(Ref ref) {
    --state.references;
    Object& object = objectOf(ref);
    const int left = --object.count;
    if (left == 0) {
        std::erase_if(cameras, [&](const auto& camera) { return camera.second == &object; });
        delete &object;
    }
    return static_cast<std::uint32_t>(left);
}

Error EdsGetEvent() {
    ++state.pumps;
    const auto due = std::exchange(state.events, {});
    for (const auto& [event, model] : due) {
        const auto camera = cameras.find(model);
        if (camera != cameras.end() && camera->second->handler)
            camera->second->handler(event, 0, camera->second->context);
    }
    return ok;
}

Error EdsSetCameraStateEventHandler(Ref camera, std::uint32_t event, StateEventHandler handler,
                                    void* context) {
    objectOf(camera).handler = event == stateEventAll ? handler : nullptr;
    objectOf(camera).context = context;
    return ok;
}
}
