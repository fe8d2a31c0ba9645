#pragma once

#include "base/Lifeline.h"
#include "ui/wizard/WizardAnswers.h"
#include "ui/wizard/WizardCell.h"
#include "ui/wizard/WizardPreview.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zenka::ports {
struct Ports;
}

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// The script wizard: its answers, which are kept, and what the script would be that they make. The preview
/// is made off the main thread, one at a time; only that of the newest answers is shown.
class WizardView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariantList sections READ sections CONSTANT)
    Q_PROPERTY(QStringList reasons READ reasons NOTIFY changed)
    Q_PROPERTY(QStringList names READ names NOTIFY namesChanged)
    Q_PROPERTY(QStringList chosen READ chosen NOTIFY changed)
    Q_PROPERTY(QString nameFault READ nameFault NOTIFY changed)
    Q_PROPERTY(bool perCamera READ perCamera WRITE setPerCamera NOTIFY changed)
    Q_PROPERTY(QString current READ current WRITE setCurrent NOTIFY changed)
    Q_PROPERTY(QString undoText READ undoText NOTIFY changed)
    Q_PROPERTY(QString caution READ caution NOTIFY changed)

    Q_PROPERTY(QString siteText READ siteText NOTIFY previewChanged)
    Q_PROPERTY(QString summary READ summary NOTIFY previewChanged)
    Q_PROPERTY(QString tally READ tally NOTIFY previewChanged)
    Q_PROPERTY(QString script READ script NOTIFY previewChanged)
    Q_PROPERTY(QVariantList cameras READ cameras NOTIFY previewChanged)
    Q_PROPERTY(QVariantList remarks READ remarks NOTIFY previewChanged)
    Q_PROPERTY(bool hasGauges READ hasGauges NOTIFY previewChanged)
    Q_PROPERTY(QString gaugesOf READ gaugesOf NOTIFY previewChanged)
    Q_PROPERTY(QVariantList gauges READ gauges NOTIFY previewChanged)
    Q_PROPERTY(QVariantList zones READ zones NOTIFY previewChanged)
    Q_PROPERTY(QString coronaLevel READ coronaLevel NOTIFY previewChanged)
    Q_PROPERTY(QString coronaText READ coronaText NOTIFY previewChanged)
    Q_PROPERTY(int laneCount READ laneCount NOTIFY previewChanged)

public:
    WizardView(rig::RigModel& rig, const ports::Ports& ports, QObject* parent);

    static void registerTypes();

    /// Maps of title, index and rows; a row has a name and cells.
    QVariantList sections() const { return sections_; }
    /// By section, why some of its fields are left out.
    QStringList reasons() const;
    /// The cameras to choose from: bodies of the rig, names of the script, names typed by hand.
    QStringList names() const { return names_; }
    QStringList chosen() const;
    QString nameFault() const { return nameFault_; }
    bool perCamera() const { return answers_.perCamera; }
    void setPerCamera(bool perCamera);
    /// The camera whose plan is being edited; empty for the plan of all.
    QString current() const;
    void setCurrent(const QString& camera);
    /// What undo() would take back, empty for nothing.
    QString undoText() const { return undoText_; }
    /// What becomes of the script that stands when this one takes its place; empty where nothing is lost.
    QString caution() const;

    /// The eclipse and its totality at the site.
    QString siteText() const;
    QString summary() const;
    /// "✖ 1 error, ▲ 3 warnings", empty for neither.
    QString tally() const;
    QString script() const { return QString::fromStdString(preview_.text); }
    /// Maps of name, frames, used.
    QVariantList cameras() const;
    /// Maps of symbol, kind, text.
    QVariantList remarks() const;
    bool hasGauges() const;
    /// Whose exposures the gauges judge, where the plans differ.
    QString gaugesOf() const;
    /// Four maps of name, planned, symbol, level, text, offer, field.
    QVariantList gauges() const;
    /// Seven maps of name (solar radii), reached.
    QVariantList zones() const;
    /// "good", "warning" or "bad", as the level of a gauge.
    QString coronaLevel() const;
    QString coronaText() const;
    int laneCount() const { return static_cast<int>(preview_.lanes.size()); }

    const WizardPreview& preview() const { return preview_; }
    const WizardSite& site() const { return site_; }

    /// The form is shown, or no more: only then is there a preview.
    Q_INVOKABLE void open();
    Q_INVOKABLE void close();

    Q_INVOKABLE void choose(const QString& name, bool wanted);
    /// Takes a name that was typed by hand; false, with nameFault, for one that can be none.
    Q_INVOKABLE bool addName(const QString& text);
    /// What is known of a camera of that name.
    Q_INVOKABLE QString factsOf(const QString& name) const;
    /// Copies the answers that are being edited to another camera; an empty name for all.
    Q_INVOKABLE void copyTo(const QString& name);
    Q_INVOKABLE void startAfresh();
    Q_INVOKABLE void undo();

    Q_INVOKABLE void tick(const QString& key, bool on);
    Q_INVOKABLE void type(const QString& key, const QString& text);
    /// Typing is over: a value that was read is written as the form writes it.
    Q_INVOKABLE void settle(const QString& key);
    Q_INVOKABLE void nudge(const QString& key, int steps);
    Q_INVOKABLE QStringList options(const QString& key) const;
    Q_INVOKABLE int optionNow(const QString& key) const;
    Q_INVOKABLE void takeOption(const QString& key, int option);
    /// Takes what the field's button offers.
    Q_INVOKABLE void takeOffer(const QString& key);
    /// Takes a value that a gauge suggests.
    Q_INVOKABLE void takeValue(const QString& key, const QString& value);

    /// Puts the script into the editor.
    Q_INVOKABLE void apply();

Q_SIGNALS:
    void changed();
    void namesChanged();
    void previewChanged();
    void applied(const QString& name);

private:
    struct Typed {
        QString text;
        QString fault;
    };
    using Key = std::pair<std::string, std::string>; ///< camera of the plan, id of the field

    void takeNames();
    script::WizardChoices& plan();
    const script::WizardChoices& plan() const;
    std::string planName() const { return answers_.perCamera ? current_ : std::string(); }
    WizardForm::Place place() const;
    WizardRequest request() const;
    /// The spacing that the chosen bodies want for a field; nothing for one that has none to do with it.
    std::optional<double> floorFor(std::string_view key) const;
    WizardCell::State stateOf(const WizardForm::Field& field, const script::WizardChoices& usable) const;
    void refresh();
    /// Changes an answer otherwise than by typing: what was typed for it gives way.
    void change(const QString& key, const std::function<void(const WizardForm::Field&)>& how);
    void keepForUndo(const QString& what);
    void answered();
    void askPreview();
    void makePreview();
    const WizardCamera* judged() const;

    rig::RigModel& rig_;
    const ports::Ports& ports_;
    WizardAnswers answers_;
    std::optional<WizardAnswers> before_; ///< of the last sweeping change
    QString undoText_;
    std::string current_;
    std::map<Key, Typed> typed_;
    std::vector<WizardCell*> cells_;
    QVariantList sections_;
    QStringList names_;
    QString nameFault_;
    WizardSite site_;
    WizardPreview preview_;
    bool open_ = false;
    bool computing_ = false;
    std::size_t wanted_ = 0;
    base::Lifeline lifeline_;
};

} // namespace zenka::ui
