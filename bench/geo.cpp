// How long the questions about places take. A search runs with every letter typed, and a map asks for its
// outlines with every move of it.
#include "geo/Bundled.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace zenka::geo;

void zone(benchmark::State& state, double lat, double lon) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(bundledZones().zoneAt(lat, lon));
    }
}
BENCHMARK_CAPTURE(zone, zaragoza, 41.65, -0.88);
BENCHMARK_CAPTURE(zone, baarle, 51.44, 4.93);
BENCHMARK_CAPTURE(zone, indiana, 38.37, -86.34);
BENCHMARK_CAPTURE(zone, atSea, 30.0, -45.0);

/// A walk over the whole Earth, for the mean.
void zoneAnywhere(benchmark::State& state) {
    double lat = 0;
    double lon = 0;
    for (auto _ : state) {
        lat = lat > 90 - 0.618 ? lat - 180 + 0.618 : lat + 0.618;
        lon = lon > 180 - 137.508 ? lon - 360 + 137.508 : lon + 137.508;
        benchmark::DoNotOptimize(bundledZones().zoneAt(lat, lon));
    }
}
BENCHMARK(zoneAnywhere);

void nearest(benchmark::State& state, double lat, double lon) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(bundledPlaces().nearest(lat, lon, 30));
    }
}
BENCHMARK_CAPTURE(nearest, zaragoza, 41.65, -0.88);
BENCHMARK_CAPTURE(nearest, ruhr, 51.45, 7.0);
BENCHMARK_CAPTURE(nearest, atSea, 30.0, -45.0);

void search(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(bundledPlaces().search(text, 10));
    }
}
BENCHMARK_CAPTURE(search, oneLetter, "z");
BENCHMARK_CAPTURE(search, commonLetter, "a");
BENCHMARK_CAPTURE(search, zara, "zara");
BENCHMARK_CAPTURE(search, aCoruna, "a coruña");
BENCHMARK_CAPTURE(search, country, "san, is");
BENCHMARK_CAPTURE(search, nothing, "aaaa");

void outlines(benchmark::State& state, Detail detail, const GeoBox& box) {
    std::size_t points = 0;
    for (auto _ : state) {
        points = 0;
        for (const Polyline& line : bundledOutlines().coasts(detail, box)) {
            points += line.size();
        }
        for (const Polyline& line : bundledOutlines().borders(detail, box)) {
            points += line.size();
        }
        benchmark::DoNotOptimize(bundledOutlines().land(detail, box));
    }
    state.counters["points"] = static_cast<double>(points);
}
BENCHMARK_CAPTURE(outlines, worldCoarse, Detail::coarse, GeoBox{})->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(outlines, worldFine, Detail::fine, GeoBox{})->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(outlines, europeMedium, Detail::medium, GeoBox{35, -12, 70, 40})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(outlines, icelandFine, Detail::fine, GeoBox{63, -25, 67, -13})
    ->Unit(benchmark::kMicrosecond);

} // namespace
