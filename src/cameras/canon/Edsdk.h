#pragma once

#include <array>
#include <cstdint>

/// The few calls of Canon's EDSDK that the bridge makes, declared for ourselves with their published meaning.
/// The library is closed and opened at run time. One thread, the main one: events arrive within getEvent.
namespace zenka::cameras::edsdk {

using Error = std::uint32_t; ///< 0 is success
using Ref = void*;           ///< counted; who gets one by an out parameter releases it

inline constexpr Error ok = 0;
inline constexpr Error invalidHandle = 0x61; ///< a session that has gone stale
inline constexpr Error deviceBusy = 0x81;
inline constexpr Error notReady = 0x8D02;
inline constexpr Error tryAgain = 0xC3;

inline constexpr std::uint32_t propSaveTo = 0x0B;
inline constexpr std::uint32_t propBodyID = 0x15; ///< text
inline constexpr std::uint32_t propISOSpeed = 0x402;
inline constexpr std::uint32_t propAv = 0x405;
inline constexpr std::uint32_t propTv = 0x406;
inline constexpr std::uint32_t propExposureCompensation = 0x407;
inline constexpr std::uint32_t saveToCamera = 1;

inline constexpr std::uint32_t commandTakePicture = 0;
inline constexpr std::uint32_t commandExtendShutDownTimer = 1;
inline constexpr std::uint32_t commandPressShutterButton = 4;
inline constexpr std::int32_t shutterOff = 0;
inline constexpr std::int32_t shutterCompletelyNonAF = 0x10003;

inline constexpr std::uint32_t stateEventAll = 0x300;
inline constexpr std::uint32_t stateEventShutdown = 0x301;
inline constexpr std::uint32_t stateEventWillSoonShutDown = 0x303;

struct DeviceInfo {
    std::array<char, 256> portName{};
    std::array<char, 256> deviceDescription{}; ///< the model
    std::uint32_t deviceSubType = 0;
    std::uint32_t reserved = 0;
};

using StateEventHandler = Error (*)(std::uint32_t event, std::uint32_t parameter, void* context);

/// The calls by their given names, null until the library is open.
struct Calls {
    Error (*EdsInitializeSDK)() = nullptr;
    Error (*EdsTerminateSDK)() = nullptr;
    Error (*EdsGetCameraList)(Ref* list) = nullptr;
    Error (*EdsGetChildCount)(Ref parent, std::uint32_t* count) = nullptr;
    Error (*EdsGetChildAtIndex)(Ref parent, std::int32_t index, Ref* child) = nullptr;
    Error (*EdsGetDeviceInfo)(Ref camera, DeviceInfo* info) = nullptr;
    Error (*EdsOpenSession)(Ref camera) = nullptr;
    Error (*EdsCloseSession)(Ref camera) = nullptr;
    Error (*EdsSetPropertyData)(Ref, std::uint32_t property, std::int32_t parameter, std::uint32_t size,
                                const void* data) = nullptr;
    Error (*EdsGetPropertyData)(Ref, std::uint32_t property, std::int32_t parameter, std::uint32_t size,
                                void* data) = nullptr;
    Error (*EdsSendCommand)(Ref camera, std::uint32_t command, std::int32_t parameter) = nullptr;
    std::uint32_t (*EdsRelease)(Ref) = nullptr; ///< the references that are left
    Error (*EdsGetEvent)() = nullptr;
    /// May be missing.
    Error (*EdsSetCameraStateEventHandler)(Ref camera, std::uint32_t event, StateEventHandler handler,
                                           void* context) = nullptr;
};

} // namespace zenka::cameras::edsdk
