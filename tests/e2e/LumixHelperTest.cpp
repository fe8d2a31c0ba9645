// The Lumix helper as a process where there is no body.
#include "platform/LinuxChildProcesses.h"

#include <gmock/gmock.h>

using namespace zenka;
using base::Seconds;
using testing::HasSubstr;

namespace {

std::pair<std::optional<int>, std::string> run(const std::vector<std::string>& arguments) {
    platform::LinuxChildProcesses children;
    const auto child =
        children.start({.program = ZENKA_LUMIX_HELPER, .arguments = arguments, .mergeErrors = true}).child;
    const auto code = child->waitForEnd(Seconds{20});
    return {code, child->read(Seconds{1}).out};
}

} // namespace

TEST(LumixHelperProcess, withoutABodyItEndsWithAReason) {
    const auto [code, words] = run({"--bus", "250", "--address", "9"});
    EXPECT_EQ(code, 1);
    EXPECT_THAT(words, HasSubstr("zenka-lumix-helper: "));
}

TEST(LumixHelperProcess, withoutAPlaceItTellsItsUse) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{}, {"--bus", "1"}, {"--bus", "x", "--address", "2"}}) {
        const auto [code, words] = run(arguments);
        EXPECT_EQ(code, 2);
        EXPECT_THAT(words, HasSubstr("usage"));
    }
}
