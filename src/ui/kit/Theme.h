#pragma once

#include <QColor>
#include <QObject>
#include <QSize>

namespace zenka::ports {
class Settings;
}

namespace zenka::ui {

/// The colours and sizes of the window: Sunlight (black on white), Dark, and Night (red on black alone).
class Theme : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString name READ name NOTIFY changed)
    Q_PROPERTY(bool night READ night NOTIFY changed)
    Q_PROPERTY(QColor page READ page NOTIFY changed)
    Q_PROPERTY(QColor panel READ panel NOTIFY changed)
    Q_PROPERTY(QColor text READ text NOTIFY changed)
    Q_PROPERTY(QColor quiet READ quiet NOTIFY changed)
    Q_PROPERTY(QColor line READ line NOTIFY changed)
    Q_PROPERTY(QColor accent READ accent NOTIFY changed)
    Q_PROPERTY(QColor good READ good NOTIFY changed)
    Q_PROPERTY(QColor warning READ warning NOTIFY changed)
    Q_PROPERTY(QColor bad READ bad NOTIFY changed)
    Q_PROPERTY(QColor sky READ sky NOTIFY changed)
    Q_PROPERTY(int small READ small NOTIFY changed)
    Q_PROPERTY(int normal READ normal NOTIFY changed)
    Q_PROPERTY(int large READ large NOTIFY changed)
    Q_PROPERTY(int huge READ huge NOTIFY changed)
    Q_PROPERTY(int weight READ weight NOTIFY changed)
    Q_PROPERTY(double textScale READ textScale WRITE setTextScale NOTIFY changed)
    Q_PROPERTY(double scale READ scale NOTIFY changed)
    Q_PROPERTY(bool nightByItself READ nightByItself WRITE setNightByItself NOTIFY changed)
    Q_PROPERTY(QString digits READ digits CONSTANT)

public:
    enum class Kind { sunlight, dark, night };

    /// Takes theme and text scale from the settings, and keeps them there.
    Theme(ports::Settings& settings, QObject* parent);

    void setKind(Kind kind);
    Kind kind() const { return nightForNow_ ? Kind::night : kind_; }
    /// Takes a theme by hand, which also ends a Night that came by itself.
    Q_INVOKABLE void choose(const QString& name);
    void cycle();
    /// Whether Night is to come by itself around totality.
    bool nightByItself() const { return nightByItself_; }
    void setNightByItself(bool wanted);
    /// It has got dark, or light again: shows Night meanwhile. The theme that was chosen stays the one.
    void setDarkOutside(bool dark);
    /// 0.8 to 1.8.
    void setTextScale(double scale);

    QString name() const;
    bool night() const { return kind() == Kind::night; }
    bool sunlight() const { return kind() == Kind::sunlight; }
    QColor page() const { return pick(0xffffff, 0x0a0e16, 0x000000); }
    QColor panel() const { return pick(0xf2f2f2, 0x141b27, 0x0b0000); }
    QColor text() const { return pick(0x000000, 0xe6edf5, 0xb00000); }
    QColor quiet() const { return pick(0x333333, 0x9fb0c3, 0x700000); }
    QColor line() const { return pick(0x8a8a8a, 0x2c3a4f, 0x3a0000); }
    QColor accent() const { return pick(0xb34700, 0xffb02b, 0xd00000); }
    QColor good() const { return pick(0x0b5d1e, 0x37d67a, 0x8c0000); }
    QColor warning() const { return pick(0x8a4b00, 0xffb02b, 0xb00000); }
    QColor bad() const { return pick(0xa30000, 0xff5b5b, 0xd00000); }
    QColor sky() const { return pick(0xdfe8f2, 0x0d1626, 0x000000); }
    QColor sunDisc() const { return pick(0xf2a100, 0xffc24d, 0xb00000); }
    QColor moonDisc() const { return pick(0x3a3f47, 0x1a2230, 0x180000); }
    int small() const { return scaled(12); }
    int normal() const { return scaled(14); }
    int large() const { return scaled(20); }
    int huge() const { return scaled(46); }
    /// One step heavier in the Sun.
    int weight() const { return sunlight() ? 600 : 400; }
    double textScale() const { return textScale_; }
    /// The scale that is shown: no larger than the window has room for.
    double scale() const;
    void setRoom(QSize window);
    /// A family whose digits are all of one width.
    QString digits() const { return QStringLiteral("DejaVu Sans Mono"); }

Q_SIGNALS:
    void changed();

private:
    QColor pick(QRgb inSun, QRgb inDark, QRgb atNight) const;
    int scaled(int pixels) const;

    ports::Settings& settings_;
    Kind kind_ = Kind::dark;
    bool nightForNow_ = false;
    bool nightByItself_ = false;
    double textScale_ = 1;
    double largestScale_ = 1;
};

} // namespace zenka::ui
