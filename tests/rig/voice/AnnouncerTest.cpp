#include "support/VirtualRig.h"

#include <gmock/gmock.h>

namespace zenka::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class AnnouncerTest : public testing::Test {
protected:
    VirtualRig rig;
    rig::Announcer& announcer = rig.model.announcer();
    double maximum() { return rig.model.site().contactTHours().at("MAX") * 3600; }
    double now() const { return rig.machine.time.continuousSeconds(); }
};

TEST_F(AnnouncerTest, cuesAreToldAndSpokenInOrderAndAJumpPassesThemOver) {
    rig.load("PLAY,MAX,-,00:20,f.wav, , , , , , , ,Filters off\n"
             "PLAY,MAX,-,00:20,f.wav, , , , , , , ,Look up\n"
             "COMMAND,MAX,-,00:20, , , , , , , , ,Lights;lights off\n"
             "PLAY,MAX,+,00:20,f.wav, , , , , , , ,Filters on\n");
    rig.playFrom(maximum() - 30);
    EXPECT_EQ(rig.speech.warmUps, 1) << "the first cue is not to wait for the engine";
    rig.run(13);
    EXPECT_THAT(rig.speech.texts(), ElementsAre("Filters off", "Look up"));
    EXPECT_NEAR(rig.speech.spoken[1].at - rig.speech.spoken[0].at, 1, 1e-9) << "one after another";
    EXPECT_EQ(rig.speech.spoken[0].utterance.rate, 0.96);
    EXPECT_TRUE(rig.logged("🔊 MAX −20s: Look up"));
    EXPECT_TRUE(rig.logged("⚙︎ MAX −20s: Lights"));

    rig.model.transport().scrubTo(maximum() + 25);
    rig.run(5);
    EXPECT_EQ(rig.speech.spoken.size(), 2U);
    announcer.setAudioEnabled(false);
    rig.model.transport().scrubTo(maximum() + 15);
    rig.run(10);
    EXPECT_TRUE(rig.logged("Filters on"));
    EXPECT_EQ(rig.speech.spoken.size(), 2U) << "the user wants no voice";
}

TEST_F(AnnouncerTest, anEngineThatNeverEndsAnUtteranceIsGivenUp) {
    rig.speech.neverEnds = true;
    announcer.speak("One");
    announcer.speak("Two");
    rig.run(2);
    EXPECT_THAT(rig.speech.texts(), ElementsAre("One"));
    EXPECT_EQ(announcer.saying().get(), "One");
    rig.speech.neverEnds = false;
    rig.run(10);
    EXPECT_EQ(rig.speech.abandoned, 1);
    EXPECT_THAT(rig.speech.texts(), ElementsAre("One", "Two"));
    EXPECT_EQ(rig.countLines("🔇"), 1);
    EXPECT_EQ(announcer.saying().get(), "");
}

TEST_F(AnnouncerTest, withoutAVoiceCuesStandOnTheScreenForAsLongAsTheyWouldBeSpoken) {
    rig.speech.fault = "no speech service answers";
    const std::string text = "Two minutes to totality, take the filters off soon";
    announcer.speak(text);
    announcer.speak("Now");
    const double time = rig::SpeechQueue::durationOf(text).count();
    rig.run(time - 0.1);
    EXPECT_EQ(announcer.saying().get(), text);
    rig.run(0.2);
    EXPECT_EQ(announcer.saying().get(), "Now");
    rig.run(10);
    EXPECT_EQ(announcer.saying().get(), "");
    EXPECT_EQ(rig.countLines("🔇 Not spoken: no speech service answers."), 1) << "said once";
}

TEST_F(AnnouncerTest, theQueueIsBoundedAndLeavesTheOldestOut) {
    for (int i = 0; i < 100; ++i)
        announcer.speak(std::to_string(i));
    rig.run(200);
    ASSERT_EQ(rig.speech.spoken.size(), 1 + rig::SpeechQueue::mostWaiting);
    EXPECT_EQ(rig.speech.texts().back(), "99");
    announcer.speak("");
    EXPECT_EQ(rig.speech.spoken.size(), 1 + rig::SpeechQueue::mostWaiting);
}

TEST_F(AnnouncerTest, theBestVoiceOfTheUsersLanguageSpeaksUnlessAnotherIsChosen) {
    rig.speech.installed = {{.id = "a", .name = "zoe", .language = "en-US", .quality = 1},
                            {.id = "b", .name = "Anna", .language = "de", .quality = 9},
                            {.id = "c", .name = "Adam", .language = "en", .quality = 1}};
    announcer.testVoice();
    rig.run(2);
    announcer.testVoice();
    rig.run(2);
    EXPECT_EQ(rig.speech.spoken.back().utterance,
              (ports::Utterance{.text = "Remove filters", .voiceId = "c", .rate = 0.96}));
    std::vector<std::string> order;
    for (const auto& voice : announcer.voices().availableVoices().get())
        order.push_back(voice.id);
    EXPECT_THAT(order, ElementsAre("b", "c", "a"));
    announcer.voices().choose("b");
    EXPECT_EQ(announcer.voices().currentVoice(), "b");
    announcer.voices().choose("uninstalled since");
    EXPECT_EQ(announcer.voices().currentVoice(), "c");
    rig.speech.language = "fr";
    EXPECT_EQ(announcer.voices().currentVoice(), "b") << "none of the language: the best of all";
    EXPECT_EQ(rig.speech.listings, 1);
}

TEST_F(AnnouncerTest, commandsRunBesideTheRunAndTellTheirEnd) {
    rig.children.single = [](const std::vector<std::string>& arguments) {
        ScriptedChildren::Single run;
        run.seconds = arguments.back() == "sleep" ? 100 : 0.5;
        run.code = arguments.back() == "false" ? 3 : 0;
        return run;
    };
    std::string script;
    for (int i = 0; i < 20; ++i)
        script += "COMMAND,MAX,-,00:20, , , , , , , , ,Long;sleep\n";
    rig.load("COMMAND,MAX,-,00:25, , , , , , , , ,Lights;true\n"
             "COMMAND,MAX,-,00:25, , , , , , , , ,Siren;false\n" +
             script + rig.frameAt(maximum() - 19));
    const auto body = rig.addBody("CAM1");
    rig.playFrom(maximum() - 30);
    rig.run(12);
    EXPECT_TRUE(rig.logged("⚙︎ Command “Lights”: done."));
    EXPECT_TRUE(rig.logged("⚠️ Command “Siren”: failed, exit status 3."));
    EXPECT_EQ(rig.children.living, rig::ShellCues::mostRunning);
    EXPECT_EQ(rig.countLines("was not started"), 4);
    EXPECT_EQ(body->shots.size(), 1U) << "no command holds a frame up";
    EXPECT_THAT(rig.speech.texts(), IsEmpty()) << "a command is never spoken";
    ASSERT_FALSE(rig.children.starts.empty());
    EXPECT_EQ(rig.children.starts.front().arguments, (std::vector<std::string>{"-c", "true"}));
    rig.model.handleAppWillTerminate();
    rig.run(1);
    EXPECT_EQ(rig.children.living, 0);
}

TEST_F(AnnouncerTest, theAlarmSoundsUntilItIsSeenAndEightTimesAtMost) {
    rig::ReconnectDesk& desk = rig.model.reconnect();
    desk.alarmSounds().emit(true);
    rig.run(60);
    ASSERT_EQ(rig.sounds.heard.size(), 8U);
    EXPECT_NEAR(rig.sounds.heard[1] - rig.sounds.heard[0], 0.9, 1e-9);
    desk.alarmSounds().emit(true);
    rig.run(2);
    desk.alarmSounds().emit(false);
    rig.run(10);
    EXPECT_EQ(rig.sounds.heard.size(), 11U);
    rig.sounds.fault = "there is no such sound";
    desk.alarmSounds().emit(true);
    rig.run(10);
    EXPECT_EQ(rig.countLines("The alarm sound cannot be played"), 1);
}

TEST_F(AnnouncerTest, mutedSoundIsToldUntilItIsHeardAgain) {
    rig::MutedGuard& guard = rig.model.audio();
    rig.audio.now = {.muted = true, .volume = 0.5F};
    guard.refreshAudioOutput();
    EXPECT_TRUE(guard.showMutedModal().get());
    rig.audio.now.muted = false;
    rig.run(1.1);
    EXPECT_FALSE(guard.showMutedModal().get()) << "it goes by itself";
    EXPECT_EQ(guard.systemVolume().get(), 0.5F);

    rig.audio.now.muted = true;
    guard.refreshAudioOutput();
    guard.dismiss();
    guard.refreshAudioOutput();
    EXPECT_FALSE(guard.showMutedModal().get()) << "the operator knows";
    rig.audio.now.muted = false;
    guard.refreshAudioOutput();
    announcer.setAudioEnabled(false);
    rig.model.batteries().setLowBatteryAudio(false);
    rig.model.batteries().setCriticalBatteryAudio(false);
    rig.audio.now.muted = true;
    guard.refreshAudioOutput();
    EXPECT_TRUE(guard.systemMuted().get());
    EXPECT_FALSE(guard.showMutedModal().get()) << "nobody wants to hear anything";

    rig.audio.now = {.fault = "no sound server answers"};
    guard.refreshAudioOutput();
    guard.refreshAudioOutput();
    EXPECT_EQ(rig.countLines("no sound server answers"), 1);
}

} // namespace

} // namespace zenka::test
