#include "platform/ChildJobs.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

int main(int count, char** words) {
    if (count > 2 && std::string(words[1]) == "--child")
        return zenka::test::runChildJob({words + 2, words + count});
    testing::InitGoogleTest(&count, words);
    const QCoreApplication application(count, words);
    return RUN_ALL_TESTS();
}
