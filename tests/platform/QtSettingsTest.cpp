#include "platform/QtSettings.h"

#include "platform/LinuxFiles.h"
#include "platform/ThreadWorkQueues.h"
#include "platform/Waiting.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <random>
#include <sys/stat.h>

namespace zenka::platform {
namespace {

namespace fs = std::filesystem;
using test::patience;
using testing::Eq;
using testing::HasSubstr;
using testing::Optional;

/// Passes a queue on and counts what is posted with a delay.
class CountingQueues final : public ports::WorkQueues {
public:
    class Queue final : public ports::WorkQueue {
    public:
        Queue(std::shared_ptr<ports::WorkQueue> inner, int& count)
            : inner_(std::move(inner)), count_(count) {}
        void post(Function function) override { inner_->post(std::move(function)); }
        void postAfter(base::Seconds delay, Function function) override {
            ++count_;
            inner_->postAfter(delay, std::move(function));
        }
        bool drain(base::Seconds limit) override { return inner_->drain(limit); }

    private:
        std::shared_ptr<ports::WorkQueue> inner_;
        int& count_;
    };

    std::shared_ptr<ports::WorkQueue> serial(const std::string& name) override {
        return std::make_shared<Queue>(inner_.serial(name), count);
    }
    void background(std::function<void()> function) override { inner_.background(std::move(function)); }

    int count = 0;

private:
    ThreadWorkQueues inner_;
};

class QtSettingsTest : public testing::Test {
protected:
    test::TempFolder scratch_;
    fs::path file_ = scratch_.path() / "config folder" / "zenka.conf";
    ThreadWorkQueues queues_;
    LinuxFiles files_;
};

TEST_F(QtSettingsTest, valuesReadBackAtOnceAndAfterARestart) {
    std::string script = "# Überschrift – “corona”\r\n\tTAKEPIC,C2,-,00:01.0;[group]\\n=%20@x\n";
    while (script.size() < 3'000'000)
        script += script;
    const std::map<std::string, std::string> texts{{"eclipse.scriptText", script},
                                                   {"eclipse.simClock", "2026-08-12|-1234.5"},
                                                   {"empty", ""},
                                                   {"blanks", "  both ends  "},
                                                   {"at", "@Invalid()"},
                                                   {"commas", "a, b,\"c\""},
                                                   {"site.Ávila/north", "40.6,-4.7"},
                                                   {"nul", std::string("a\0b", 3)},
                                                   {"last", "\\"}};
    const auto check = [&](const QtSettings& settings) {
        for (const auto& [key, value] : texts)
            EXPECT_TRUE(settings.text(key) == value) << key;
        EXPECT_THAT(settings.number("third"), Optional(1.0 / 3.0));
        EXPECT_THAT(settings.number("whole"), Optional(-7.0));
        EXPECT_THAT(settings.flag("yes"), Optional(true));
        EXPECT_THAT(settings.flag("no"), Optional(false));
        EXPECT_EQ(settings.text("gone"), std::nullopt);
        EXPECT_EQ(settings.flag("whole"), std::nullopt);
        EXPECT_EQ(settings.number("yes"), std::nullopt);
        EXPECT_EQ(settings.number("blanks"), std::nullopt);
        EXPECT_EQ(settings.flag("missing"), std::nullopt);
        EXPECT_THAT(settings.keysBeginningWith("eclipse.s"),
                    testing::ElementsAre("eclipse.scriptText", "eclipse.simClock"));
        EXPECT_THAT(settings.keysBeginningWith("gon"), testing::IsEmpty());
    };
    {
        QtSettings settings(queues_, file_);
        for (const auto& [key, value] : texts)
            settings.setText(key, value);
        settings.setNumber("third", 1.0 / 3.0);
        settings.setNumber("whole", -7);
        settings.setFlag("yes", true);
        settings.setFlag("no", false);
        settings.setText("gone", "soon");
        ASSERT_TRUE(settings.flush(patience));
        settings.remove("gone");
        check(settings);
    }
    // the same bytes under another name, so that nothing a library remembers is read
    const fs::path moved = scratch_.path() / "moved.conf";
    fs::rename(file_, moved);
    const QtSettings settings(queues_, moved);
    EXPECT_EQ(settings.damage(), std::nullopt);
    check(settings);
}

TEST_F(QtSettingsTest, theEnvironmentRulesOverTheKeysThatItMay) {
    ::setenv("ZENKA_SERVICE_HOST", "https://given.example", 1);
    ::setenv("ZENKA_OTHER", "x", 1);
    {
        QtSettings settings(queues_, file_);
        settings.letEnvironmentRule("zenka.serviceHost");
        settings.letEnvironmentRule("zenka.notGiven");
        settings.setText("zenka.serviceHost", "https://typed.example");
        settings.setText("zenka.notGiven", "typed");
        EXPECT_EQ(settings.text("zenka.serviceHost"), "https://given.example");
        EXPECT_EQ(settings.text("zenka.notGiven"), "typed");
        EXPECT_EQ(settings.text("zenka.other"), std::nullopt);
    }
    ::unsetenv("ZENKA_SERVICE_HOST");
    ::unsetenv("ZENKA_OTHER");
    QtSettings settings(queues_, file_);
    settings.letEnvironmentRule("zenka.serviceHost");
    EXPECT_EQ(settings.text("zenka.serviceHost"), "https://typed.example");
}

TEST_F(QtSettingsTest, aBurstOfWritesIsOneWriteAndComesToTheDiskByItself) {
    CountingQueues queues;
    QtSettings settings(queues, file_);
    for (int number = 0; number < 1000; ++number)
        settings.setNumber("clock", number);
    EXPECT_LE(queues.count, 5); // one, unless this thread was put aside for long
    EXPECT_TRUE(test::serveUntil(
        [&] { return files_.read(file_).value_or("").find("clock=999") != std::string::npos; }));
}

TEST_F(QtSettingsTest, nobodyElseCanReadTheFile) {
    const auto rights = [&] { return fs::status(file_).permissions(); };
    const mode_t usual = ::umask(022);
    {
        QtSettings settings(queues_, file_);
        settings.setText("zenka.terrainToken", "secret");
        ASSERT_TRUE(settings.flush(patience));
        EXPECT_EQ(rights(), fs::perms(0600));
        EXPECT_EQ(fs::status(file_.parent_path()).permissions(), fs::perms(0700));
    }
    ASSERT_EQ(::chmod(file_.c_str(), 0644), 0);
    QtSettings settings(queues_, file_);
    settings.setText("zenka.terrainToken", "other");
    ASSERT_TRUE(settings.flush(patience));
    EXPECT_EQ(rights(), fs::perms(0600));
    ::umask(usual);
}

TEST_F(QtSettingsTest, aDamagedFileGivesWhatCanBeReadAndIsKept) {
    const std::string damaged =
        "[General]\neclipse.selectedId=2026-08-12\n\x01\x02 no line of this kind\nkept=1\n";
    ASSERT_TRUE(files_.writeAtomically(file_, damaged));
    {
        const QtSettings settings(queues_, file_);
        EXPECT_THAT(settings.damage(), Optional(HasSubstr("are damaged")));
        EXPECT_THAT(settings.text("eclipse.selectedId"), Optional(Eq("2026-08-12")));
        EXPECT_THAT(settings.number("kept"), Optional(1.0));
    }
    int copies = 0;
    for (const auto& entry : fs::directory_iterator(file_.parent_path()))
        copies += entry.path().filename().string().starts_with("zenka.conf.damaged-") &&
                  files_.read(entry.path()) == damaged;
    EXPECT_EQ(copies, 1);
    // the file itself is whole again
    const fs::path moved = scratch_.path() / "moved.conf";
    fs::rename(file_, moved);
    const QtSettings settings(queues_, moved);
    EXPECT_EQ(settings.damage(), std::nullopt);
    EXPECT_THAT(settings.number("kept"), Optional(1.0));
}

TEST_F(QtSettingsTest, aFileOfAnyBytesHarmsNothing) {
    std::mt19937 random(20260812);
    std::uniform_int_distribution<int> byte(0, 255);
    const std::string syntax = "[]=\\\"@x;%,\n";
    for (int round = 0; round < 60; ++round) {
        std::string content;
        for (int count = 0; count < 400; ++count)
            content += random() % 3 ? static_cast<char>(byte(random)) : syntax[random() % syntax.size()];
        const fs::path file = scratch_.path() / ("random " + std::to_string(round));
        ASSERT_TRUE(files_.writeAtomically(file, content));
        QtSettings settings(queues_, file);
        settings.setText("written", "after");
        EXPECT_TRUE(settings.flush(patience));
        EXPECT_THAT(files_.read(file), Optional(HasSubstr("written=after")));
    }
}

TEST_F(QtSettingsTest, whatTheDiskRefusedIsWrittenWithTheNextChange) {
    const fs::path folder = file_.parent_path();
    ASSERT_TRUE(files_.writeAtomically(folder, "a file where the folder should be"));
    QtSettings settings(queues_, file_);
    settings.setText("first", "one");
    EXPECT_FALSE(settings.flush(patience));
    EXPECT_THAT(settings.text("first"), Optional(Eq("one")));
    files_.remove(folder);
    settings.setText("second", "two");
    EXPECT_TRUE(settings.flush(patience));
    EXPECT_THAT(files_.read(file_),
                Optional(testing::AllOf(HasSubstr("first=one"), HasSubstr("second=two"))));
}

} // namespace
} // namespace zenka::platform
