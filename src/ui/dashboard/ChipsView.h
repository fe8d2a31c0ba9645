#pragma once

#include <QObject>
#include <QVariantList>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// The small signs of the top bar: what the machine does for the run. Only what holds is shown.
class ChipsView : public QObject {
    Q_OBJECT
    /// A row a chip: symbol, text, words (a whole sentence).
    Q_PROPERTY(QVariantList rows READ rows NOTIFY changed)
    /// "Card EOS_DIGITAL", "2 cards"; empty for none, and in a live run, in which no card is read.
    Q_PROPERTY(QString cards READ cards NOTIFY changed)
    /// The same without names: "Card", "2 cards".
    Q_PROPERTY(QString cardsBrief READ cardsBrief NOTIFY changed)
    Q_PROPERTY(QString cardsWords READ cardsWords NOTIFY changed)

public:
    ChipsView(rig::RigModel& rig, QObject* parent);

    QVariantList rows() const;
    QString cards() const;
    QString cardsBrief() const;
    QString cardsWords() const;

Q_SIGNALS:
    void changed();

private:
    rig::RigModel& rig_;
};

} // namespace zenka::ui
