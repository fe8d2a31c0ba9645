#include "eclipse/TerrainHorizon.h"
#include "eclipse/TerrainSampling.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace {

using namespace zenka::eclipse;

/// A tile of hills, with the colours of the terrain-RGB encoding.
std::vector<std::uint8_t> hills() {
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < TerrainSampling::tilePixels * TerrainSampling::tilePixels; ++i) {
        const int code = (10000 + 300 + i * 37 % 900) * 10;
        for (const int byte : {code >> 16, code >> 8 & 255, code & 255, 255})
            pixels.push_back(static_cast<std::uint8_t>(byte));
    }
    return pixels;
}

/// The 43,200 points of a place, once its tiles are there as pixels.
void profile(benchmark::State& state) {
    const auto tile = hills();
    std::size_t tiles = 0;
    for (auto _ : state) {
        TerrainSampling sampling(41.65, -0.88);
        tiles = sampling.tiles().size();
        for (std::size_t i = 0; i < tiles; ++i)
            sampling.take(i, tile, HeightEncoding::terrainRgb);
        benchmark::DoNotOptimize(sampling.profile());
    }
    state.counters["tiles"] = static_cast<double>(tiles);
}

} // namespace

BENCHMARK(profile)->Unit(benchmark::kMillisecond);
