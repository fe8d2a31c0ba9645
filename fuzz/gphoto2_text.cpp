// Anything may stand in what the gphoto2 child prints: each reader of it keeps to what its callers rely on,
// and what is sent back to a body is one word on one line.
#include "Check.h"
#include "base/Text.h"
#include "cameras/gphoto2/GPhoto2Readiness.h"
#include "cameras/gphoto2/GPhoto2Text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace zenka;
using namespace zenka::cameras;
namespace Text = GPhoto2Text;

bool isUtf8(std::string_view text) {
    return base::utf8Text(text).has_value();
}

bool isOneLine(std::string_view text) {
    return text.find('\n') == text.npos && base::trimmed(text) == text;
}

bool within(std::string_view part, std::string_view whole) {
    return part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size();
}

void checkDialogue(std::string_view output) {
    const std::string decoded = Text::decoded(output);
    check(isUtf8(decoded) && decoded.size() <= 2 * output.size());
    const auto replies = Text::replies(output);
    check(replies.size() == Text::countPrompts(output) && replies.size() == Text::countPrompts(decoded));
    for (const std::string_view reply : replies)
        check(within(reply, output) && reply.find(Text::promptMark) == reply.npos);

    const auto error = Text::firstErrorLine(output);
    check(!error || error->find('\n') == error->npos);
    for (const char* verb : {"trigger-capture", "capture-image", "wait-event 100ms"}) {
        const auto lenient = Text::fireErrorLine(output, verb, false);
        const auto strict = Text::fireErrorLine(output, verb, true);
        check(!lenient || strict == lenient); // who asks for more hears the fault all the same
    }
    constexpr std::size_t length = 160;
    const std::string tail = Text::outputTail(output, length);
    check(!tail.empty() && tail.size() <= 2 * length && isUtf8(tail));
    check(tail.find(Text::promptMark) == tail.npos);
}

void checkAnswers(std::string_view reply) {
    const auto choices = Text::choices(reply);
    for (const std::string& choice : choices)
        check(isOneLine(choice) && !choice.empty());
    check(choices.size() <= reply.size() / std::string_view("Choice:").size());
    const auto current = Text::current(reply);
    check(!current || isOneLine(*current));
    const auto program = Text::parseExpProgram(reply);
    check(program.has_value() == (current && !current->empty()));
    check(!program || program->modeName == *current);
    for (const std::string& label : Text::labels(reply))
        check(isOneLine(label));
    for (const auto& body : Text::parseAutodetect(reply))
        check(body.port.starts_with("usb:") && isOneLine(body.port) && isUtf8(body.port) &&
              isOneLine(body.model) && isUtf8(body.model));
    check(!Text::isDeviceGone(reply) || Text::isDeviceGone("x" + base::uppered(reply)));
    Text::parseAutoISO(reply);

    const GPhoto2Readiness::Answers answers{.cardLabels = Text::labels(reply),
                                            .focusMode = current,
                                            .expProgram = current,
                                            .captureMode = current,
                                            .autoISO = current,
                                            .longExposureNR = current};
    for (const auto& warning : GPhoto2Readiness::judge(answers, "Nikon DSC D750"))
        check(!warning.message.empty());
}

/// The nearest entry is written as the body wrote it, whatever else its list holds.
void checkWritten(const std::string& value, const std::vector<std::string>& list) {
    check(!value.empty() && isOneLine(value));
    if (!list.empty())
        check(std::ranges::any_of(list, [&](const auto& entry) { return base::trimmed(entry) == value; }));
}

void checkExposure(double number, const std::vector<std::string>& lines) {
    std::vector<std::string> shutters;
    std::vector<std::string> apertures;
    std::vector<std::string> isos;
    for (const std::string& line : lines) {
        const auto sec = Text::parseShutterChoice(line);
        check(!sec || std::isfinite(*sec));
        if (sec && *sec > 0)
            shutters.push_back(line);
        const auto fNumber = Text::parseFChoice(line);
        check(!fNumber || std::isfinite(*fNumber));
        if (fNumber && *fNumber > 0)
            apertures.push_back(line);
        const auto iso = base::readNumber(base::trimmed(line));
        if (iso && *iso > 0)
            isos.push_back(line);
    }
    if (!std::isfinite(number) || number <= 0)
        return;
    const ExposureChoices all{
        .shutter = lines, .iso = lines, .aperture = lines, .apertureProp = "f-number", .shutterFraction = {}};
    checkWritten(Text::shutterConfig(number, false, all), shutters);
    checkWritten(Text::apertureConfig(number, all), apertures);
    checkWritten(Text::isoConfig(1 + static_cast<int>(std::min(number, 1e6)), all), isos);
    const auto write = Text::shutterWrite(number, false, {.shutterFraction = lines});
    check((write.key == "shutterspeed2") == !shutters.empty());
    checkWritten(write.value, shutters);

    // Without a list the value itself goes out, and reads back to what was asked for.
    const auto back = Text::parseShutterChoice(Text::shutterArg(number, false));
    check(!back || std::abs(*back / number - 1) < 0.021);
    check(back || number < 1e-300); // the smallest have no reading
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    checkDialogue(text);
    checkAnswers(text);
    std::vector<std::string> lines;
    for (const std::string_view line : base::split(text, '\n'))
        lines.emplace_back(line);
    double number = 0;
    std::memcpy(&number, data + (size - std::min(size, sizeof number)), std::min(size, sizeof number));
    checkExposure(number, lines);
    for (const std::string_view line : {std::string_view(lines.front()), std::string_view("0.002")})
        if (const auto sec = Text::parseShutterChoice(line))
            checkExposure(*sec, lines);

    const std::string_view model = lines.front();
    check(Text::isOlympus(model) == Text::isOlympus(base::uppered(model)));
    check(!Text::usePersistent(model, {}) || Text::forcesCardTarget(model));
    Text::labelOfAnotherBody(lines.back(), model);
    return 0;
}
