#include "painting/SharingPicture.h"

#include "eclipse/SiteWords.h"
#include "geo/Bundled.h"
#include "painting/AppIcon.h"
#include "painting/WorldMapPainter.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QLinearGradient>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace zenka::painting {

namespace {

constexpr QSize pictureSize(1200, 630);
constexpr double mapHeight = 420;
/// Lines are drawn so much thicker than in the window, for the picture is mostly seen small.
constexpr double boldness = 2;

/// Degrees from the southern to the northern edge of the map: of one that shows a whole path, and of one that
/// shows a part.
constexpr double leastHeight = 14;
constexpr double mostHeight = 66;
constexpr double partHeight = 44;

/// Nearer to a pole the map is drawn out beyond recognition; a path that comes there from lands with people
/// is shown in part.
constexpr double polarDeg = 76;
constexpr double peopledDeg = 58;

const MapColors pictureColors{.sea = QColor(14, 24, 46),
                              .land = QColor(52, 66, 96),
                              .coast = QColor(132, 152, 190),
                              .border = QColor(78, 95, 131),
                              .path = QColor(255, 181, 92),
                              .text = QColor(255, 255, 255),
                              .page = QColor(6, 10, 24),
                              .mark = QColor(255, 255, 255)};

MapProjection window(QSizeF size, double height, const geo::GeoPoint& centre) {
    MapProjection map;
    map.resize(size);
    map.showHeight(height);
    map.centreOn(centre);
    return map;
}

/// Whether a point of a path is well within the window.
bool shows(const MapProjection& map, const geo::GeoPoint& point) {
    const double margin = 0.06 * map.size().height();
    const double turn = 360 * std::round((map.centre().lon - point.lon) / 360);
    const QRectF inside = QRectF(QPointF(0, 0), map.size()).adjusted(margin, margin, -margin, -margin);
    return inside.contains(map.pixel(point.lat, point.lon + turn));
}

/// The points of the path that have people near, and the longest one.
std::vector<geo::GeoPoint> pointsOfInterest(const std::vector<geo::GeoPoint>& central) {
    constexpr double nearKm = 130;
    std::vector<geo::GeoPoint> points;
    for (const geo::GeoPoint& point : central) {
        if (geo::bundledPlaces().nearest(point.lat, point.lon, nearKm))
            points.push_back(point);
    }
    return points.empty() ? central : points;
}

std::optional<eclipse::DurationPoint> longestOf(const std::vector<EclipseTrack>& pieces) {
    return pieces.empty() ? std::nullopt : pieces.front().greatest;
}

QFont fontOf(int pixels, QFont::Weight weight) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return font;
}

/// A line of text at a baseline, smaller where it would be too wide.
void write(QPainter& painter, QPointF baseline, double width, const QString& text, int pixels,
           QFont::Weight weight, const QColor& color) {
    QFont font = fontOf(pixels, weight);
    const double wide = QFontMetricsF(font).horizontalAdvance(text);
    if (wide > width)
        font.setPixelSize(std::max(1, static_cast<int>(pixels * width / wide)));
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(baseline, text);
}

void paintLongest(QPainter& painter, const MapProjection& map, const eclipse::DurationPoint& longest) {
    const double turn = 360 * std::round((map.centre().lon - longest.lon) / 360);
    const QPointF at = map.pixel(longest.lat, longest.lon + turn);
    painter.setPen(QPen(pictureColors.page, 1.2));
    painter.setBrush(pictureColors.mark);
    painter.drawPolygon(
        QPolygonF{at + QPointF(0, -6), at + QPointF(6, 0), at + QPointF(0, 6), at + QPointF(-6, 0)});
}

void paintMap(QPainter& painter, const std::vector<EclipseTrack>& pieces) {
    const QSizeF size(pictureSize.width() / boldness, mapHeight / boldness);
    const MapProjection map = frameOf(pieces, size);
    painter.save();
    painter.setClipRect(QRectF(0, 0, pictureSize.width(), mapHeight));
    painter.scale(boldness, boldness);
    paintLand(painter, map, pictureColors);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const EclipseTrack& piece : pieces)
        paintTrack(painter, map, pictureColors, piece);
    if (const auto longest = longestOf(pieces))
        paintLongest(painter, map, *longest);
    painter.restore();
}

struct Words {
    std::string kind;
    std::string date;
    std::string where;
    std::string longest;
};

/// What the catalogue calls "Total Solar Eclipse of 2026 August 12", in parts.
Words wordsOf(const eclipse::EclipseRecord& rec, const std::optional<eclipse::DurationPoint>& longest) {
    Words words;
    const std::size_t of = rec.name.find(" of ");
    words.kind = rec.name.substr(0, of);
    words.date = of == std::string::npos ? rec.id : rec.name.substr(of + 4);
    const std::string dot = " · ";
    const std::size_t at = rec.shortName.find(dot);
    words.where = at == std::string::npos ? "" : rec.shortName.substr(at + dot.size());
    if (longest)
        words.longest = "Longest " + eclipse::durationText(longest->seconds) + " at " +
                        eclipse::positionText(longest->lat, longest->lon, 1);
    return words;
}

void paintWords(QPainter& painter, const Words& words) {
    const QRectF panel(0, mapHeight, pictureSize.width(), pictureSize.height() - mapHeight);
    QLinearGradient ground(panel.topLeft(), panel.bottomLeft());
    ground.setColorAt(0, QColor(18, 28, 62));
    ground.setColorAt(1, QColor(6, 10, 28));
    painter.fillRect(panel, ground);
    painter.fillRect(QRectF(panel.topLeft(), QSizeF(panel.width(), 3)), pictureColors.path);

    constexpr double left = 44;
    constexpr double width = 880;
    const QColor quiet(206, 217, 242);
    const auto text = [](const std::string& part) { return QString::fromStdString(part); };
    write(painter, {left, mapHeight + 66}, width, text(words.kind), 56, QFont::Bold, pictureColors.text);
    write(painter, {left, mapHeight + 120}, width, text(words.date), 46, QFont::Bold, pictureColors.path);
    write(painter, {left, mapHeight + 160}, width, text(words.where), 28, QFont::Normal, quiet);
    write(painter, {left, mapHeight + 195}, width, text(words.longest), 26, QFont::Normal, quiet);

    constexpr int iconSize = 136;
    const double middle = pictureSize.width() - 128;
    painter.drawImage(QPointF(middle - iconSize / 2.0, mapHeight + 14), appIcon(iconSize));
    const QString name = QStringLiteral("Zenka");
    const double nameWidth = QFontMetricsF(fontOf(38, QFont::Bold)).horizontalAdvance(name);
    write(painter, {middle - nameWidth / 2, mapHeight + 190}, nameWidth + 1, name, 38, QFont::Bold,
          pictureColors.text);
}

} // namespace

MapProjection frameOf(const std::vector<EclipseTrack>& pieces, QSizeF size) {
    std::vector<geo::GeoPoint> central;
    for (const EclipseTrack& piece : pieces)
        central.insert(central.end(), piece.central.begin(), piece.central.end());
    if (central.empty())
        return window(size, 180, {});
    const auto [west, east] = std::ranges::minmax(central, {}, &geo::GeoPoint::lon);
    const auto [south, north] = std::ranges::minmax(central, {}, &geo::GeoPoint::lat);
    const geo::GeoPoint middle{.lat = (south.lat + north.lat) / 2, .lon = (west.lon + east.lon) / 2};
    const bool isPolar = std::max(north.lat, -south.lat) > polarDeg;
    const bool isPeopled = south.lat < peopledDeg && north.lat > -peopledDeg;
    for (double height = leastHeight; height <= mostHeight && !(isPolar && isPeopled); height *= 1.06) {
        const MapProjection map = window(size, height, middle);
        if (std::ranges::all_of(central, [&](const geo::GeoPoint& at) { return shows(map, at); }))
            return map;
    }
    const std::vector<geo::GeoPoint> points = pointsOfInterest(central);
    const auto longest = longestOf(pieces);
    MapProjection best;
    std::ptrdiff_t most = -1;
    for (const geo::GeoPoint& centre : central) {
        const MapProjection map = window(size, partHeight, centre);
        const bool showsLongest = !longest || shows(map, {.lat = longest->lat, .lon = longest->lon});
        const std::ptrdiff_t seen =
            std::ranges::count_if(points, [&](const geo::GeoPoint& at) { return shows(map, at); }) +
            (showsLongest ? static_cast<std::ptrdiff_t>(points.size()) : 0);
        if (seen > most) {
            most = seen;
            best = map;
        }
    }
    return best;
}

QImage sharingPicture(const eclipse::Eclipse& eclipse) {
    QImage picture(pictureSize, QImage::Format_RGB32);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    const std::vector<EclipseTrack> pieces = piecesOf(webdata::centralLine(eclipse));
    paintMap(painter, pieces);
    painter.setRenderHint(QPainter::Antialiasing);
    paintWords(painter, wordsOf(eclipse.rec, longestOf(pieces)));
    painter.end();
    return picture;
}

bool canWriteLetters() {
    if (QFontDatabase::families().isEmpty())
        return false;
    const QFontMetrics metrics(fontOf(30, QFont::Normal));
    return metrics.inFont(QLatin1Char('Z')) && metrics.inFont(QLatin1Char('0')) &&
           metrics.inFont(QChar(0x00B0));
}

} // namespace zenka::painting
