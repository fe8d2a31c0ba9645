#include "script/Parser.h"

#include "base/Text.h"
#include "script/LineKinds.h"

#include <absl/strings/str_format.h>

#include <array>
#include <optional>
#include <utility>

namespace zenka::script {

namespace {

std::optional<Series> seriesOf(std::string_view command) {
    static constexpr std::array<std::pair<std::string_view, Series>, 7> table{{
        {"TAKEPIC", Series::single},
        {"TAKEBST", Series::burst},
        {"TAKEBKT", Series::bracket},
        {"RAMPUP", Series::rampUp},
        {"RAMPDN", Series::rampDown},
        {"RAMPSUD", Series::rampUpDown},
        {"SETEXP", Series::none},
    }};
    for (const auto& [name, series] : table)
        if (name == command)
            return series;
    return std::nullopt;
}

/// Loops are kept on a stack of their own and not on the machine's, whatever their depth.
class Parser {
public:
    Parser(std::string_view text, const Limits& limits, Diagnostics& diagnostics)
        : lines_(text), limits_(limits), diagnostics_(diagnostics) {}

    std::vector<Node> run() {
        while (true) {
            const std::optional<std::string_view> line = lines_.next();
            if (!line)
                break;
            readLine(*line);
        }
        while (!open_.empty())
            close();
        return std::move(top_);
    }

private:
    struct Open {
        Loop loop;
        bool kept;
    };

    void readLine(std::string_view line) {
        if (line.empty() || line.starts_with('#'))
            return;
        const Fields fields = splitFields(line);
        const std::string command = base::uppered(fields.front());
        if (command == "ENDFOR") {
            if (open_.empty())
                diagnostics_.error(lines_.lineNo(), "ENDFOR without FOR");
            else
                close();
        } else if (command == "FOR") {
            open(line, readFor(fields));
        } else if (const auto series = seriesOf(command)) {
            add(line, readTake(fields, *series));
        } else if (command == "BKTDATA") {
            add(line, readBracket(fields));
        } else if (command == "PLAY") {
            add(line, readPlay(fields));
        } else if (command == "COMMAND") {
            add(line, readCommand(fields));
        } else if (command == "CAMSET") {
            if (fields.size() < 2 || fields[1].empty())
                diagnostics_.warning(lines_.lineNo(), "CAMSET needs a camera name");
            else
                add(line, readCamset(fields));
        } else if (command != "LVSTART" && command != "LVSTOP" && command != "CHGCSSL") {
            diagnostics_.warning(lines_.lineNo(), absl::StrFormat("unknown command '%s'", fields.front()));
        }
    }

    void open(std::string_view line, Loop loop) {
        if (loop.fault.empty() && open_.size() >= limits_.nesting)
            loop.fault = absl::StrFormat("FOR loops nest at most %d deep, loop skipped", limits_.nesting);
        if (!loop.fault.empty())
            diagnostics_.error(lines_.lineNo(), loop.fault);
        const bool kept = loop.fault.empty();
        place(line, loop);
        open_.push_back({std::move(loop), kept});
    }

    /// A loop that cannot stand is read to its end, so that nesting holds, and thrown away, as is one with
    /// nothing in it.
    void close() {
        Open done = std::move(open_.back());
        open_.pop_back();
        if (done.kept && !done.loop.body.empty())
            body().push_back({std::move(done.loop)});
    }

    template <typename Kind>
    void add(std::string_view line, Kind kind) {
        place(line, kind);
        body().push_back({std::move(kind)});
    }

    template <typename Kind>
    void add(std::string_view line, std::optional<Kind> kind) {
        if (kind)
            add(line, std::move(*kind));
    }

    void place(std::string_view line, Line& record) const {
        record.lineNo = lines_.lineNo();
        record.length = line.size();
    }

    std::vector<Node>& body() { return open_.empty() ? top_ : open_.back().loop.body; }

    LineReader lines_;
    const Limits& limits_;
    Diagnostics& diagnostics_;
    std::vector<Node> top_;
    std::vector<Open> open_;
};

} // namespace

std::vector<Node> parse(std::string_view text, const Limits& limits, Diagnostics& diagnostics) {
    return Parser(text, limits, diagnostics).run();
}

} // namespace zenka::script
