#include "GPhoto2Bench.h"
#include "cameras/gphoto2/ShellOutput.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

using namespace zenka;
using namespace zenka::cameras;
using test::GPhoto2Bench;

namespace {

/// One command of a recording and all that came before the next prompt, echo included.
struct Exchange {
    std::string command;
    std::string reply;
};

std::string recording(const std::string& name) {
    std::ifstream file(std::string(ZENKA_SOURCE_DIR "/tests/data/gphoto2/") + name, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    EXPECT_FALSE(bytes.empty()) << name;
    return bytes;
}

std::vector<Exchange> shellRecording(const std::string& name) {
    std::vector<Exchange> exchanges;
    const std::string bytes = recording(name);
    for (const std::string_view reply : GPhoto2Text::replies(bytes)) {
        // The second echo stands on a line of its own and is never wrapped.
        const std::size_t line = reply.find('\n') + 1;
        exchanges.push_back({.command = std::string(reply.substr(line, reply.find('\n', line) - line)),
                             .reply = std::string(reply)});
    }
    return exchanges;
}

/// The byte string literal that begins at a "b'" or 'b"' of Python's.
std::string bytesLiteral(std::string_view text) {
    std::string bytes;
    const char quote = text[1];
    for (std::size_t i = 2; i < text.size() && text[i] != quote; ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        ++i;
        bytes += text[i] == 'n' ? '\n' : text[i] == 't' ? '\t' : text[i] == 'r' ? '\r' : text[i];
    }
    return bytes;
}

std::vector<Exchange> faultRecording(const std::string& name) {
    std::vector<Exchange> exchanges;
    std::istringstream lines(recording(name));
    std::string command;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("> "))
            command = line.substr(2, line.find("   [") - 2);
        else if (line.starts_with("b") && !command.empty())
            exchanges.push_back({.command = std::exchange(command, {}), .reply = bytesLiteral(line)});
    }
    return exchanges;
}

const std::vector<std::string> shells{"eos-shell.raw",     "nikon-shell.raw", "disk-shell.raw",
                                      "minimal-shell.raw", "pipelined.raw",   "wait-event.raw"};

} // namespace

TEST(GPhoto2Transcripts, everyPromptIsCountedHoweverTheBytesArrive) {
    for (const std::string& name : shells) {
        const std::string bytes = recording(name);
        const std::size_t prompts = GPhoto2Text::countPrompts(bytes);
        ASSERT_GT(prompts, 2U) << name;
        for (const std::size_t step : {std::size_t{1}, std::size_t{7}, std::size_t{4096}}) {
            ShellOutput output;
            for (std::size_t at = 0; at < bytes.size(); at += step)
                output.append(std::string_view(bytes).substr(at, step));
            EXPECT_EQ(output.prompts(), prompts) << name << " in steps of " << step;
            output.trimToLastPrompt();
            EXPECT_TRUE(output.text().starts_with("gphoto2: {")) << name;
            output.append(" x\ngphoto2: {/a} /> gphoto2: {/a} /> ");
            EXPECT_EQ(output.prompts(), prompts + 2);
        }
    }
}

TEST(ShellOutput, anOutputWithoutEndIsHeldToItsLimitAndLosesNoPrompt) {
    constexpr std::size_t limit = 1000;
    ShellOutput output(limit);
    std::size_t prompts = 0;
    for (int i = 0; i < 100; ++i) {
        for (const std::string_view piece :
             {"gphoto", "2: {/a} /> trigger-capture\n", "UNKNOWN PTP Property d11b changed\n"})
            output.append(piece);
        EXPECT_EQ(output.prompts(), ++prompts);
        EXPECT_LE(output.text().size(), limit);
    }
    EXPECT_EQ(GPhoto2Text::countPrompts(output.repliesOf(3)), 4U);
    output.append(std::string(5 * limit, 'x'));
    output.append("\ngphoto2: {/a} /> ");
    EXPECT_EQ(output.prompts(), prompts + 1);
    EXPECT_LE(output.text().size(), limit);
    output.trimToLastPrompt();
    EXPECT_EQ(output.text(), "gphoto2: {/a} /> ");
}

TEST(GPhoto2Transcripts, aCommandFailsExactlyWhereTheRecordingSaysSo) {
    int looked = 0;
    int failed = 0;
    for (const std::string& name : {std::string("eos-faults.txt"), std::string("nikon-faults.txt")}) {
        for (const Exchange& exchange : faultRecording(name)) {
            if (exchange.reply.find("<EPIPE>") != std::string::npos)
                continue;
            const bool fault = exchange.reply.find("*** Error") != std::string::npos ||
                               exchange.reply.find("ERROR:") != std::string::npos;
            EXPECT_EQ(GPhoto2Text::firstErrorLine(exchange.reply).has_value(), fault)
                << name << ": " << exchange.command << "\n"
                << exchange.reply;
            ++looked;
            failed += fault ? 1 : 0;
        }
    }
    EXPECT_GT(looked, 60);
    EXPECT_GT(failed, 30);
}

TEST(GPhoto2Transcripts, aSessionHearsEachRecordingAsItWasSpoken) {
    for (const std::string& name : shells) {
        GPhoto2Bench bench;
        const std::vector<Exchange> exchanges = shellRecording(name);
        std::size_t next = 0;
        bench.children.answer = [&](const std::string& command) {
            EXPECT_EQ(command, exchanges[next].command) << name;
            const std::string& reply = exchanges[next++].reply;
            // The scripted shell says the echo.
            const std::size_t first = reply.find('\n') + 1;
            const std::size_t second = reply.find('\n', first) + 1;
            return test::ScriptedChildren::Answer{.text = reply.substr(second)};
        };
        GPhoto2Session session(bench.program, {.port = "usb:001,001"});
        ASSERT_TRUE(session.start(base::Seconds{12}));
        for (const Exchange& exchange : exchanges) {
            if (exchange.command == "exit")
                break;
            const std::string reply = session.runRaw(exchange.command, base::Seconds{5});
            EXPECT_EQ(GPhoto2Text::firstErrorLine(reply), GPhoto2Text::firstErrorLine(exchange.reply));
            EXPECT_EQ(GPhoto2Text::choices(reply), GPhoto2Text::choices(exchange.reply));
        }
        EXPECT_EQ(next + 1, exchanges.size()) << name;
    }
}

TEST(GPhoto2Transcripts, aPipelinedShotIsJudgedByItsOwnVerb) {
    const std::string bytes = recording("pipelined.raw");
    std::vector<std::size_t> prompts;
    for (std::size_t at = bytes.find("gphoto2: {"); at != bytes.npos; at = bytes.find("gphoto2: {", at + 1))
        prompts.push_back(at);
    // Three commands with a shot that worked; then a refused setting with a refused shot.
    EXPECT_EQ(GPhoto2Text::fireErrorLine(bytes.substr(0, prompts[3]), "trigger-capture", false),
              std::nullopt);
    EXPECT_EQ(GPhoto2Text::fireErrorLine(bytes.substr(prompts[3], prompts[5] - prompts[3]), "trigger-capture",
                                         false),
              "Could not trigger capture.");
}

TEST(GPhoto2Transcripts, listsAndValuesOfTheBodiesAreRead) {
    std::map<std::string, std::string> replies;
    for (const Exchange& exchange : shellRecording("nikon-shell.raw"))
        replies.emplace(exchange.command, exchange.reply);
    const auto fractions = GPhoto2Text::choices(replies["get-config shutterspeed2"]);
    ASSERT_EQ(fractions.size(), 53U);
    EXPECT_EQ(fractions.front(), "1/4000");
    EXPECT_EQ(
        std::ranges::count_if(
            fractions, [](const auto& text) { return GPhoto2Text::parseShutterChoice(text).has_value(); }),
        52);
    EXPECT_EQ(GPhoto2Text::shutterWrite(0.4, false, {.shutterFraction = fractions}).text(),
              "shutterspeed2=10/25");
    EXPECT_EQ(GPhoto2Text::parseExpProgram(replies["get-config expprogram"])->modeName, "M");
    EXPECT_EQ(GPhoto2Text::parseAutoISO(*GPhoto2Text::current(replies["get-config autoiso"])), false);

    const std::string single = recording("oneshot.txt");
    const std::size_t at = single.find("Model          ");
    const auto found = GPhoto2Text::parseAutodetect(single.substr(at, single.find("[rc", at) - at));
    EXPECT_EQ(found,
              (std::vector<GPhoto2Text::Detected>{{.model = "Nikon DSC D750", .port = "usb:001,001"}}));
    EXPECT_EQ(GPhoto2Text::labels(single), (std::vector<std::string>{"GPVCS Label"}));
    EXPECT_TRUE(GPhoto2Text::isDeviceGone("*** Error (-5: 'Unknown port') ***"));
    EXPECT_TRUE(
        GPhoto2Text::isDeviceGone("Error (-52: 'Could not find the requested device on the USB port')"));
    EXPECT_FALSE(GPhoto2Text::isDeviceGone("Could not trigger capture."));
}
