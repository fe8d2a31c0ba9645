// How long it takes to compare a card with its script, and to write the page. Wanted: both passes of the
// alignment for 2,800 captures and 2,800 frames under 200 ms, the page for 3,000 frames under 50 ms.
#include "analysis/ReportHTML.h"
#include "analysis/RunAnalysis.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using namespace zenka;
using namespace zenka::analysis;

/// A long run in sets of as many exposures as told, its card three hours off and drifting, with every 50th
/// frame lost and every 70th at a wrong shutter.
struct Run {
    std::vector<script::Capture> captures;
    std::vector<ExifFrame> frames;
};

Run runOf(std::int64_t count, std::int64_t exposures) {
    Run run;
    for (std::int64_t i = 0; i < count; ++i) {
        const double at = 2.5 * static_cast<double>(i);
        const double shutter = 0.0005 * (1 + static_cast<double>(i % exposures));
        run.captures.push_back({.offsetSec = at,
                                .refLabel = i % 3 == 0 ? "C2 +5s" : "Pre 50%",
                                .camera = "CAM1",
                                .shutterSec = shutter,
                                .aperture = 8,
                                .iso = 100,
                                .comment = "Corona set " + std::to_string(i / exposures)});
        if (i % 50 != 7)
            run.frames.push_back({.date = {1786563000.0 + at * 1.0005},
                                  .iso = 100,
                                  .aperture = 8,
                                  .shutterSec = i % 70 == 9 ? 4 * shutter : shutter});
    }
    run.frames.resize(run.captures.size(), run.frames.back()); // and a button that was held too long
    return run;
}

void comparing2800CapturesWith2800Frames(benchmark::State& state) {
    const Run run = runOf(2800, state.range(0));
    int matched = 0;
    for (auto _ : state) {
        const AnalysisResult result =
            RunAnalysis::compare(run.captures, run.frames, {"CARD", "script", "CAM1"});
        matched = result.matched;
        benchmark::DoNotOptimize(matched);
    }
    state.counters["matched"] = matched;
}
BENCHMARK(comparing2800CapturesWith2800Frames)
    ->ArgName("exposures")
    ->Arg(1)
    ->Arg(9)
    ->Arg(2800)
    ->Unit(benchmark::kMillisecond);

void thePageFor3000Frames(benchmark::State& state) {
    const Run run = runOf(3000, 9);
    const AnalysisResult result = RunAnalysis::compare(run.captures, run.frames, {"CARD", "script", "CAM1"});
    std::size_t bytes = 0;
    for (auto _ : state) {
        const std::string page = ReportHTML::generate(
            result, run.frames, run.captures, {.generated = {1786573200}, .zone = absl::UTCTimeZone()});
        bytes = page.size();
        benchmark::DoNotOptimize(bytes);
    }
    state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(thePageFor3000Frames)->Unit(benchmark::kMillisecond);

} // namespace
