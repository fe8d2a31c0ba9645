#include <QCoreApplication>
#include <gtest/gtest.h>

#include <cstdlib>

int main(int count, char** words) {
    // This program is linked with what stands between it and the system; its children are not.
    ::setenv("LD_PRELOAD", ZENKA_UMOCKDEV_PRELOAD, 1);
    testing::InitGoogleTest(&count, words);
    const QCoreApplication application(count, words);
    return RUN_ALL_TESTS();
}
