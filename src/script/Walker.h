#pragma once

#include "script/Diagnostics.h"
#include "script/Limits.h"
#include "script/References.h"
#include "script/Tree.h"
#include "script/ZenkaScript.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zenka::script {

/// Walks a tree in order, expands its loops and collects what it gives.
class Walker {
public:
    Walker(const CompileContext& context, const Limits& limits, Diagnostics& diagnostics);

    /// Once.
    void walk(const std::vector<Node>& nodes, std::optional<double> varValue);

    /// All but the diagnostics, in the order of the walk.
    CompiledScript take();

private:
    /// Where in the loops the walk is.
    struct Place {
        std::optional<double> varValue;
        double extraOffset = 0;
        bool inLoop = false;
    };

    /// What is left to loops and series.
    struct Budget {
        std::size_t frames;
        std::int64_t steps;

        Budget half() const { return {.frames = frames / 2, .steps = steps / 2}; }
    };

    // False ends the loops around: they ask for too much.
    bool run(const std::vector<Node>& nodes, const Place& place);
    bool visit(const Loop& loop, const Place& place);
    bool visit(const TakeLine& line, const Place& place);
    bool visit(const CueLine& line, const Place& place);
    bool visit(const BracketLine& line, const Place& place);
    bool visit(const CamsetLine& line, const Place& place);
    bool runRounds(const Loop& loop, const Place& place);
    bool spend(std::size_t length);
    /// Spends nothing where it is more than most.
    bool spendFrames(const Budget& most, std::size_t count, std::size_t length);

    /// When the line happens; nothing, and a diagnostic, where it cannot.
    std::optional<double> offsetOf(const Line& line, const Moment& moment, const Place& place);
    int frameCount(const TakeLine& line) const;
    double frameShutter(const TakeLine& line, int frame) const;
    /// False, and a diagnostic, where a frame cannot stand; then there is none of them.
    bool emitFrames(const TakeLine& line, double offset, const std::string& label);

    Diagnostics& diagnostics_;
    References references_;
    Budget budget_;
    bool shortOfSteps_ = false;  ///< and not of frames, when spending failed last
    std::optional<double> last_; ///< LAST
    int bracketFrames_ = 3;
    double bracketStep_ = 1;
    CompiledScript result_;
    std::set<std::string, std::less<>> cameras_;
};

} // namespace zenka::script
