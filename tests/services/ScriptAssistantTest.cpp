#include "services/ScriptAssistant.h"

#include "services/ServiceAddress.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace zenka;
using services::ScriptAssistant;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

struct Assistant : testing::Test {
    test::VirtualRig rig;
    ScriptAssistant assistant{rig.model, rig.machine.all};
    std::string mine; ///< the script in the editor
    std::string good; ///< one without fault

    void SetUp() override {
        rig.machine.settings.setText(services::serviceHostKey, "https://zenka.example");
        const double clock = rig.model.site().contactTHours().at("C1") * 3600;
        mine = "# mine\n" + rig.frameAt(clock);
        good = rig.frameAt(clock) + rig.frameAt(clock + 60);
        rig.load(mine);
        assistant.open();
        settle();
    }
    /// Lets the work aside be done.
    void settle() { rig.run(0.01); }
    void say(const std::string& text) {
        EXPECT_TRUE(assistant.send(text, false));
        settle();
    }
    nlohmann::json asked() const {
        return rig.http.waiting.empty() ? nlohmann::json()
                                        : nlohmann::json::parse(rig.http.waiting[0].request.body);
    }
    void answer(int status, const std::string& body) {
        rig.http.answer(status, body);
        settle();
    }
    void reply(const std::string& text) { answer(200, nlohmann::json{{"reply", text}}.dump()); }
    void replyScript(const std::string& script) { reply("Here:\n```zenka\n" + script + "```\nDone."); }
    std::string error() const { return assistant.error()->value_or(""); }
    std::size_t count() const { return assistant.messages()->size(); }
    const ScriptAssistant::Msg& last() const { return assistant.messages()->back(); }
};

} // namespace

TEST_F(Assistant, whatTheModelIsToldIsTheChatTheScriptAndTheRig) {
    EXPECT_EQ(
        ScriptAssistant::starters()[0],
        "Help me build my eclipse capture script. Ask me what you need to know, one question at a time, "
        "then write it.");
    say("Add a \"second\" body\n\xF0\x9F\x93\xB7");
    EXPECT_TRUE(assistant.busy().get());
    EXPECT_FALSE(assistant.send("Hello?", false)) << "one after another";
    ASSERT_EQ(rig.http.waiting.size(), 1U);
    const ports::HttpRequest& request = rig.http.waiting[0].request;
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.url, "https://zenka.example/api/script-assistant");
    EXPECT_EQ(request.headers.at("Content-Type"), "application/json");
    EXPECT_EQ(request.timeout, base::Seconds{60});
    const auto body = asked();
    EXPECT_EQ(body.size(), 4U);
    EXPECT_EQ(body["messages"],
              nlohmann::json::parse(R"([{"role": "user", "content": "Add a \"second\" body\n📷"}])"));
    EXPECT_EQ(body["guided"], "guided");
    EXPECT_EQ(body["currentScript"], mine);
    EXPECT_THAT(body["context"].get<std::string>(), HasSubstr("CAMERA NAMES IN CURRENT SCRIPT: CAM1"));

    reply("What lens does it have?");
    EXPECT_FALSE(assistant.busy().get());
    EXPECT_EQ(last().role, "assistant");
    say("20 mm.");
    ASSERT_EQ(asked()["messages"].size(), 3U);
    EXPECT_EQ(asked()["messages"][1]["role"], "assistant");
    EXPECT_EQ(asked()["messages"][2]["content"], "20 mm.");
}

TEST_F(Assistant, aScriptIsTakenOutAndCheckedButReachesTheEditorOnlyWhenItIsLoaded) {
    EXPECT_EQ(assistant.workingScript().get(), mine);
    EXPECT_FALSE(assistant.mayLoad()) << "it is there already";
    say("Two frames");
    replyScript(good + "NONSENSE\n");
    EXPECT_EQ(assistant.workingScript().get(), good + "NONSENSE\n");
    EXPECT_EQ(assistant.check(last()), "Auto-validate: 0 errors, 1 warning");
    EXPECT_THAT(assistant.shown(last()), Not(HasSubstr("NONSENSE")));
    EXPECT_THAT(last().content, HasSubstr("NONSENSE"));
    ASSERT_TRUE(assistant.findings().get());
    EXPECT_EQ(assistant.findings().get()->issues, rig.model.validator().issues(good + "NONSENSE\n"));
    EXPECT_THAT(assistant.findings().get()->summary,
                AllOf(HasSubstr("2 frames on 1 camera, 0 cues\n\nCAM1: 2 frames from MAX"),
                      HasSubstr("(19:34:42)"), Not(HasSubstr("What is said"))));
    EXPECT_TRUE(rig.http.waiting.empty()) << "a warning is no reason to ask again";

    EXPECT_EQ(rig.model.script().scriptText().get(), mine);
    EXPECT_EQ(assistant.loadScript(), ScriptAssistant::Loading::loaded);
    EXPECT_EQ(rig.model.script().scriptText().get(), good + "NONSENSE\n");
    EXPECT_EQ(rig.model.script().captures().size(), 2U) << "compiled";
    EXPECT_FALSE(assistant.mayLoad());
}

TEST_F(Assistant, errorsGoBackByThemselvesUntilTheScriptIsGood) {
    say("Write it");
    replyScript("ENDFOR\nENDFOR\nNONSENSE\n");
    EXPECT_EQ(assistant.autoFixes().get(), 1);
    ASSERT_EQ(count(), 3U);
    EXPECT_EQ(assistant.check(assistant.messages().get()[1]), "Auto-validate: 2 errors, 1 warning");
    EXPECT_TRUE(assistant.isAutomatic(last()));
    EXPECT_THAT(last().content, HasSubstr("line 1, error: ENDFOR without FOR\n"));
    EXPECT_LT(last().content.find("line 2, error"), last().content.find("line 3, warning"));
    EXPECT_EQ(asked()["messages"].size(), 3U);
    EXPECT_EQ(asked()["currentScript"], "ENDFOR\nENDFOR\nNONSENSE\n");
    replyScript("ENDFOR\n" + good);
    EXPECT_EQ(assistant.autoFixes().get(), 2);
    replyScript(good);
    EXPECT_FALSE(assistant.busy().get());
    EXPECT_EQ(assistant.workingScript().get(), good);
    EXPECT_EQ(assistant.check(last()), "Auto-validate: 0 errors, 0 warnings");
}

TEST_F(Assistant, afterThreeRepairsInARowTheUserHasTheSay) {
    say("Write it");
    for (int i = 0; i < 3; ++i) {
        replyScript("ENDFOR\n");
        EXPECT_EQ(rig.http.waiting.size(), 1U);
    }
    replyScript("ENDFOR\n");
    EXPECT_TRUE(rig.http.waiting.empty());
    EXPECT_FALSE(assistant.busy().get());
    EXPECT_EQ(count(), 8U);
    EXPECT_EQ(assistant.autoFixes().get(), 3);
    say("Once more");
    EXPECT_EQ(assistant.autoFixes().get(), 0);
    replyScript("ENDFOR\n");
    EXPECT_EQ(rig.http.waiting.size(), 1U) << "the count began anew";
}

TEST_F(Assistant, aFailureIsOneSentenceAndLosesNothing) {
    const std::string unreadable = "The assistant's answer could not be read. Try again.";
    const std::pair<int, std::pair<std::string, std::string>> cases[] = {
        {503, {R"({"error": "down"})", "The AI assistant isn't switched on yet. Coming soon."}},
        {500, {R"({"error": "The model is resting."})", "The model is resting."}},
        {429, {R"({"error": 7})", "The assistant couldn't respond (429)"}},
        {500, {"", "The assistant couldn't respond (500)"}},
        {404, {"<html>", "The assistant couldn't respond (404)"}},
        {204, {"", "The assistant couldn't respond (204)"}},
        {200, {"<html>", unreadable}},
        {200, {R"({"reply": "Half an ans)", unreadable}},
        {200, {R"({"reply": ["a"]})", unreadable}},
        {200, {R"(["reply"])", unreadable}},
        {200, {R"({"reply": " \n"})", unreadable}},
        {200, {"{\"reply\": \"\xFF\"}", unreadable}},
        {200, {std::string(200'000, '['), unreadable}},
        {200,
         {R"({"reply": ")" + std::string(2 << 20, 'x') + "\"}",
          "The assistant's answer was too long to be taken. Ask for a shorter one."}},
    };
    say("Write it");
    for (const auto& [status, exchange] : cases) {
        answer(status, exchange.first);
        EXPECT_EQ(error(), exchange.second) << status << exchange.first.substr(0, 40);
        EXPECT_FALSE(assistant.busy().get());
        EXPECT_EQ(count(), 1U) << "the text stays, once";
        ASSERT_TRUE(assistant.mayRepeat());
        assistant.repeat();
        settle();
        EXPECT_EQ(error(), "");
        EXPECT_EQ(asked()["messages"].size(), 1U);
    }
    rig.http.fail("the time ran out");
    settle();
    EXPECT_EQ(error(), "Network error. Check your connection and try again.");
    EXPECT_EQ(assistant.workingScript().get(), mine);
    assistant.repeat();
    settle();
    answer(500, R"({"error": ")" + std::string(498, 'x') + "€€\"}");
    EXPECT_EQ(error(), std::string(498, 'x') + "…") << "cut between letters";
    assistant.repeat();
    settle();
    reply("Here I am.");
    EXPECT_EQ(count(), 2U);
    EXPECT_FALSE(assistant.mayRepeat());
}

TEST_F(Assistant, whatIsStoppedIsNotTakenAnyMore) {
    EXPECT_TRUE(assistant.send("Write it", false));
    assistant.cancel();
    settle();
    EXPECT_TRUE(rig.http.waiting.empty()) << "before it was on the wire";
    EXPECT_EQ(error(), "Stopped before an answer came.");
    assistant.repeat();
    settle();
    assistant.cancel();
    EXPECT_TRUE(rig.http.waiting.empty()) << "on the wire";
    assistant.repeat();
    settle();
    rig.http.answer(200, nlohmann::json{{"reply", "```zenka\nENDFOR\n```"}}.dump());
    assistant.cancel();
    settle();
    EXPECT_EQ(count(), 1U) << "while it was being read";
    EXPECT_EQ(assistant.workingScript().get(), mine);
    EXPECT_FALSE(assistant.busy().get());
    {
        ScriptAssistant shortLived(rig.model, rig.machine.all);
        shortLived.send("Write it", false);
        settle();
        EXPECT_EQ(rig.http.waiting.size(), 1U);
    }
    EXPECT_TRUE(rig.http.waiting.empty());
}

TEST_F(Assistant, theCheckOfAScriptThatIsNoLongerAwaitedAsksForNothing) {
    bool stopped = false;
    assistant.workingScript().changed().connect([&](const std::string&) { stopped = true; });
    say("Write it");
    rig.http.answer(200, nlohmann::json{{"reply", "```zenka\nENDFOR\n```"}}.dump());
    rig.machine.time.runUntil([&] { return stopped; }, base::Seconds{1});
    ASSERT_TRUE(assistant.busy().get()) << "being checked";
    assistant.cancel();
    EXPECT_EQ(error(), "") << "there is an answer";
    say("Or rather not");
    EXPECT_EQ(assistant.check(assistant.messages().get()[1]), "Auto-validate: 1 error, 0 warnings");
    EXPECT_EQ(rig.http.waiting.size(), 1U);
    EXPECT_EQ(count(), 3U);
    EXPECT_EQ(assistant.autoFixes().get(), 0);
}

TEST_F(Assistant, withoutAServerNothingIsSentAndTheTextIsNotTaken) {
    for (const char* host : {"", "zenka.example", "ftp://zenka.example"}) {
        rig.machine.settings.setText(services::serviceHostKey, host);
        EXPECT_FALSE(assistant.send("Write it", false));
        EXPECT_THAT(error(), StartsWith("No server is set for the assistant"));
    }
    settle();
    EXPECT_EQ(count(), 0U);
    EXPECT_TRUE(rig.http.waiting.empty());
}

TEST_F(Assistant, theModeBelongsToAChatAndANewChatCanBeTakenBack) {
    EXPECT_TRUE(assistant.setGuided(false));
    say("Write it");
    EXPECT_EQ(asked()["guided"], "open");
    replyScript(good);
    EXPECT_FALSE(assistant.setGuided(true));
    EXPECT_EQ(error(), "Start a new chat to switch modes");
    EXPECT_FALSE(assistant.guided().get());

    assistant.newChat();
    settle();
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(assistant.workingScript().get(), mine) << "the editor's";
    EXPECT_TRUE(assistant.setGuided(true));
    assistant.undoNewChat();
    EXPECT_EQ(count(), 2U);
    EXPECT_EQ(assistant.workingScript().get(), good);
    EXPECT_FALSE(assistant.guided().get());
    EXPECT_THAT(assistant.shown(last()), Not(HasSubstr("TAKEPIC")));
    EXPECT_TRUE(assistant.mayLoad());

    say("And now");
    assistant.newChat();
    settle();
    EXPECT_TRUE(rig.http.waiting.empty()) << "what was under way is given up";
    EXPECT_FALSE(assistant.busy().get());
}

TEST_F(Assistant, aLongChatLeavesItsOldestMessagesBehindAndALongMessageIsRefused) {
    EXPECT_FALSE(assistant.send(std::string(ScriptAssistant::mostTypedBytes + 1, 'x'), false));
    EXPECT_THAT(error(), StartsWith("This message is longer"));
    for (int i = 0; i < 5; ++i) {
        say("question " + std::to_string(i) + std::string(ScriptAssistant::mostTypedBytes - 100, ' ') + ".");
        reply(std::string(30'000, 'y'));
    }
    say("last");
    const auto sent = asked()["messages"];
    EXPECT_EQ(sent.front()["role"], "user");
    EXPECT_THAT(sent.front()["content"].get<std::string>(), StartsWith("question 3"));
    EXPECT_EQ(sent.back()["content"], "last");
    EXPECT_EQ(assistant.leftOut().get(), 6U) << "nor does it begin with an answer";
    EXPECT_EQ(count(), 11U) << "all of them stay in the chat";
    reply(std::string((1 << 20) - 100, 'z'));
    say("still there?");
    EXPECT_EQ(asked()["messages"].size(), 1U);
    for (int i = 0; i < 2000 && error().empty(); ++i) {
        reply(std::string((1 << 20) - 100, 'z'));
        assistant.send("more", false);
        settle();
    }
    EXPECT_THAT(error(), StartsWith("This chat has grown too long."));

    rig.load(std::string((1 << 20) + 1, '#'));
    assistant.newChat();
    settle();
    EXPECT_THAT(assistant.scriptRemark(), StartsWith("The script in the editor is longer than 1 MB"));
    say("Write it");
    EXPECT_EQ(asked()["currentScript"], "");
}

TEST_F(Assistant, aScriptThatRunsCommandsIsLoadedOnlyWithTheVeryOnesThatWereConfirmed) {
    say("Write it");
    const std::string hidden = good + "FOR,(INTERVALOMETER),0,3,1\n  FOR,(VAR),1,1,2\n"
                                      "\t command , C9,-,(VAR),,,,,,,,,Dim;rm -rf ~, /tmp\n  ENDFOR\nENDFOR\n"
                                      "COMMAND,C2,-,30,,,,,,,,,Say;say hello\n"
                                      "# COMMAND,C2,-,30,,,,,,,,,x;no\n";
    const std::vector<script::CommandLine> one{{.lineNo = 5, .shell = "rm -rf ~,/tmp"}};
    replyScript(hidden + "CoMmAnD,C2,-,30,,,,,,,,,;ls");
    assistant.cancel(); // C9 is an error, and is asked to be mended
    settle();
    auto two = one;
    two.push_back({.lineNo = 10, .shell = "ls```"});
    ASSERT_TRUE(assistant.findings().get());
    EXPECT_EQ(assistant.findings().get()->commands, two)
        << "the fence without a line of its own belongs to it";
    EXPECT_THAT(assistant.findings().get()->summary,
                AllOf(HasSubstr("What is said:\n20:28:33  C2 −30s: hello\n"),
                      HasSubstr("It runs commands on this computer, in 2 lines.")));
    for (const auto& confirmed : {std::vector<script::CommandLine>{}, one}) {
        EXPECT_EQ(assistant.loadScript(confirmed), ScriptAssistant::Loading::unconfirmed);
        EXPECT_EQ(rig.model.script().scriptText().get(), mine);
    }
    EXPECT_EQ(assistant.loadScript(two), ScriptAssistant::Loading::loaded);

    say("More");
    std::string many = good;
    for (int i = 0; i < 101; ++i)
        many += "COMMAND,C2,-,30,,,,,,,,,;ls\n";
    replyScript(many);
    EXPECT_EQ(assistant.loadScript(assistant.findings().get()->commands), ScriptAssistant::Loading::refused);
    EXPECT_THAT(error(), HasSubstr("more commands"));
}

TEST_F(Assistant, inALiveRunOneCanChatButNothingIsLoaded) {
    rig.model.transport().armRealEclipseTiming(true);
    say("Write it");
    replyScript(good);
    EXPECT_EQ(assistant.loadScript(), ScriptAssistant::Loading::refused);
    EXPECT_THAT(error(), StartsWith("A live run is on"));
    EXPECT_EQ(rig.model.script().scriptText().get(), mine);
}

TEST_F(Assistant, aScriptOfManyFramesIsCheckedBesideTheMainThread) {
    say("Write it");
    std::string many = "FOR,(INTERVALOMETER),0,0.1,300000\n" + mine + "ENDFOR\n";
    replyScript(many); // the rig's loop fails the test where it is held up
    ASSERT_TRUE(assistant.findings().get());
    EXPECT_THAT(assistant.findings().get()->summary, StartsWith("300000 frames on 1 camera"));
    EXPECT_THAT(assistant.check(assistant.messages()->at(1)), StartsWith("Auto-validate: "));
}
