#include "platform/QtHttpClient.h"
#include "platform/QtMainLoop.h"
#include "platform/ThreadWorkQueues.h"
#include "platform/Waiting.h"
#include "services/ScriptAssistant.h"
#include "services/ServiceAddress.h"
#include "support/Child.h"
#include "support/PortsBut.h"
#include "support/VirtualRig.h"

#include <gtest/gtest.h>

namespace zenka::platform {
namespace {

/// The script assistant on the real loop, real threads and the real network, against a server on loopback.
class ScriptAssistantWire : public testing::Test {
protected:
    ScriptAssistantWire() : server({"python3", ZENKA_SOURCE_DIR "/tests/platform/assistant_server.py"}) {
        rig.machine.settings.setText(services::serviceHostKey, "http://127.0.0.1:" + server.readLine());
    }
    /// The rig itself is in virtual time.
    void finish() {
        EXPECT_TRUE(test::serveUntil([&] {
            rig.run(0.001);
            return !assistant.busy().get();
        }));
    }

    test::VirtualRig rig;
    test::Child server;
    QtMainLoop loop;
    ThreadWorkQueues queues;
    QtHttpClient client{loop};
    const ports::Ports ports = test::portsBut(rig.machine.all, loop, queues, client);
    services::ScriptAssistant assistant{rig.model, ports};
};

TEST_F(ScriptAssistantWire, aChatGoesThereAndBackAndItsErrorIsMended) {
    ASSERT_TRUE(assistant.send("Schöne Größe", false));
    finish();
    EXPECT_EQ(assistant.error()->value_or(""), "");
    ASSERT_EQ(assistant.messages()->size(), 4U);
    EXPECT_EQ(assistant.check(assistant.messages()->at(1)), "Auto-validate: 1 error, 0 warnings");
    EXPECT_EQ(assistant.check(assistant.messages()->at(3)), "Auto-validate: 0 errors, 0 warnings");
    EXPECT_EQ(assistant.loadScript(), services::ScriptAssistant::Loading::loaded);
    EXPECT_TRUE(rig.model.script().scriptText()->starts_with("# α to ω\nTAKEPIC"));
}

TEST_F(ScriptAssistantWire, anErrorOfTheServerAndAnAnswerThatIsTooLongAreTold) {
    assistant.send("short", false);
    finish();
    EXPECT_EQ(assistant.error()->value_or(""), "what is this?");
    assistant.send("long", false);
    finish();
    EXPECT_EQ(assistant.error()->value_or(""),
              "The assistant's answer was too long to be taken. Ask for a shorter one.");
    rig.machine.settings.setText(services::serviceHostKey, "http://127.0.0.1:1");
    assistant.repeat();
    finish();
    EXPECT_EQ(assistant.error()->value_or(""), "Network error. Check your connection and try again.");
    EXPECT_EQ(assistant.messages()->size(), 2U);
}

} // namespace
} // namespace zenka::platform
