// A paint of the Location sheet's map at 1300 by 600 pixels: sea, land, coasts and borders.

#include "painting/WorldMapPainter.h"

#include <QImage>
#include <benchmark/benchmark.h>

namespace {

using namespace zenka;

/// Height of the map in degrees; around the middle of Spain, the world around the equator.
void landOf(benchmark::State& state) {
    painting::MapProjection map;
    map.resize({1300, 600});
    map.showHeight(static_cast<double>(state.range(0)));
    map.centreOn({.lat = 40.3, .lon = -3.5});
    const painting::MapColors colors{.sea = QColor(13, 22, 38),
                                     .land = QColor(20, 27, 39),
                                     .coast = QColor(159, 176, 195),
                                     .border = QColor(44, 58, 79),
                                     .path = {},
                                     .text = {},
                                     .page = Qt::black,
                                     .mark = {}};
    QImage image(1300, 600, QImage::Format_RGB32);
    for (auto _ : state) {
        QPainter painter(&image);
        painting::paintLand(painter, map, colors);
    }
}
BENCHMARK(landOf)->Arg(180)->Arg(60)->Arg(16)->Arg(2)->Unit(benchmark::kMillisecond);

} // namespace
