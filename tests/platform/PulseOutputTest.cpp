#include "platform/PulseOutput.h"

#include "platform/Waiting.h"
#include "support/SoundServers.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zenka::platform {
namespace {

using namespace std::chrono_literals;
using test::serveUntil;

bool comesTo(const PulseOutput& output, bool muted, float volume) {
    return serveUntil([&] {
        const auto state = output.state();
        return state.muted == muted && state.volume && std::abs(*state.volume - volume) < 0.001F &&
               state.fault.empty();
    });
}

TEST(PulseOutput, muteAndVolumeAreFollowedAlsoToAnotherOutputAndAnotherServer) {
    test::PrivateUser user;
    test::SoundServer sound(user);
    const PulseOutput output(sound.address());
    ASSERT_TRUE(comesTo(output, false, 1));
    sound.control({"set-sink-mute", "out", "1"});
    EXPECT_TRUE(comesTo(output, true, 1));
    // the loudest channel counts
    sound.control({"set-sink-volume", "out", "20%", "40%"});
    EXPECT_TRUE(comesTo(output, true, 0.4F));
    sound.control({"load-module", "module-null-sink", "sink_name=other"});
    sound.control({"set-default-sink", "other"});
    EXPECT_TRUE(comesTo(output, false, 1));
    sound.control({"set-sink-volume", "other", "130%"});
    EXPECT_TRUE(comesTo(output, false, 1.3F));

    sound.stop();
    ASSERT_TRUE(serveUntil([&] { return !output.state().muted.has_value(); }));
    EXPECT_EQ(output.state().fault, "no sound server answers");
    EXPECT_FALSE(output.state().volume);
    sound.start();
    EXPECT_TRUE(comesTo(output, false, 1));
}

TEST(PulseOutput, aServerWithoutAnOutputAndNoServerAreTold) {
    test::PrivateUser user;
    test::SoundServer sound(user);
    const PulseOutput output(sound.address());
    const PulseOutput nowhere("unix:" + (user.folder() / "nobody").string());
    EXPECT_TRUE(serveUntil([&] { return nowhere.state().fault == "no sound server answers"; }));
    ASSERT_TRUE(comesTo(output, false, 1));
    sound.control({"unload-module", "module-null-sink"});
    EXPECT_TRUE(serveUntil([&] { return output.state().fault == "there is no sound output"; }));
    EXPECT_FALSE(output.state().muted);
    // what a desktop puts in the place of missing hardware counts as none
    sound.control({"load-module", "module-null-sink", "sink_name=auto_null"});
    EXPECT_FALSE(serveUntil([&] { return output.state().muted.has_value(); }, 200ms));
    sound.control({"load-module", "module-null-sink", "sink_name=out"});
    sound.control({"set-default-sink", "out"});
    EXPECT_TRUE(comesTo(output, false, 1));
}

} // namespace
} // namespace zenka::platform
