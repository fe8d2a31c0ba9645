#include "platform/OneInstance.h"

#include "Waiting.h"
#include "support/TempFolder.h"

#include <QCoreApplication>
#include <QLocalSocket>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <thread>

namespace zenka::platform {

namespace {

TEST(OneInstance, aLaterOneHandsItsWordsToTheFirstUntilThatIsGone) {
    const test::TempFolder root;
    const auto folder = root.path() / "not yet there";
    auto first = std::make_unique<OneInstance>(folder);
    ASSERT_TRUE(first->first());
    QList<QByteArray> heard;
    first->listen([&](const QByteArray& words) { heard.append(words); });
    using std::filesystem::perms;
    for (const char* name : {"zenka.socket", "zenka.lock"})
        EXPECT_EQ(std::filesystem::status(folder / name).permissions() &
                      (perms::group_all | perms::others_all),
                  perms::none)
            << name;
    const QByteArray path = "/home/ü/a\nb %41.zenka";
    bool passed = false;
    bool later = true;
    std::jthread other([&] {
        const OneInstance second(folder);
        later = second.first();
        passed = second.passOn(path) && second.passOn({});
    });
    EXPECT_TRUE(test::serveUntil([&] { return heard.size() == 2; }));
    other.join();
    EXPECT_FALSE(later);
    EXPECT_TRUE(passed);
    EXPECT_EQ(heard, QList<QByteArray>({path, {}}));
    first.reset();
    EXPECT_TRUE(OneInstance(folder).first());
}

TEST(OneInstance, whoSaysNothingOrTooMuchIsLetGoAndNothingIsHeard) {
    const test::TempFolder root;
    OneInstance first(root.path());
    int heard = 0;
    first.listen([&](const QByteArray&) { ++heard; });
    QLocalSocket silent;
    QLocalSocket loud;
    for (QLocalSocket* caller : {&silent, &loud})
        caller->connectToServer(QString::fromStdString((root.path() / "zenka.socket").string()));
    loud.write(QByteArray(1'000'000, 'x'));
    EXPECT_TRUE(test::serveUntil([&] {
        return silent.state() == QLocalSocket::UnconnectedState &&
               loud.state() == QLocalSocket::UnconnectedState;
    }));
    EXPECT_EQ(heard, 0);
}

TEST(OneInstance, aFolderThatCannotBeMadeKeepsNobodyFromStarting) {
    EXPECT_TRUE(OneInstance("/proc/none/of/this").first());
}

} // namespace

} // namespace zenka::platform
