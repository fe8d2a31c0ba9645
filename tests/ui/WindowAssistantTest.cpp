#include "DrivenWindow.h"
#include "services/ServiceAddress.h"
#include "ui/kit/AppView.h"

#include <QClipboard>
#include <QGuiApplication>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace zenka;

namespace {

/// The script assistant by keys and by mouse.
struct WindowAssistant : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};
    std::string mine;

    void SetUp() override {
        rig.machine.settings.setText(services::serviceHostKey, "https://zenka.example");
        window.open();
        window.dismissGreetings();
        mine = "# mine\n" + frame(0);
        rig.load(mine);
        window.settle();
    }
    std::string frame(double after) {
        return rig.frameAt(rig.model.site().contactTHours().at("C1") * 3600 + after);
    }
    void openAssistant() {
        window.key(Qt::Key_J, Qt::ControlModifier);
        ASSERT_EQ(sheet(), QStringLiteral("Assistant"));
        settle();
    }
    /// Lets the work aside be done.
    void settle() {
        rig.run(0.01);
        window.settle();
    }
    QString sheet() const { return window->app().sheet(); }
    QString textOf(const char* name) const {
        const QQuickItem* item = window.named(name);
        return item ? item->property("text").toString() : QStringLiteral("not to be seen");
    }
    bool enabled(const char* name) const {
        const QQuickItem* item = window.named(name);
        return item && item->isEnabled();
    }
    void say(const char* words) {
        window.type(QString::fromLatin1(words));
        window.key(Qt::Key_Return);
        settle();
    }
    void reply(const std::string& text) {
        rig.http.answer(200, nlohmann::json{{"reply", text}}.dump());
        settle();
    }
    std::string lastAsked() const {
        return rig.http.waiting.empty()
                   ? "nothing"
                   : nlohmann::json::parse(rig.http.waiting[0].request.body)["messages"].back()["content"];
    }
    const std::string& editor() { return rig.model.script().scriptText().get(); }
};

} // namespace

TEST_F(WindowAssistant, enterSendsAndTheScriptIsLoadedAsAStepThatCtrlZTakesBack) {
    openAssistant();
    EXPECT_EQ(window.focused()->objectName(), QStringLiteral("assistantInput"));
    EXPECT_TRUE(
        textOf("assistantNotice").contains(QStringLiteral("sent to https://zenka.example, and with it")));
    EXPECT_FALSE(enabled("assistantLoad")) << "the script is in the editor already";
    window.type(QStringLiteral("Two"));
    window.key(Qt::Key_Return, Qt::ShiftModifier);
    say("frames");
    EXPECT_EQ(lastAsked(), "Two\nframes");
    EXPECT_EQ(textOf("assistantInput"), QString());
    EXPECT_EQ(textOf("assistantState"), QStringLiteral("Waiting for the assistant…"));
    EXPECT_EQ(window.named("starter0"), nullptr);

    reply("<b>Here</b> it is:\n```zenka\n" + frame(0) + frame(60) + "```");
    EXPECT_TRUE(window.find([](const QQuickItem& item) {
        return item.property("text").toString().startsWith(QStringLiteral("<b>Here</b> it is:"));
    })) << "plain text";
    EXPECT_TRUE(window.says(QStringLiteral("Auto-validate: 0 errors, 0 warnings")));
    EXPECT_EQ(editor(), mine);
    window.click(window.named("assistantLoad"));
    ASSERT_EQ(sheet(), QStringLiteral("Script"));
    EXPECT_EQ(editor(), frame(0) + frame(60));
    EXPECT_EQ(rig.model.script().captures().size(), 2U);
    window.key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor(), mine);
    openAssistant();
    EXPECT_TRUE(enabled("assistantLoad")) << "the chat is where it was";
}

TEST_F(WindowAssistant, whatIsTypedOutlivesTheSheetAndAFailureCanBeTriedAgain) {
    openAssistant();
    window.type(QStringLiteral("Write it"));
    window.key(Qt::Key_Escape);
    EXPECT_EQ(sheet(), QString());
    openAssistant();
    EXPECT_EQ(textOf("assistantInput"), QStringLiteral("Write it"));
    window.key(Qt::Key_Return);
    settle();
    rig.http.answer(503, "");
    settle();
    EXPECT_EQ(textOf("assistantState"),
              QStringLiteral("✖ The AI assistant isn't switched on yet. Coming soon."));
    window.click(window.named("assistantRepeat"));
    settle();
    EXPECT_EQ(lastAsked(), "Write it");
    window.click(window.named("assistantStop"));
    EXPECT_TRUE(rig.http.waiting.empty());
    EXPECT_EQ(window.focused()->objectName(), QStringLiteral("assistantInput"));

    window.click(window.named("assistantGuided"));
    EXPECT_EQ(textOf("assistantState"), QStringLiteral("✖ Start a new chat to switch modes"));
    EXPECT_TRUE(window.named("assistantGuided")->property("checked").toBool());
    window.click(window.named("assistantNew"));
    settle();
    window.click(window.named("starter0"));
    settle();
    EXPECT_TRUE(lastAsked().starts_with("Help me build my eclipse capture script."));

    rig.machine.settings.setText(services::serviceHostKey, "");
    rig.http.fail("there is no network");
    settle();
    say("Hello");
    EXPECT_EQ(textOf("assistantInput"), QStringLiteral("Hello")) << "not taken, not lost";
    EXPECT_TRUE(textOf("assistantState").startsWith(QStringLiteral("✖ No server is set")));
}

TEST_F(WindowAssistant, commandsAreShownAndAskedAboutBeforeAScriptIsLoaded) {
    openAssistant();
    say("Write it");
    reply("```zenka\n" + frame(0) +
          "FOR,(INTERVALOMETER),0,2,1\n command,C2,-,30,,,,,,,,,Hi;echo \u202Eabc\nENDFOR\n```");
    window.named("assistantLoad")->forceActiveFocus();
    window.key(Qt::Key_Return);
    EXPECT_EQ(textOf("assistantScript"), QStringLiteral("line 3:  echo \\u{202e}abc"));
    EXPECT_EQ(editor(), mine);
    ASSERT_EQ(window.focused()->objectName(), QStringLiteral("assistantDecline"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(editor(), mine);
    EXPECT_TRUE(textOf("assistantScript").startsWith(QStringLiteral("TAKEPIC")));
    ASSERT_EQ(window.focused()->objectName(), QStringLiteral("assistantLoad"));
    window.key(Qt::Key_Return);
    window.click(window.named("assistantConfirm"));
    EXPECT_EQ(sheet(), QStringLiteral("Script"));
    EXPECT_NE(editor(), mine);
}

TEST_F(WindowAssistant, inALiveRunItIsOpenButLoadsNothing) {
    rig.model.transport().armRealEclipseTiming(true);
    openAssistant();
    say("Write it");
    window.key(Qt::Key_Escape);
    reply("```zenka\n" + frame(0) + frame(60) + "```");
    EXPECT_EQ(sheet(), QString()) << "an answer opens nothing";
    openAssistant();
    EXPECT_FALSE(enabled("assistantLoad"));
    EXPECT_TRUE(textOf("assistantVerdict").endsWith(QStringLiteral("nothing is loaded until it is over.")));
}

TEST_F(WindowAssistant, theKeyboardReadsTheChatAndTheScript) {
    openAssistant();
    say("What does it do?");
    reply("It takes one frame.");
    window.named("assistantMessages")->forceActiveFocus(Qt::TabFocusReason);
    window.key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("It takes one frame."));
    window.key(Qt::Key_Up);
    window.key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("What does it do?"));
    window.named("assistantReadable")->forceActiveFocus(Qt::TabFocusReason);
    window.key(Qt::Key_Space);
    EXPECT_TRUE(textOf("assistantScript").startsWith(QStringLiteral("1 frame on 1 camera, 0 cues")));
    window.key(Qt::Key_F1);
    ASSERT_EQ(sheet(), QStringLiteral("Keys"));
    window.key(Qt::Key_Escape);
    EXPECT_EQ(sheet(), QStringLiteral("Assistant"));
}
