#include <QCoreApplication>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

int main(int count, char** words) {
    // This program is linked with what stands between it and the system; its children are not.
    ::setenv("LD_PRELOAD", ZENKA_UMOCKDEV_PRELOAD, 1);
    const char* options = std::getenv("ASAN_OPTIONS"); // of the helper, which is ours
    ::setenv("ASAN_OPTIONS", (std::string(options ? options : "") + ":verify_asan_link_order=0").c_str(), 1);
    testing::InitGoogleTest(&count, words);
    const QCoreApplication application(count, words);
    return RUN_ALL_TESTS();
}
