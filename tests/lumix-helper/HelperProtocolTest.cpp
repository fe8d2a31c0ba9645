#include "lumix-helper/HelperProtocol.h"

#include "lumix-helper/VirtualBody.h"

#include <gmock/gmock.h>

using namespace zenka;
using namespace zenka::lumixHelper;
using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Helper : testing::Test {
    test::VirtualBody camera;
    LumixBody body{camera};
    HelperProtocol protocol{body};

    json ask(const std::string& line) {
        const std::string answer = protocol.answer(line);
        EXPECT_EQ(answer.find('\n'), answer.npos);
        return json::parse(answer);
    }
    json fire(const std::string& more = R"("iso":200,"aperture":8,"shutter_s":0.002,"bulb_s":0)") {
        return ask(R"({"cmd":"fire",)" + more + "}");
    }
    /// What the body was told since the last call.
    std::vector<std::string> told() { return std::exchange(camera.done, {}); }
};

} // namespace

TEST_F(Helper, aFrameIsToldTheSettingsInOrderAndThenOnlyWhatChanges) {
    EXPECT_EQ(
        fire(),
        (json{{"fired", true}, {"bulb", false}, {"set_ok", true}, {"latency_ms", 140.0}, {"confirmed", 0}}));
    EXPECT_THAT(told(), ElementsAre("open", "set 02000021=200", "set 02000041=80", "set 02000031=500000",
                                    "act 03000011"));
    EXPECT_EQ(fire(R"("iso":200,"shutter_s":0.004)")["latency_ms"], 40.0);
    EXPECT_THAT(told(), ElementsAre("set 02000031=250000", "act 03000011"));
    fire(R"("iso":"auto","aperture":8,"shutter_s":0.004,"full":true)");
    EXPECT_THAT(told(), ElementsAre("set 02000021=268435556", "set 02000041=80", "set 02000031=250000",
                                    "act 03000011"));
    camera.events.push_back(test::VirtualBody::event(0x4006, 0, {0x500F}));
    fire(R"("iso":"auto","aperture":8,"shutter_s":0.004)");
    EXPECT_EQ(told().size(), 4U) << "a dial was turned, so all is sent again";
}

TEST_F(Helper, aRefusedSettingIsToldTheOthersAreSentAndItIsTriedAgain) {
    camera.refusals[0x02000021] = 0x2006;
    auto answer = fire();
    EXPECT_EQ(answer["fired"], true);
    EXPECT_EQ(answer["set_ok"], false);
    EXPECT_THAT(told(), Contains("set 02000031=500000"));
    camera.refusals.clear();
    EXPECT_EQ(fire()["set_ok"], true);
    EXPECT_THAT(told(), ElementsAre("set 02000021=200", "act 03000011"));

    camera.refusals[0x03000011] = 0x2019;
    answer = fire();
    EXPECT_EQ(answer["fired"], false);
    EXPECT_FALSE(answer.contains("responded")) << "a busy body is no silent one";
}

TEST_F(Helper, aBulbIsHeldForItsTime) {
    const auto answer = fire(R"("iso":100,"bulb_s":30,"shutter_s":30)");
    EXPECT_EQ(answer["fired"], true);
    EXPECT_EQ(answer["bulb"], true);
    EXPECT_NEAR(answer["latency_ms"].get<double>(), 30'100, 21);
    EXPECT_THAT(told(), ElementsAre("open", "set 02000021=100", "act 03000012", "act 03000013"));
}

TEST_F(Helper, aWishToEndCutsABulbShortAndStillClosesTheShutter) {
    camera.stopAtMs = 5000;
    fire(R"("iso":100,"bulb_s":30)");
    body.release();
    EXPECT_THAT(told(), ElementsAre("open", "set 02000021=100", "act 03000012", "act 03000013", "close"));
    EXPECT_LT(camera.nowMs(), 5500);
}

TEST_F(Helper, eachFrameIsConfirmedOnceHoweverItsEventsCome) {
    using test::VirtualBody;
    const auto confirmed = [&] { return ask(R"({"cmd":"status"})")["confirmed"].get<int>(); };
    const auto add = [&](std::uint32_t handle) {
        camera.events.push_back(VirtualBody::event(0x4002, 0, {handle}));
    };
    const auto complete = [&](std::uint32_t transaction) {
        camera.events.push_back(VirtualBody::event(0x400D, transaction));
    };
    fire();
    const auto first = camera.lastTransaction;
    fire();
    const auto second = camera.lastTransaction;
    fire();
    EXPECT_EQ(confirmed(), 0) << "none has come yet";
    add(1); // RAW
    add(2); // and JPEG of one frame
    add(2);
    complete(first);
    EXPECT_LE(confirmed(), 2);
    complete(first);
    complete(second);
    EXPECT_EQ(confirmed(), 2) << "late, doubled, and two objects to a frame";
    for (std::uint32_t i = 0; i < 50; ++i)
        complete(1000 + i);
    EXPECT_EQ(confirmed(), 3) << "never more than were fired";
    fire();
    const auto fourth = camera.lastTransaction;
    EXPECT_EQ(confirmed(), 3) << "nor is one confirmed ahead";
    complete(fourth);
    EXPECT_EQ(confirmed(), 4);

    test::VirtualBody quiet;
    quiet.eventsSaid = {0xC101};
    LumixBody other(quiet);
    HelperProtocol otherProtocol(other);
    EXPECT_FALSE(json::parse(otherProtocol.answer(R"({"cmd":"status"})")).contains("confirmed"))
        << "a body that does not confirm has not confirmed none";
}

TEST_F(Helper, aBodyThatOnlyAddsObjectsConfirmsByThem) {
    fire();
    camera.events.push_back(test::VirtualBody::event(0x4002, 0xFFFFFFFF, {7}));
    camera.events.push_back(test::VirtualBody::event(0x4002, 0xFFFFFFFF, {7}));
    EXPECT_EQ(fire()["confirmed"], 1);
    camera.events.push_back(test::VirtualBody::event(0x4002, 0xFFFFFFFF, {8}));
    EXPECT_EQ(ask(R"({"cmd":"status"})")["confirmed"], 2);
}

TEST_F(Helper, aSilentBodyIsReportedWithinTheLimitAndTakenBackWhenItAnswers) {
    fire();
    told();
    camera.silent = true;
    camera.resetHelps = false;
    for (int i = 0; i < 2; ++i) {
        const double before = camera.nowMs();
        const auto answer = fire();
        EXPECT_EQ(answer["fired"], false);
        EXPECT_EQ(answer["responded"], false);
        EXPECT_LT(camera.nowMs() - before, 12'000) << "the one who asks waits 20 s";
    }
    const double before = camera.nowMs();
    EXPECT_EQ(ask(R"({"cmd":"status"})")["responded"], false);
    EXPECT_LT(camera.nowMs() - before, 8'000) << "the one who asks waits 10 s";
    camera.resetHelps = true;
    EXPECT_EQ(fire()["fired"], true);
    EXPECT_THAT(told(), ElementsAre("open", "close", "open", "set 02000021=200", "set 02000041=80",
                                    "set 02000031=500000", "act 03000011"))
        << "with a session of its own and all settings";
    EXPECT_FALSE(protocol.ended());
}

TEST_F(Helper, aBodyThatHasLeftTheBusEndsTheHelper) {
    fire();
    camera.gone = true;
    const auto answer = fire();
    EXPECT_EQ(answer["gone"], true);
    EXPECT_EQ(answer["responded"], false);
    EXPECT_TRUE(protocol.ended());
}

TEST_F(Helper, aStalledTransferIsClearedAndTheBodyGoesOn) {
    ask(R"({"cmd":"status"})");
    camera.stallsNext = 1;
    EXPECT_EQ(fire()["fired"], true) << "its answer stood behind the stall";
    EXPECT_GE(camera.stallsCleared, 1);
    camera.stallsNext = 2;
    const auto answer = fire();
    EXPECT_EQ(answer["fired"], false);
    EXPECT_EQ(fire()["fired"], true);
}

TEST_F(Helper, whateverTheContainersHoldTheNextFrameIsSound) {
    using Pieces = std::vector<Bytes>;
    const auto response = [](Pieces pieces, const std::function<void(Bytes&)>& change) {
        change(pieces.back());
        return pieces;
    };
    const std::vector<std::function<Pieces(Pieces)>> mangles{
        [](const Pieces&) { return Pieces{}; },
        [](const Pieces&) {
            return Pieces{{1, 2, 3}};
        },
        [&](Pieces p) { return response(std::move(p), [](Bytes& b) { b[0] = 0; }); },
        [&](Pieces p) { return response(std::move(p), [](Bytes& b) { b[0] = b[1] = b[2] = b[3] = 0xFF; }); },
        [&](Pieces p) { return response(std::move(p), [](Bytes& b) { b[0] = 200; }); },
        [&](Pieces p) { return response(std::move(p), [](Bytes& b) { b[4] = 9; }); },
        [&](Pieces p) { return response(std::move(p), [](Bytes& b) { b.resize(70'000, 1); }); },
        [](const Pieces&) { return Pieces(100, Bytes{}); },
        [](Pieces p) { return Pieces(100, p.back()); },
    };
    for (std::size_t i = 0; i < mangles.size(); ++i) {
        camera.mangle = mangles[i];
        fire();
        camera.mangle = [](Pieces pieces) { return pieces; };
        fire();
        EXPECT_EQ(fire()["fired"], true) << i;
        EXPECT_FALSE(protocol.ended()) << i;
    }
    // these are sound, only unusual
    camera.mangle = [](Pieces pieces) {
        Pieces pulled{Bytes{}};
        for (const Bytes& piece : pieces) {
            pulled.emplace_back(piece.begin(), piece.begin() + 12);
            pulled.emplace_back(piece.begin() + 12, piece.end());
        }
        Bytes stale = pieces.back();
        stale[8] ^= 0x55;
        pulled.insert(pulled.begin(), stale);
        return pulled;
    };
    EXPECT_EQ(ask(R"({"cmd":"status"})")["battery"], 84)
        << "in pieces, behind the answer to another transaction";
}

TEST_F(Helper, aSessionThatOneBeforeUsLeftOpenIsTakenOver) {
    camera.sessionOpen = true;
    EXPECT_EQ(ask(R"({"cmd":"status"})")["pc_mode"], true);
    EXPECT_THAT(told(), ElementsAre("open", "close", "open"));
}

TEST_F(Helper, aBodyThatIsNotInPcModeSaysSoAndIsTriedAgain) {
    const auto operations = std::exchange(camera.operations, {0x1001, 0x1002});
    EXPECT_EQ(ask(R"({"cmd":"status"})")["pc_mode"], false);
    camera.operations = operations;
    EXPECT_EQ(ask(R"({"cmd":"status"})")["pc_mode"], true);
    EXPECT_EQ(fire()["fired"], true);
}

TEST_F(Helper, theDialsAreToldAndWhatTheBodyDoesNotTellIsLeftOut) {
    EXPECT_EQ(ask(R"({"cmd":"manual_check"})"), (json{{"status", "ok"},
                                                      {"is_manual", true},
                                                      {"mode_guess", "M"},
                                                      {"manual_lens", false},
                                                      {"battery", 84},
                                                      {"auto_iso", false},
                                                      {"drive_burst", false},
                                                      {"pc_mode", true},
                                                      {"confirmed", 0}}));
    camera.properties = {{0x500E, {3, 0}}, {0x500F, {0xFF, 0xFF}}, {0x5013, {2, 0}}, {0x5007, {0, 0}}};
    LumixBody other(camera);
    HelperProtocol otherProtocol(other);
    auto answer = json::parse(otherProtocol.answer(R"({"cmd":"manual_check"})"));
    EXPECT_EQ(answer["is_manual"], false);
    EXPECT_EQ(answer["mode_guess"], "A");
    EXPECT_EQ(answer["manual_lens"], true);
    EXPECT_EQ(answer["auto_iso"], true);
    EXPECT_EQ(answer["drive_burst"], true);
    EXPECT_FALSE(answer.contains("battery"));

    camera.properties = {{0x500E, {1, 0}}};
    LumixBody bare(camera);
    EXPECT_EQ(json::parse(HelperProtocol(bare).answer(R"({"cmd":"manual_check"})"))["status"],
              "aperture_unconfirmed");
    camera.properties = {};
    LumixBody mute(camera);
    answer = json::parse(HelperProtocol(mute).answer(R"({"cmd":"manual_check"})"));
    EXPECT_EQ(answer["status"], "unknown");
    EXPECT_FALSE(answer.contains("is_manual"));
}

TEST_F(Helper, aBadRequestGetsAnErrorAndTouchesNothing) {
    for (const char* line :
         {"", "x", "[]", "3", "{", R"({"cmd":3})", R"({"cmd":"erase"})", R"({"cd":"fire"})",
          R"({"cmd":"fire","iso":"high"})", R"({"cmd":"fire","iso":-5})", R"({"cmd":"fire","iso":1e12})",
          R"({"cmd":"fire","aperture":"8"})", R"({"cmd":"fire","shutter_s":null})",
          R"({"cmd":"fire","bulb_s":1e9})", R"({"cmd":"fire","bulb_s":1e999})", "{\"cmd\":\"\xff\"}"})
        EXPECT_TRUE(ask(line).contains("error")) << line;
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_EQ(ask(R"({"cmd":"quit"})"), json({{"quit", true}}));
    EXPECT_TRUE(protocol.quitAsked());
}

TEST(RequestLines, theyAreWholeHoweverTheyComeAndOneThatIsTooLongIsNone) {
    RequestLines lines;
    for (const char letter : std::string("one\n\ntwo\n"))
        lines.feed({&letter, 1});
    EXPECT_EQ(lines.next(), "one");
    EXPECT_EQ(lines.next(), "");
    EXPECT_EQ(lines.next(), "two");
    EXPECT_EQ(lines.next(), std::nullopt);
    for (int i = 0; i < 100; ++i)
        lines.feed(std::string(1000, 'x'));
    EXPECT_EQ(lines.next(), std::nullopt);
    lines.feed("end\nthree\n");
    EXPECT_EQ(lines.next(), "");
    EXPECT_EQ(lines.next(), "three");
}
