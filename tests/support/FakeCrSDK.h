#pragma once

#include "cameras/sony/CrSDKTable.h"
#include "cameras/sony/SonyProperties.h"
#include "cameras/sony/SonyWaits.h"
#include "platform/virtual/VirtualTime.h"
#include "ports/SharedLibraries.h"

#include <absl/strings/str_format.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zenka::test {

/// Sony's SDK as a test wants it, behind the real table. It fails a test that calls it from two threads at
/// once. One at a time.
class FakeCrSDK final : public ports::SharedLibraries {
public:
    struct Body {
        std::string model = "ILCE-7M4";
        std::vector<std::uint8_t> id{0xAB, 0x01};
        std::map<std::uint32_t, std::uint64_t> values{{0x105, 1}, {0x10E, 0}, {0x119, 2}, {0x11A, 2}};
        std::map<std::uint32_t, std::vector<std::uint32_t>> offers;
        std::string firmware = "2.00";
        std::set<std::uint32_t> refuses; ///< properties that are not set, whatever the answer
        std::uint32_t refusal = 0x8003;  ///< the answer then; 0 for none
        int silentConnects = 0;          ///< how many of the next come to nothing
        std::uint32_t connectError = 0;
        std::uint32_t fireError = 0;
        bool answers = true; ///< to a ping
    };

    FakeCrSDK() { current = this; }
    FakeCrSDK(const FakeCrSDK&) = delete;
    FakeCrSDK& operator=(const FakeCrSDK&) = delete;
    ~FakeCrSDK() override { current = nullptr; }

    std::vector<Body> bodies;
    bool installed = true;
    bool initWorks = true;
    std::uint32_t version = cameras::crsdkTableVersion;
    std::function<void()> onEnumerate;
    std::vector<std::string> calls; ///< "connect 0", "set 103=100fa", "command 1", "disconnect 0"

    Opened open(const std::string& name) override {
        EXPECT_EQ(name, "libzenka-crsdk.so");
        if (!installed)
            return {.library = nullptr, .fault = "not there"};
        return {.library = std::make_shared<Library>(), .fault = {}};
    }

    /// Tells something to the session of a body, as a thread of the SDK would.
    template <typename Tell>
    void tell(std::size_t body, Tell say) {
        cameras::CrSDKEvents events{};
        {
            const std::lock_guard lock(mutex_);
            for (const auto& [device, session] : sessions_)
                if (session.body == body)
                    events = session.events;
        }
        if (events.connected)
            say(events);
    }
    void warn(std::size_t body, std::uint32_t code) {
        tell(body, [code](const cameras::CrSDKEvents& events) { events.warning(events.context, code); });
    }

    std::size_t openSessions() const {
        const std::lock_guard lock(mutex_);
        return sessions_.size();
    }
    std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }

    static const cameras::CrSDKTable& table() {
        static const cameras::CrSDKTable one{
            .version = cameras::crsdkTableVersion,
            .init = [] { return Call(*current)->initWorks ? 1 : 0; },
            .release = [] { Call(*current)->endAll(); },
            .sdkVersion = [] { return Call(*current) ? 0x01020300U : 0U; },
            .enumerate = [](cameras::CrSDKList** list,
                            std::uint8_t seconds) { return Call(*current)->enumerate(list, seconds); },
            .cameraCount =
                [](const cameras::CrSDKList*) {
                    return static_cast<std::uint32_t>(Call(*current)->bodies.size());
                },
            .describe =
                [](const cameras::CrSDKList*, std::uint32_t index, cameras::CrSDKCamera* camera) {
                    const Body& body = Call(*current)->bodies.at(index);
                    *camera = {.model = body.model.c_str(),
                               .id = body.id.data(),
                               .idSize = static_cast<std::uint32_t>(body.id.size())};
                },
            .releaseList = [](cameras::CrSDKList*) { --Call(*current)->lists_; },
            .connect = [](const cameras::CrSDKList*, std::uint32_t index, const cameras::CrSDKEvents* events,
                          std::int64_t* device) { return Call(*current)->connect(index, *events, *device); },
            .disconnect = [](std::int64_t device) { return Call(*current)->disconnect(device); },
            .releaseDevice = [](std::int64_t device) { return Call(*current)->releaseDevice(device); },
            .sendCommand =
                [](std::int64_t device, std::uint32_t command, std::uint16_t button) {
                    return Call(*current)->command(device, command, button);
                },
            .setProperty = [](std::int64_t device, std::uint32_t code, std::uint32_t,
                              std::uint64_t value) { return Call(*current)->set(device, code, value); },
            .readProperties =
                [](std::int64_t device, const std::uint32_t* codes, std::uint32_t count,
                   void (*take)(void*, const cameras::CrSDKProperty*), void* taker) {
                    return Call(*current)->read(device, std::vector(codes, codes + count), take, taker);
                },
            .queueCount =
                [](std::int64_t device, std::uint32_t* count) {
                    *count = 0;
                    Call sdk(*current);
                    return sdk->body(device).answers ? 0U : 0x8207U;
                }};
        return one;
    }

private:
    struct Session {
        std::size_t body = 0;
        cameras::CrSDKEvents events{};
    };

    /// A call from outside; two at once are what the bridge's lock must prevent.
    class Call {
    public:
        explicit Call(FakeCrSDK& sdk) : sdk_(sdk) {
            EXPECT_EQ(sdk_.inside_.fetch_add(1), 0) << "two calls of the SDK at once";
        }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;
        ~Call() { --sdk_.inside_; }
        FakeCrSDK* operator->() const { return &sdk_; }
        explicit operator bool() const { return true; }

    private:
        FakeCrSDK& sdk_;
    };

    class Library final : public ports::SharedLibrary {
    public:
        void* symbol(const char* name) const override {
            using namespace cameras;
            CrSDKTableOf* tableOf = [](std::uint32_t asked) -> const CrSDKTable* {
                return asked == current->version ? &table() : nullptr;
            };
            return std::string(name) == crsdkTableSymbol ? reinterpret_cast<void*>(tableOf) : nullptr;
        }
    };

    void note(const std::string& call) { calls.push_back(call); }
    Body& body(std::int64_t device) {
        const auto session = sessions_.find(device);
        EXPECT_NE(session, sessions_.end()) << "a call for a device that has been released";
        static Body none;
        return session == sessions_.end() ? none : bodies.at(session->second.body);
    }

    std::uint32_t enumerate(cameras::CrSDKList** list, std::uint8_t seconds) {
        EXPECT_EQ(seconds, 3);
        EXPECT_EQ(lists_, 0) << "the list of before was not released";
        note("enumerate");
        if (onEnumerate)
            onEnumerate();
        *list = bodies.empty() ? nullptr : reinterpret_cast<cameras::CrSDKList*>(this);
        lists_ = bodies.empty() ? 0 : 1;
        return 0;
    }
    std::uint32_t connect(std::size_t index, const cameras::CrSDKEvents& events, std::int64_t& device) {
        note(absl::StrFormat("connect %d", index));
        Body& wanted = bodies.at(index);
        if (wanted.connectError != 0)
            return wanted.connectError;
        device = ++lastDevice_;
        {
            const std::lock_guard lock(mutex_);
            sessions_[device] = {.body = index, .events = events};
        }
        if (wanted.silentConnects > 0)
            --wanted.silentConnects;
        else
            events.connected(events.context);
        return 0;
    }
    std::uint32_t disconnect(std::int64_t device) {
        note("disconnect");
        body(device);
        const cameras::CrSDKEvents events = sessions_.at(device).events;
        events.disconnected(events.context, 0);
        return 0;
    }
    std::uint32_t releaseDevice(std::int64_t device) {
        body(device);
        const std::lock_guard lock(mutex_);
        sessions_.erase(device);
        return 0;
    }
    void endAll() {
        const std::lock_guard lock(mutex_);
        sessions_.clear();
    }
    std::uint32_t command(std::int64_t device, std::uint32_t code, std::uint16_t button) {
        note(absl::StrFormat("command %d %d", code, button));
        return body(device).fireError;
    }
    std::uint32_t set(std::int64_t device, std::uint32_t code, std::uint64_t value) {
        note(absl::StrFormat("set %x=%x", code, value));
        Body& of = body(device);
        if (of.refuses.contains(code))
            return of.refusal;
        of.values[code] = value;
        return 0;
    }
    std::uint32_t read(std::int64_t device, const std::vector<std::uint32_t>& codes,
                       void (*take)(void*, const cameras::CrSDKProperty*), void* taker) {
        namespace Properties = cameras::SonyProperties;
        const Body& of = body(device);
        for (const std::uint32_t code : codes) {
            std::vector<std::uint8_t> packed;
            std::vector<std::uint16_t> text(of.firmware.begin(), of.firmware.end());
            const auto value = of.values.find(code);
            const auto offer = of.offers.find(code);
            const bool firmware = code == Properties::firmwareVersion;
            if (value == of.values.end() && offer == of.offers.end() && !firmware)
                continue;
            if (offer != of.offers.end())
                for (const std::uint32_t offered : offer->second)
                    for (unsigned byte = 0; byte < (code <= Properties::exposureBias ? 2U : 4U); ++byte)
                        packed.push_back(static_cast<std::uint8_t>(offered >> (8 * byte)));
            const cameras::CrSDKProperty property{.code = code,
                                                  .value = value == of.values.end() ? 0 : value->second,
                                                  .text = firmware ? text.data() : nullptr,
                                                  .textLength = static_cast<std::uint32_t>(text.size()),
                                                  .values = packed.data(),
                                                  .valuesSize = static_cast<std::uint32_t>(packed.size())};
            take(taker, &property);
        }
        return 0;
    }

    static inline FakeCrSDK* current = nullptr;

    mutable std::mutex mutex_; // of the sessions, which tell() looks at beside the calls
    std::map<std::int64_t, Session> sessions_;
    std::int64_t lastDevice_ = 500;
    int lists_ = 0;
    std::atomic<int> inside_ = 0;
};

/// Lets virtual time pass.
class VirtualSonyWaits final : public cameras::SonyWaits {
public:
    explicit VirtualSonyWaits(platform::VirtualTime& time) : time_(time) {}

    /// The next work of within() never comes back: it is kept here until let go of.
    bool stuck = false;
    mutable std::function<void()> stuckWork;

    double now() const override { return time_.continuousSeconds(); }
    void pause(base::Seconds span) const override { time_.sleepFor(span); }
    bool until(std::unique_lock<std::mutex>&, std::condition_variable&, base::Seconds limit,
               const std::function<bool()>& holds) const override {
        if (!holds())
            time_.sleepFor(limit);
        return holds();
    }
    bool within(base::Seconds limit, std::function<void()> work) const override {
        if (stuck) {
            stuckWork = std::move(work);
            time_.sleepFor(limit);
            return false;
        }
        work();
        return true;
    }

private:
    platform::VirtualTime& time_;
};

} // namespace zenka::test
