#pragma once

#include "ui/wizard/WizardForm.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <vector>

namespace zenka::ui {

/// One field of the wizard's form as it stands on the screen. It stays the same object while its value
/// changes, so the keyboard stays where it is.
class WizardCell : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString key READ key CONSTANT)
    Q_PROPERTY(QString label READ label CONSTANT)
    Q_PROPERTY(QString before READ before CONSTANT)
    Q_PROPERTY(QString unit READ unit CONSTANT)
    Q_PROPERTY(QString kind READ kind CONSTANT)
    Q_PROPERTY(bool hasOptions READ hasOptions CONSTANT)
    Q_PROPERTY(bool shown READ shown NOTIFY changed)
    Q_PROPERTY(bool ticked READ ticked NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(QString placeholder READ placeholder NOTIFY changed)
    Q_PROPERTY(QString fault READ fault NOTIFY changed)
    Q_PROPERTY(QString note READ note NOTIFY changed)
    Q_PROPERTY(bool warned READ warned NOTIFY changed)
    Q_PROPERTY(QString offer READ offer NOTIFY changed)

public:
    struct State {
        bool shown = true;
        bool ticked = false;
        QString text;
        QString placeholder;
        QString fault; ///< why what was typed cannot be used, a sentence
        QString note;
        bool warned = false; ///< the note tells of something that is not done as answered
        QString offer;       ///< words of a button that takes a better value

        friend bool operator==(const State&, const State&) = default;
    };

    WizardCell(const WizardForm::Field& field, QObject* parent) : QObject(parent), field_(field) {}

    const WizardForm::Field& field() const { return field_; }
    QString key() const { return QString::fromLatin1(field_.id); }
    QString label() const { return QString::fromUtf8(field_.label); }
    QString before() const { return QString::fromUtf8(field_.before); }
    QString unit() const { return QString::fromUtf8(field_.unit); }
    /// "check", "choice" or "text".
    QString kind() const;
    /// It has a list of values to choose from.
    bool hasOptions() const;

    bool shown() const { return state_.shown; }
    bool ticked() const { return state_.ticked; }
    QString text() const { return state_.text; }
    QString placeholder() const { return state_.placeholder; }
    QString fault() const { return state_.fault; }
    QString note() const { return state_.note; }
    bool warned() const { return state_.warned; }
    QString offer() const { return state_.offer; }

    void set(State state);

Q_SIGNALS:
    void changed();

private:
    const WizardForm::Field& field_;
    State state_;
};

/// Makes a cell for each field, and gives the form as it is laid out: maps of title and rows, a row a map of
/// name and cells.
QVariantList makeWizardSections(std::vector<WizardCell*>& cells, QObject* parent);

} // namespace zenka::ui
