#pragma once

#include <cstdint>

/// What Zenka needs of Sony's Camera Remote SDK, as a table of plain C functions. The SDK is closed and comes
/// with no Linux distribution, so a small module of its own (src/crsdk-shim) is built by whoever has it; the
/// program opens that module at run time and asks it for the table. Only these types pass between the two,
/// so neither needs the other's compiler.
///
/// A result of 0 is success, any other an error code of the SDK. A device is the SDK's own number of a
/// session, never 0. The caller holds one lock around all calls, so the module need not be safe for several
/// threads; the events come on threads of the SDK, also while a call is under way, and also a moment
/// after a session has ended. No exception leaves either side.
namespace zenka::cameras {

extern "C" {

/// What the SDK tells of one session. `context` is the number that connect() was given.
struct CrSDKEvents {
    std::uint64_t context;
    void (*connected)(std::uint64_t context);
    void (*disconnected)(std::uint64_t context, std::uint32_t error);
    void (*warning)(std::uint64_t context, std::uint32_t code);
    /// `result` is the last of the SDK's parameters.
    void (*warningExt)(std::uint64_t context, std::uint32_t code, std::int32_t result);
    void (*error)(std::uint64_t context, std::uint32_t code);
};

/// A camera of an enumeration. The pointers are the list's and live as long as it does.
struct CrSDKCamera {
    const char* model; ///< UTF-8, ends in a zero; may be null
    const std::uint8_t* id;
    std::uint32_t idSize; ///< bytes
};

/// A property as read. The pointers live until the function that is given it returns.
struct CrSDKProperty {
    std::uint32_t code;
    std::uint64_t value;        ///< the current one
    const std::uint16_t* text;  ///< UTF-16 of one that is a text, without its count; null for any other
    std::uint32_t textLength;   ///< units
    const std::uint8_t* values; ///< those that the body offers, packed, lowest byte first; may be null
    std::uint32_t valuesSize;   ///< bytes
};

/// A list that enumerate() made.
struct CrSDKList;

struct CrSDKTable {
    std::uint32_t version; ///< crsdkTableVersion

    /// Once before all calls but sdkVersion(); not 0 is success here.
    std::int32_t (*init)();
    /// After it only init() may be called. It ends the SDK's threads, and with them the events.
    void (*release)();
    std::uint32_t (*sdkVersion)();

    /// Looks for cameras for so many seconds. `list` is null when there are none; the caller releases it.
    std::uint32_t (*enumerate)(CrSDKList** list, std::uint8_t timeoutSec);
    std::uint32_t (*cameraCount)(const CrSDKList* list);
    /// `index` is below the count.
    void (*describe)(const CrSDKList* list, std::uint32_t index, CrSDKCamera* camera);
    void (*releaseList)(CrSDKList* list);

    /// Begins a session for remote control that the SDK itself takes up again when the link breaks. It
    /// stands once events->connected has been called, which may be before this returns. `events` is copied.
    std::uint32_t (*connect)(const CrSDKList* list, std::uint32_t index, const CrSDKEvents* events,
                             std::int64_t* device);
    std::uint32_t (*disconnect)(std::int64_t device);
    /// Frees what a session holds, behind disconnect().
    std::uint32_t (*releaseDevice)(std::int64_t device);

    std::uint32_t (*sendCommand)(std::int64_t device, std::uint32_t command, std::uint16_t parameter);
    /// `type` is the SDK's value type.
    std::uint32_t (*setProperty)(std::int64_t device, std::uint32_t code, std::uint32_t type,
                                 std::uint64_t value);
    /// Calls `take` for each property that the body has, within this call.
    std::uint32_t (*readProperties)(std::int64_t device, const std::uint32_t* codes, std::uint32_t count,
                                    void (*take)(void* taker, const CrSDKProperty* property), void* taker);
    /// How many commands wait in the session.
    std::uint32_t (*queueCount)(std::int64_t device, std::uint32_t* count);
};

/// The module's one symbol: the table of a version, null when it has none of that version.
using CrSDKTableOf = const CrSDKTable*(std::uint32_t version);

} // extern "C"

inline constexpr std::uint32_t crsdkTableVersion = 1;
inline constexpr char crsdkModule[] = "libzenka-crsdk.so";
inline constexpr char crsdkTableSymbol[] = "zenka_crsdk_table";

} // namespace zenka::cameras
