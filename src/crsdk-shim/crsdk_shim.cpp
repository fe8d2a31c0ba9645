// libzenka-crsdk.so: fills CrSDKTable from Sony's Camera Remote SDK.
//
// This file could not be compiled against the SDK: no copy of it was at hand, and none comes with the
// project. It knows the SDK by the names of its calls alone and takes the types from their declarations.
// Whoever builds it first may have to mend a detail here, and nothing outside of this file. Taken on trust
// are:
//   - the two enumerators just below;
//   - Init() says true when it worked; all calls that act give an error code, 0 for success;
//   - Connect() takes camera, callback, handle, mode and reconnecting in that order, with defaults behind;
//   - the ways into a list: GetCount(), GetCameraObjectInfo(), GetModel(), GetId(), GetIdSize(), Release();
//   - GetValues() gives the packed values and GetValueSize() their bytes;
//   - GetCurrentStr() gives UTF-16 behind a first unit that counts the rest;
//   - the last parameter of OnWarningExt() is the result, and those before it are three;
//   - GetCommandQueueCount() gives the count by pointer or reference in its second parameter.
#include "cameras/sony/CrSDKTable.h"
#include "crsdk_headers.h"

#include <cstddef>
#include <memory>
#include <tuple>
#include <type_traits>
#include <vector>

namespace {

using namespace zenka::cameras;

constexpr auto remoteControl = SCRSDK::CrSdkControlMode_Remote;
constexpr auto reconnectingOn = SCRSDK::CrReconnecting_ON;

template <typename>
struct Signature;
template <typename Result, typename... Parameters>
struct Signature<Result (*)(Parameters...)> {
    using List = std::tuple<Parameters...>;
};
template <typename Result, typename Class, typename... Parameters>
struct Signature<Result (Class::*)(Parameters...)> {
    using List = std::tuple<Parameters...>;
};
/// The type of a parameter of one of the SDK's functions.
template <auto function, std::size_t index>
using ParameterOf = std::tuple_element_t<index, typename Signature<decltype(function)>::List>;
/// The same without the pointer or reference.
template <auto function, std::size_t index>
using PointedBy = std::remove_pointer_t<std::remove_reference_t<ParameterOf<function, index>>>;

using Callback = SCRSDK::IDeviceCallback;

/// Passes the SDK's events on. One that was let go of is kept to the end of the SDK, for one of its threads
/// may still be in it.
class Forwarder final : public Callback {
public:
    explicit Forwarder(const CrSDKEvents& events) : events_(events) {}

    void OnConnected(ParameterOf<&Callback::OnConnected, 0>) override { events_.connected(events_.context); }
    void OnDisconnected(ParameterOf<&Callback::OnDisconnected, 0> error) override {
        events_.disconnected(events_.context, static_cast<std::uint32_t>(error));
    }
    void OnWarning(ParameterOf<&Callback::OnWarning, 0> code) override {
        events_.warning(events_.context, static_cast<std::uint32_t>(code));
    }
    void OnWarningExt(ParameterOf<&Callback::OnWarningExt, 0> code, ParameterOf<&Callback::OnWarningExt, 1>,
                      ParameterOf<&Callback::OnWarningExt, 2>,
                      ParameterOf<&Callback::OnWarningExt, 3> result) override {
        events_.warningExt(events_.context, static_cast<std::uint32_t>(code),
                           static_cast<std::int32_t>(result));
    }
    void OnError(ParameterOf<&Callback::OnError, 0> code) override {
        events_.error(events_.context, static_cast<std::uint32_t>(code));
    }

private:
    const CrSDKEvents events_;
};

std::vector<std::unique_ptr<Forwarder>> forwarders;

using List = std::remove_pointer_t<PointedBy<&SCRSDK::EnumCameraObjects, 0>>;
using Device = std::remove_cv_t<ParameterOf<&SCRSDK::Disconnect, 0>>;

List* listOf(const CrSDKList* list) {
    return reinterpret_cast<List*>(const_cast<CrSDKList*>(list));
}

Device deviceOf(std::int64_t number) {
    return static_cast<Device>(number);
}

template <typename Error>
std::uint32_t errorOf(Error error) {
    return static_cast<std::uint32_t>(error);
}

std::int32_t init() {
    return SCRSDK::Init() ? 1 : 0;
}

void release() {
    SCRSDK::Release();
    forwarders.clear();
}

std::uint32_t sdkVersion() {
    return static_cast<std::uint32_t>(SCRSDK::GetSDKVersion());
}

std::uint32_t enumerate(CrSDKList** list, std::uint8_t timeoutSec) {
    List* found = nullptr;
    const auto error = SCRSDK::EnumCameraObjects(&found, timeoutSec);
    *list = reinterpret_cast<CrSDKList*>(found);
    return errorOf(error);
}

std::uint32_t cameraCount(const CrSDKList* list) {
    return listOf(list)->GetCount();
}

void describe(const CrSDKList* list, std::uint32_t index, CrSDKCamera* camera) {
    *camera = {};
    auto* info = listOf(list)->GetCameraObjectInfo(index);
    if (!info)
        return;
    camera->model = reinterpret_cast<const char*>(info->GetModel());
    camera->id = reinterpret_cast<const std::uint8_t*>(info->GetId());
    camera->idSize = static_cast<std::uint32_t>(info->GetIdSize());
}

void releaseList(CrSDKList* list) {
    listOf(list)->Release();
}

std::uint32_t connect(const CrSDKList* list, std::uint32_t index, const CrSDKEvents* events,
                      std::int64_t* device) {
    using Camera = PointedBy<&SCRSDK::Connect, 0>;
    auto* camera = const_cast<Camera*>(listOf(list)->GetCameraObjectInfo(index));
    forwarders.push_back(std::make_unique<Forwarder>(*events));
    Device handle{};
    const auto error =
        SCRSDK::Connect(camera, forwarders.back().get(), &handle, remoteControl, reconnectingOn);
    *device = static_cast<std::int64_t>(handle);
    return errorOf(error);
}

std::uint32_t disconnect(std::int64_t device) {
    return errorOf(SCRSDK::Disconnect(deviceOf(device)));
}

std::uint32_t releaseDevice(std::int64_t device) {
    return errorOf(SCRSDK::ReleaseDevice(deviceOf(device)));
}

std::uint32_t sendCommand(std::int64_t device, std::uint32_t command, std::uint16_t parameter) {
    return errorOf(SCRSDK::SendCommand(deviceOf(device),
                                       static_cast<ParameterOf<&SCRSDK::SendCommand, 1>>(command),
                                       static_cast<ParameterOf<&SCRSDK::SendCommand, 2>>(parameter)));
}

std::uint32_t setProperty(std::int64_t device, std::uint32_t code, std::uint32_t type, std::uint64_t value) {
    using Property = SCRSDK::CrDeviceProperty;
    Property property;
    property.SetCode(static_cast<ParameterOf<&Property::SetCode, 0>>(code));
    property.SetValueType(static_cast<ParameterOf<&Property::SetValueType, 0>>(type));
    property.SetCurrentValue(static_cast<ParameterOf<&Property::SetCurrentValue, 0>>(value));
    return errorOf(SCRSDK::SetDeviceProperty(deviceOf(device), &property));
}

std::uint32_t readProperties(std::int64_t device, const std::uint32_t* codes, std::uint32_t count,
                             void (*take)(void* taker, const CrSDKProperty* property), void* taker) {
    using Code = std::remove_cv_t<PointedBy<&SCRSDK::GetSelectDeviceProperties, 2>>;
    using Count = PointedBy<&SCRSDK::GetSelectDeviceProperties, 4>;
    std::vector<Code> wanted(codes, codes + count);
    SCRSDK::CrDeviceProperty* properties = nullptr;
    Count found = 0;
    const auto error =
        SCRSDK::GetSelectDeviceProperties(deviceOf(device), count, wanted.data(), &properties, &found);
    if (errorOf(error) == 0 && properties) {
        for (Count index = 0; index < found; ++index) {
            auto& property = properties[index];
            const auto* text = reinterpret_cast<const std::uint16_t*>(property.GetCurrentStr());
            const CrSDKProperty plain{.code = static_cast<std::uint32_t>(property.GetCode()),
                                      .value = static_cast<std::uint64_t>(property.GetCurrentValue()),
                                      .text = text ? text + 1 : nullptr,
                                      .textLength = text ? text[0] : 0U,
                                      .values = reinterpret_cast<const std::uint8_t*>(property.GetValues()),
                                      .valuesSize = static_cast<std::uint32_t>(property.GetValueSize())};
            take(taker, &plain);
        }
    }
    if (properties)
        SCRSDK::ReleaseDeviceProperties(deviceOf(device), properties);
    return errorOf(error);
}

/// Of a function that gives the count through a pointer, and of one that gives it through a reference.
template <typename Error, typename Of, typename Count>
std::uint32_t counted(Error (*ask)(Of, Count*), Of device, std::uint32_t& count) {
    Count waiting{};
    const auto error = ask(device, &waiting);
    count = static_cast<std::uint32_t>(waiting);
    return errorOf(error);
}
template <typename Error, typename Of, typename Count>
std::uint32_t counted(Error (*ask)(Of, Count&), Of device, std::uint32_t& count) {
    Count waiting{};
    const auto error = ask(device, waiting);
    count = static_cast<std::uint32_t>(waiting);
    return errorOf(error);
}

std::uint32_t queueCount(std::int64_t device, std::uint32_t* count) {
    return counted(&SCRSDK::GetCommandQueueCount, deviceOf(device), *count);
}

constexpr CrSDKTable table{.version = crsdkTableVersion,
                           .init = init,
                           .release = release,
                           .sdkVersion = sdkVersion,
                           .enumerate = enumerate,
                           .cameraCount = cameraCount,
                           .describe = describe,
                           .releaseList = releaseList,
                           .connect = connect,
                           .disconnect = disconnect,
                           .releaseDevice = releaseDevice,
                           .sendCommand = sendCommand,
                           .setProperty = setProperty,
                           .readProperties = readProperties,
                           .queueCount = queueCount};

} // namespace

extern "C" __attribute__((visibility("default"))) const CrSDKTable* zenka_crsdk_table(std::uint32_t version);

const CrSDKTable* zenka_crsdk_table(std::uint32_t version) {
    return version == crsdkTableVersion ? &table : nullptr;
}
