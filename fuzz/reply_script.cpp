// A reply of the assistant may hold anything: what is taken for a script is a part of it, and what is shown
// around it is the rest.
#include "Check.h"
#include "base/Text.h"
#include "script/CommandLines.h"
#include "services/ReplyScript.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zenka;
    const std::string_view reply(reinterpret_cast<const char*>(data), size);
    int asked = 0;
    const auto found = services::scriptIn(reply, [&](const std::string& script) {
        ++asked;
        return script.find("TAKEPIC") != script.npos;
    });
    check(asked <= 8);
    if (!found)
        return 0;
    check(!base::trimmed(found->script).empty());
    check(found->script.size() <= reply.size());
    check(base::replacedAll(reply, "\r\n", "\n").find(found->script) != std::string::npos);
    check(found->around.size() <= reply.size() + 64);
    for (const auto& command : script::commandLines(found->script))
        check(!command.shell.empty() && found->script.size() >= command.shell.size());
    return 0;
}
