// The output of a gphoto2 shell in pieces: wherever they are cut, whatever is dropped meanwhile, and also
// where it is more than can be kept, each prompt counts once. The bytes 1 to 3 cut the input: a new piece, a
// trim, a question.
#include "Check.h"
#include "cameras/gphoto2/GPhoto2Text.h"
#include "cameras/gphoto2/ShellOutput.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace {

using zenka::cameras::ShellOutput;
using zenka::cameras::GPhoto2Text::countPrompts;
using zenka::cameras::GPhoto2Text::promptMark;

/// What ever came, beside the buffer that has it in pieces.
struct Heard {
    std::size_t limit = ShellOutput::usualLimit;
    ShellOutput output{limit};
    std::string all;

    void append(std::string_view piece) {
        output.append(piece);
        all += piece;
    }

    void checkKept() const {
        check(output.prompts() == countPrompts(all));
        check(output.text().size() <= limit);
        check(std::string_view(all).ends_with(output.text()));
    }

    void trim() {
        const std::size_t before = countPrompts(output.text());
        output.trimToLastPrompt();
        check(countPrompts(output.text()) == std::min<std::size_t>(before, 1));
        check(before == 0 || output.text().starts_with(promptMark));
    }

    void ask(std::size_t commands) const {
        const std::string_view replies = output.repliesOf(commands);
        const std::size_t there = countPrompts(output.text());
        check(output.text().ends_with(replies));
        check(countPrompts(replies) == std::min(there, commands + 1));
        check(there <= commands ? replies == output.text() : replies.starts_with(promptMark));
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    Heard slow; // byte by byte with a trim at each prompt, as a session does that reads slowly
    for (const std::size_t limit : {ShellOutput::usualLimit, std::size_t{100}}) {
        Heard heard{.limit = limit};
        for (std::size_t from = 0; from < input.size();) {
            const std::size_t cut = input.find_first_of("\1\2\3", from);
            const std::string_view piece = input.substr(from, cut == input.npos ? cut : cut - from);
            heard.append(piece);
            from = cut == input.npos ? input.size() : cut + 1;
            const char action = cut == input.npos ? '\3' : input[cut];
            if (action == '\2')
                heard.trim();
            else if (action == '\3')
                heard.ask(piece.size() % 7);
        }
        heard.checkKept();
        for (const char byte : std::exchange(heard.all, {})) {
            const std::size_t before = slow.output.prompts();
            slow.append(std::string_view(&byte, 1));
            if (slow.output.prompts() > before)
                slow.trim();
        }
        slow.checkKept();
    }
    return 0;
}
