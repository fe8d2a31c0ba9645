#include "script/CommandLines.h"

#include "script/Diagnostics.h"
#include "script/Limits.h"
#include "script/Parser.h"
#include "script/Tree.h"

namespace zenka::script {

namespace {

/// Loops stand no deeper in each other than Limits::nesting.
void collect(const std::vector<Node>& nodes, std::vector<CommandLine>& found) {
    for (const Node& node : nodes) {
        if (const auto* loop = std::get_if<Loop>(&node.what))
            collect(loop->body, found);
        else if (const auto* cue = std::get_if<CueLine>(&node.what); cue && !cue->shell.empty())
            found.push_back({.lineNo = cue->lineNo, .shell = cue->shell});
    }
}

} // namespace

bool canBeRead(std::span<const CommandLine> commands) {
    std::size_t bytes = 0;
    for (const CommandLine& command : commands)
        bytes += command.shell.size();
    return commands.size() <= mostCommandsToRead && bytes <= mostCommandBytesToRead;
}

std::vector<CommandLine> commandLines(std::string_view text) {
    const Limits limits;
    Diagnostics unused(0);
    std::vector<CommandLine> found;
    collect(parse(text, limits, unused), found);
    return found;
}

} // namespace zenka::script
