#include "services/ReplyScript.h"

#include "base/Text.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace zenka::services {

namespace {

constexpr int mostTried = 8;             ///< blocks without a word, each of which is compiled
constexpr std::size_t deepestIndent = 3; ///< a fence further in is a line of text
constexpr std::size_t shortestFence = 3;

/// A line of backticks, with what stands behind them.
struct Fence {
    std::size_t ticks = 0;
    std::string_view word;
};

std::optional<Fence> fenceOf(std::string_view line) {
    const std::size_t indent = line.find_first_not_of(' ');
    if (indent == line.npos || indent > deepestIndent)
        return std::nullopt;
    line.remove_prefix(indent);
    const std::size_t ticks = std::min(line.find_first_not_of('`'), line.size());
    if (ticks < shortestFence || line.find('`', ticks) != line.npos)
        return std::nullopt;
    return Fence{.ticks = ticks, .word = base::trimmed(line.substr(ticks))};
}

/// Where a block stands in the reply: its own lines, and with the fences.
struct Block {
    std::string_view word;
    std::size_t from = 0;
    std::size_t to = 0;
    std::size_t outerFrom = 0;
    std::size_t outerTo = 0;
};

std::vector<Block> blocksOf(std::string_view reply) {
    std::vector<Block> blocks;
    std::size_t ticks = 0; // of the fence that is open
    for (std::size_t at = 0; at < reply.size();) {
        const std::size_t newline = std::min(reply.find('\n', at), reply.size());
        const std::size_t next = std::min(newline + 1, reply.size());
        if (const auto fence = fenceOf(reply.substr(at, newline - at))) {
            if (ticks == 0) {
                ticks = fence->ticks;
                blocks.push_back({.word = fence->word,
                                  .from = next,
                                  .to = reply.size(),
                                  .outerFrom = at,
                                  .outerTo = reply.size()});
            } else if (fence->word.empty() && fence->ticks >= ticks) {
                ticks = 0;
                blocks.back().to = at;
                blocks.back().outerTo = next;
            }
        }
        at = next;
    }
    return blocks;
}

std::string scriptOf(std::string_view reply, const Block& block) {
    return base::replacedAll(reply.substr(block.from, block.to - block.from), "\r\n", "\n");
}

} // namespace

std::optional<ReplyScript> scriptIn(std::string_view reply,
                                    const std::function<bool(const std::string& script)>& compiles) {
    std::vector<Block> blocks = blocksOf(reply);
    std::ranges::reverse(blocks);
    int tried = 0;
    for (const Block& block : blocks) {
        const bool marked = base::equalIgnoringCase(block.word, "zenka");
        if (!marked && (!block.word.empty() || ++tried > mostTried))
            continue;
        std::string script = scriptOf(reply, block);
        if (base::trimmed(script).empty() || (!marked && !compiles(script)))
            continue;
        ReplyScript found{.script = std::move(script)};
        found.around.append(reply.substr(0, block.outerFrom))
            .append("[the script: see the working script]\n")
            .append(reply.substr(block.outerTo));
        return found;
    }
    return std::nullopt;
}

} // namespace zenka::services
