#include "platform/SpeechDispatcher.h"

#include "platform/QtMainLoop.h"
#include "platform/SpeechText.h"
#include "platform/Waiting.h"
#include "support/SoundServers.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>

namespace zenka::platform {
namespace {

using namespace std::chrono_literals;
using test::serveUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Clock = std::chrono::steady_clock;

constexpr const char* shortWords = "Look";
constexpr const char* longWords = "Camera one has a battery that is rather low so swap it soon";
constexpr const char* middleWords = "Remove all the filters";

class SpeechDispatcherTest : public testing::Test {
protected:
    struct End {
        std::string text;
        ports::SpeechOutput::Result result;
        Clock::time_point at;
    };

#ifdef __SANITIZE_THREAD__
    void SetUp() override {
        const char* options = std::getenv("TSAN_OPTIONS");
        if (options &&
            std::string_view(options).find("ignore_noninstrumented_modules=1") != std::string_view::npos)
            GTEST_SKIP()
                << "libspeechd ends its own thread where ThreadSanitizer ignores it, which stops the run";
    }
#endif

    void say(const std::string& text, double volume = 1, const std::string& voice = {}) {
        speech.speak({.text = text, .voiceId = voice, .rate = rate, .volume = volume},
                     [this, text](const auto& result) {
                         ends.push_back({text, result, Clock::now()});
                     });
    }
    bool allEnd(std::size_t count) {
        return serveUntil([&] { return ends.size() >= count; });
    }

    test::PrivateUser user;
    test::SoundServer sound{user};
    test::Recording recording;
    test::SpeechServer server{user};
    QtMainLoop loop;
    SpeechDispatcher speech{loop, {.socket = server.socket(), .start = false}};
    double rate = 1;
    std::vector<End> ends;
};

TEST_F(SpeechDispatcherTest, utterancesAreHeardInOrderAndNoneCutsTheOneBefore) {
    server.start();
    say(shortWords);
    say(longWords);
    say(middleWords, 0.75);
    EXPECT_THAT(ends, IsEmpty()); // never from within
    ASSERT_TRUE(allEnd(3));
    std::vector<std::string> order;
    for (const End& end : ends) {
        order.push_back(end.text);
        EXPECT_TRUE(end.result.spoken) << end.result.fault;
    }
    EXPECT_THAT(order, ElementsAre(shortWords, longWords, middleWords));

    // espeak-ng ends each with 0.3 s of silence
    const auto heard = recording.stretches(0.26);
    ASSERT_THAT(heard, SizeIs(3));
    EXPECT_LT(heard[0].seconds(), 0.8);
    EXPECT_GT(heard[1].seconds(), 2.5);
    EXPECT_GT(heard[2].seconds(), heard[0].seconds() + 0.3);
    EXPECT_LT(heard[2].seconds(), heard[1].seconds() - 1);
    for (const auto& stretch : heard)
        EXPECT_GT(stretch.loudness, 0.005);
    EXPECT_LT(heard[2].loudness, 0.85 * heard[0].loudness);
    // the ends are told at about the ends of the sound; a busy machine tells some of them late
    const auto apart = [&](std::size_t i) {
        return std::chrono::duration<double>(ends[i].at - ends[i - 1].at).count();
    };
    EXPECT_GT(apart(1), heard[1].seconds() / 2);
    EXPECT_GT(apart(2), heard[2].seconds() / 2);
}

TEST_F(SpeechDispatcherTest, aServiceThatIsMissingIsAFault) {
    const auto begin = Clock::now();
    say("one");
    say("two");
    speech.warmUp();
    ASSERT_TRUE(allEnd(2));
    EXPECT_EQ(ends[0].result.fault, "no speech service answers");
    EXPECT_FALSE(ends[1].result.spoken);
    EXPECT_LT(Clock::now() - begin, 5s);
    bool taken = false;
    speech.listVoices([&](const auto& voices) {
        EXPECT_THAT(voices, IsEmpty());
        taken = true;
    });
    EXPECT_TRUE(serveUntil([&] { return taken; }));

    // it comes later
    server.start();
    say(shortWords);
    ASSERT_TRUE(allEnd(3));
    EXPECT_TRUE(ends[2].result.spoken) << ends[2].result.fault;
}

TEST_F(SpeechDispatcherTest, aServiceThatMayNotBeStartedSaysWhy) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "libspeechd leaks this reason";
#endif
    server.forbidStart();
    SpeechDispatcher starting(loop, {.socket = server.socket(), .start = true});
    std::string fault;
    starting.speak({.text = "one", .voiceId = {}}, [&](const auto& result) { fault = result.fault; });
    ASSERT_TRUE(serveUntil([&] { return !fault.empty(); }));
    EXPECT_THAT(fault, HasSubstr("no speech service answers (Autospawn"));
}

TEST_F(SpeechDispatcherTest, aServiceKilledInMidUtteranceIsAFaultAndTheNextOneSpeaks) {
    server.start();
    say(longWords);
    say(middleWords);
    ASSERT_TRUE(recording.firstSoundAfter({}, test::patience));
    server.kill();
    ASSERT_TRUE(allEnd(2));
    for (const End& end : ends)
        EXPECT_EQ(end.result, (ports::SpeechOutput::Result{false, "the speech service went away"}));
    server.start();
    const auto begin = Clock::now();
    say(shortWords);
    ASSERT_TRUE(allEnd(3));
    EXPECT_TRUE(ends[2].result.spoken) << ends[2].result.fault;
    EXPECT_TRUE(recording.firstSoundAfter(begin, 5s));
}

TEST_F(SpeechDispatcherTest, aServiceIsStartedOnDemandAndAnewWhenItsEngineDied) {
    SpeechDispatcher starting(loop, {.socket = server.socket(), .start = true});
    std::vector<ports::SpeechOutput::Result> results;
    const auto done = [&](const auto& result) { results.push_back(result); };
    starting.speak({.text = longWords, .voiceId = {}}, done);
    ASSERT_TRUE(recording.firstSoundAfter({}, test::patience));
    server.killEngine();
    // the service itself never ends the utterance
    EXPECT_FALSE(serveUntil([&] { return !results.empty(); }, 300ms));
    starting.abandon();
    ASSERT_TRUE(recording.waitForSilence(0.3, test::patience));
    const auto begin = Clock::now();
    // words may go to the old service just before it breaks down
    ASSERT_TRUE(serveUntil([&] {
        if (results.empty() || !results.back().spoken)
            starting.speak({.text = shortWords, .voiceId = {}}, done);
        const std::size_t before = results.size();
        return serveUntil([&] { return results.size() > before; }) && results.back().spoken;
    }));
    EXPECT_TRUE(recording.firstSoundAfter(begin, 5s));
}

TEST_F(SpeechDispatcherTest, abandoningEndsTheSoundAndNothingIsToldOfIt) {
    server.start();
    say(longWords);
    say(longWords);
    ASSERT_TRUE(recording.firstSoundAfter({}, test::patience));
    speech.abandon();
    say(shortWords);
    ASSERT_TRUE(allEnd(1));
    EXPECT_EQ(ends[0].text, shortWords);
    EXPECT_TRUE(ends[0].result.spoken);
    // the words that were cut off and the short ones take no three seconds together
    double total = 0;
    for (const auto& stretch : recording.stretches(0.2))
        total += stretch.seconds();
    EXPECT_LT(total, 3.5);
}

/// Takes connections and never says a word.
class SilentService {
public:
    explicit SilentService(const std::string& path)
        : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        if (::bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(socket_.get(), 8) != 0)
            throw std::runtime_error("no socket at " + path);
    }

private:
    Descriptor socket_;
};

TEST_F(SpeechDispatcherTest, aServiceThatNeverSaysAWordKeepsNobodyWaiting) {
    const auto begin = Clock::now();
    {
        const SilentService silent(server.socket());
        say("one");
        speech.warmUp();
        EXPECT_FALSE(serveUntil([&] { return !ends.empty(); }, 200ms));
        speech.abandon();
        EXPECT_LT(Clock::now() - begin, 3s);
    }
    std::filesystem::remove(server.socket());
    server.start();
    say(shortWords);
    ASSERT_TRUE(allEnd(1));
    EXPECT_EQ(ends[0].text, shortWords);
    EXPECT_TRUE(ends[0].result.spoken) << ends[0].result.fault;
}

TEST_F(SpeechDispatcherTest, destroyingTheObjectTellsNothingAndWaitsForNothing) {
    const SilentService silent(server.socket());
    bool told = false;
    const auto begin = Clock::now();
    {
        SpeechDispatcher leaving(loop, {.socket = server.socket(), .start = false});
        leaving.speak({.text = "one", .voiceId = {}}, [&](const auto&) { told = true; });
        leaving.listVoices([&](const auto&) { told = true; });
        serveUntil([] { return false; }, 50ms);
    }
    EXPECT_LT(Clock::now() - begin, 4s); // half a second for each thread
    EXPECT_FALSE(serveUntil([&] { return told; }, 100ms));
}

TEST_F(SpeechDispatcherTest, anyTextIsSpokenAndLeavesTheConnectionWell) {
    server.start();
    const std::vector<std::string> texts{
        ".", "..\r\n.\r\nQUIT\r\n", std::string("a\0b", 3), "\xff\xfe caf\xe9", "<b>&amp;</b>", "", "\r\n"};
    for (const std::string& text : texts)
        say(text);
    say(shortWords);
    ASSERT_TRUE(allEnd(texts.size() + 1));
    for (const End& end : ends)
        EXPECT_TRUE(end.result.spoken) << end.text << ": " << end.result.fault;
    EXPECT_EQ(ends.back().text, shortWords);

    say(std::string(3'000'000, 'a'));
    serveUntil([] { return false; }, 300ms);
    speech.abandon();
    say(middleWords);
    ASSERT_TRUE(allEnd(texts.size() + 2));
    EXPECT_EQ(ends.back().text, middleWords);
    EXPECT_TRUE(ends.back().result.spoken);
}

TEST_F(SpeechDispatcherTest, voicesAreListedAndAnyIdSpeaks) {
    server.start();
    std::vector<ports::Voice> voices;
    speech.listVoices([&](const auto& listed) { voices = listed; });
    ASSERT_TRUE(serveUntil([&] { return !voices.empty(); }));
    std::set<std::string> ids;
    for (const auto& voice : voices)
        ids.insert(voice.id);
    EXPECT_EQ(ids.size(), voices.size());
    EXPECT_LT(voices.size(), 500u);
    const auto british = std::ranges::find(voices, "en-GB", &ports::Voice::language);
    ASSERT_NE(british, voices.end());
    EXPECT_THAT(british->id, testing::StartsWith("espeak-ng/"));
    EXPECT_EQ(british->quality, speechText::moduleQuality("espeak-ng"));

    say(shortWords, 1, british->id);
    say(shortWords, 1, "piper/a voice that is gone");
    say(shortWords, 1, "espeak-ng/No such\r\nvoice");
    say(shortWords);
    ASSERT_TRUE(allEnd(4));
    for (const End& end : ends)
        EXPECT_TRUE(end.result.spoken) << end.result.fault;
    EXPECT_THAT(recording.stretches(0.26), SizeIs(4));
}

TEST_F(SpeechDispatcherTest, theLanguageIsThatOfTheMessages) {
    user.set("LANG", "de_AT.UTF-8");
    user.set("LC_MESSAGES", "");
    user.set("LC_ALL", "");
    EXPECT_EQ(speech.userLanguage(), "de-AT");
    user.set("LC_MESSAGES", "en_GB.UTF-8");
    EXPECT_EQ(speech.userLanguage(), "en-GB");
    user.set("LC_ALL", "C.UTF-8");
    EXPECT_EQ(speech.userLanguage(), "");
}

TEST(SpeechText, tagsHaveTheirUsualCase) {
    EXPECT_EQ(speechText::languageTag("EN-gb"), "en-GB");
    EXPECT_EQ(speechText::languageTag("zh-hant-tw"), "zh-Hant-TW");
    EXPECT_EQ(speechText::languageTag("en-gb-x-rp"), "en-GB-x-rp");
    EXPECT_EQ(speechText::languageTag("es_419"), "es-419");
    EXPECT_EQ(speechText::tagOfLocale("ca_ES@valencia"), "ca-ES");
}

TEST(SpeechText, linesHoldNoControlCharactersAndOnlyUtf8) {
    EXPECT_EQ(speechText::speakable("a\r\n.\r\nb\tc"), "a  .  b c");
    EXPECT_EQ(speechText::speakable("Gr\xc3\xbc\xc3\x9f"
                                    "e \xe2\x82\xac \xf0\x9f\x98\x80"),
              "Gr\xc3\xbc\xc3\x9f"
              "e \xe2\x82\xac \xf0\x9f\x98\x80");
    EXPECT_EQ(speechText::speakable("\xc3"), "\ufffd");
    EXPECT_EQ(speechText::speakable("\xed\xa0\x80!"), "\ufffd\ufffd\ufffd!");
    EXPECT_EQ(speechText::speakable(std::string(20'000, 'x') + "\xc3").size(), 10'000u);
}

TEST(SpeechText, voicesComeOutOfAnyAnswer) {
    const auto voices =
        speechText::voicesOf("espeak-ng", "249-German\tde\tnone\r\n249-German+Adam\tde\tAdam\r\n"
                                          "249-cut\tof\r\n\r\nnonsense\ta\tb\n249 OK\r\n");
    EXPECT_THAT(voices, ElementsAre(ports::Voice{.id = "espeak-ng/German",
                                                 .name = "German",
                                                 .language = "de",
                                                 .quality = speechText::moduleQuality("espeak-ng")}));
    EXPECT_THAT(speechText::voicesOf("rhvoice", "249-Alan\ten\tmale"), SizeIs(1));
}

TEST(SpeechText, ratesAndVolumesStayInTheirRange) {
    EXPECT_EQ(speechText::ssipRate(1, 0), 0);
    EXPECT_EQ(speechText::ssipRate(0.96, 10), 2);
    EXPECT_EQ(speechText::ssipRate(0.1, 0), -100);
    EXPECT_EQ(speechText::ssipRate(2.5, 0), 100);
    EXPECT_EQ(speechText::ssipRate(std::nan(""), 5), 5);
    EXPECT_EQ(speechText::ssipVolume(0), -100);
    EXPECT_EQ(speechText::ssipVolume(7), 100);
    EXPECT_GT(speechText::moduleQuality("piper-generic"), speechText::moduleQuality("rhvoice"));
    EXPECT_GT(speechText::moduleQuality("espeak-ng-mbrola"), speechText::moduleQuality("espeak-ng"));
    EXPECT_GT(speechText::moduleQuality("espeak-ng"), speechText::moduleQuality("something"));
}

} // namespace
} // namespace zenka::platform
