#include "ui/kit/Theme.h"

#include "ports/Settings.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zenka::ui {

namespace {

constexpr char themeKey[] = "zenka.theme";
constexpr char scaleKey[] = "zenka.textScale";
constexpr char nightByItselfKey[] = "zenka.nightByItself";
constexpr std::array<const char*, 3> themeNames{"Sunlight", "Dark", "Night"};

} // namespace

Theme::Theme(ports::Settings& settings, QObject* parent) : QObject(parent), settings_(settings) {
    if (const auto stored = settings.text(themeKey)) {
        const auto found = std::ranges::find(themeNames, *stored);
        if (found != themeNames.end())
            kind_ = static_cast<Kind>(found - themeNames.begin());
    }
    textScale_ = std::clamp(settings.number(scaleKey).value_or(1), 0.8, 1.8);
    nightByItself_ = settings_.flag(nightByItselfKey).value_or(false);
}

void Theme::setKind(Kind kind) {
    if (kind == this->kind())
        return;
    nightForNow_ = false;
    kind_ = kind;
    settings_.setText(themeKey, themeNames[static_cast<std::size_t>(kind)]);
    Q_EMIT changed();
}

void Theme::choose(const QString& name) {
    const auto found = std::ranges::find(themeNames, name.toStdString());
    if (found != themeNames.end())
        setKind(static_cast<Kind>(found - themeNames.begin()));
}

void Theme::cycle() {
    setKind(static_cast<Kind>((static_cast<int>(kind()) + 1) % static_cast<int>(themeNames.size())));
}

void Theme::setNightByItself(bool wanted) {
    nightByItself_ = wanted;
    settings_.setFlag(nightByItselfKey, wanted);
    Q_EMIT changed();
}

void Theme::setDarkOutside(bool dark) {
    nightForNow_ = dark;
    Q_EMIT changed();
}

void Theme::setTextScale(double scale) {
    textScale_ = std::clamp(scale, 0.8, 1.8);
    settings_.setNumber(scaleKey, textScale_);
    Q_EMIT changed();
}

QString Theme::name() const {
    return QString::fromLatin1(themeNames[static_cast<std::size_t>(kind())]);
}

QColor Theme::pick(QRgb inSun, QRgb inDark, QRgb atNight) const {
    return QColor(kind() == Kind::sunlight ? inSun : kind() == Kind::dark ? inDark : atNight);
}

double Theme::scale() const {
    return std::min(textScale_, largestScale_);
}

void Theme::setRoom(QSize window) {
    // At the smallest size the dashboard fits with this much; a larger window bears larger text.
    constexpr QSizeF smallest(960, 440);
    constexpr double fitting = 1;
    const double times = std::min(window.width() / smallest.width(), window.height() / smallest.height());
    const double before = scale();
    largestScale_ = std::max(fitting, times);
    if (scale() != before)
        Q_EMIT changed();
}

int Theme::scaled(int pixels) const {
    return static_cast<int>(std::lround(pixels * scale()));
}

} // namespace zenka::ui
