#include "ui/wizard/WizardView.h"

#include "base/Text.h"
#include "ports/Ports.h"
#include "rig/RigModel.h"
#include "script/ScriptWizardGen.h"
#include "script/WizardCheck.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"
#include "ui/wizard/WizardTimeline.h"
#include "ui/wizard/WizardWords.h"

#include <QVariantMap>
#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace zenka::ui {

using script::WizardChoices;

namespace {

constexpr char answersKey[] = "zenka.wizardAnswers";

bool contains(const std::vector<std::string>& list, const std::string& item) {
    return std::ranges::find(list, item) != list.end();
}

/// Up to a hundredth of a second, so that a floor that is taken over holds.
double roundedUp(double seconds) {
    return std::ceil(seconds * 100 - 1e-6) / 100;
}

} // namespace

WizardView::WizardView(rig::RigModel& rig, const ports::Ports& ports, QObject* parent)
    : QObject(parent), rig_(rig), ports_(ports) {
    sections_ = makeWizardSections(cells_, this);
    const auto stored = ports.settings.text(answersKey);
    answers_ = decodeWizardAnswers(stored.value_or(""));
    const auto again = [this](const auto&...) {
        if (open_)
            refresh();
    };
    const auto sky = [this, again] {
        if (!open_)
            return;
        site_ = wizardSite(rig_.site());
        again();
        askPreview();
    };
    observe(this, rig.site().recomputed(), sky);
    observe(this, rig.roster().changed(), again);
    observe(this, rig.script().compiled(), again);
    observe(this, rig.script().edited().changed(), again);
    observe(this, rig.transport().activityChanged(), again);
}

void WizardView::registerTypes() {
    WizardTimeline::registerTypes();
}

void WizardView::takeNames() {
    std::vector<std::string> names;
    const auto add = [&](const std::string& name) {
        std::string usable = script::ScriptWizardGen::usableCamera(name);
        if (!contains(names, usable))
            names.push_back(std::move(usable));
    };
    for (const auto& entry : rig_.roster().cameraRoster(rig_.script().cameraTokens()))
        add(entry.token);
    for (const std::string& name : answers_.typed)
        add(name);
    for (const std::string& name : answers_.chosen)
        add(name);
    if (names.empty())
        names.emplace_back("CAM1");
    if (const QStringList list = qt(names); list != names_) {
        names_ = list;
        Q_EMIT namesChanged();
    }
}

void WizardView::open() {
    open_ = true;
    // A name that was typed and is not wanted any more.
    std::erase_if(answers_.typed, [this](const auto& name) { return !contains(answers_.chosen, name); });
    takeNames();
    if (answers_.chosen.empty()) {
        for (const QString& name : names_)
            answers_.chosen.push_back(name.toStdString());
    }
    site_ = wizardSite(rig_.site());
    nameFault_.clear();
    refresh();
    askPreview();
}

void WizardView::close() {
    open_ = false;
}

WizardChoices& WizardView::plan() {
    return answers_.planOf(current_);
}

const WizardChoices& WizardView::plan() const {
    const auto found = answers_.own.find(current_);
    return answers_.perCamera && found != answers_.own.end() ? found->second : answers_.shared;
}

WizardForm::Place WizardView::place() const {
    const std::string first = answers_.chosen.empty() ? std::string() : answers_.chosen.front();
    return {.central = site_.central,
            .firstPlan = !answers_.perCamera || first.empty() || current_ == first,
            .firstCamera = first};
}

WizardRequest WizardView::request() const {
    return {
        .site = site_, .plans = answers_.plans(), .bodies = rig_.validator().context(answers_.chosen).bodies};
}

std::optional<double> WizardView::floorFor(std::string_view key) const {
    const rig::CadenceAdvisor& cadence = rig_.cadence();
    if (key == "minShotGap") {
        const std::vector<std::string> targets =
            answers_.perCamera && !current_.empty() ? std::vector<std::string>{current_} : answers_.chosen;
        return roundedUp(cadence.spacingFloor(targets));
    }
    if (key == "minShotGapSame")
        return roundedUp(cadence.suggestedSameGapSec());
    return std::nullopt;
}

WizardCell::State WizardView::stateOf(const WizardForm::Field& field, const WizardChoices& usable) const {
    const WizardChoices& choices = plan();
    const WizardForm::Place here = place();
    WizardCell::State state{.shown = WizardForm::shown(field, choices, here),
                            .ticked = WizardForm::ticked(field, choices),
                            .text = qt(WizardForm::textOf(field, choices))};
    if (field.mayBeEmpty)
        state.placeholder = qt(choices.partialShutter());
    if (const auto typed = typed_.find({planName(), field.id}); typed != typed_.end()) {
        state.text = typed->second.text;
        state.fault = typed->second.fault;
    }
    const WizardForm::Note note = WizardForm::noteOf(field, choices, usable, here);
    state.note = qt(note.text);
    state.warned = note.warning;
    const auto floor = floorFor(field.id);
    const auto* member = std::get_if<double WizardChoices::*>(&field.member);
    if (!floor || !member)
        return state;
    state.offer = QStringLiteral("Take %1 s").arg(*floor);
    if (!state.note.isEmpty())
        return state;
    const double now = choices.*(*member);
    const bool changing = std::string_view(field.id) == "minShotGap";
    const double all = roundedUp(rig_.cadence().suggestedMinSpacingSec());
    std::string words =
        changing ? absl::StrFormat("Spacing floor of the chosen bodies: %s.", rig::fmtSecs(*floor))
                 : absl::StrFormat("Connected bodies hold %s between equal frames.", rig::fmtSecs(*floor));
    if (changing && all > *floor)
        words += absl::StrFormat(" All connected bodies: %s.", rig::fmtSecs(all));
    if (now < *floor)
        words += " Closer frames may drop.";
    state.note = qt(words);
    state.warned = now < *floor;
    return state;
}

void WizardView::refresh() {
    takeNames();
    if (answers_.perCamera && !contains(answers_.chosen, current_))
        current_ = answers_.chosen.empty() ? std::string() : answers_.chosen.front();
    const WizardChoices usable = script::ScriptWizardGen::usable(plan()).choices;
    for (WizardCell* cell : cells_)
        cell->set(stateOf(cell->field(), usable));
    Q_EMIT changed();
}

void WizardView::keepForUndo(const QString& what) {
    before_ = answers_;
    undoText_ = what;
}

void WizardView::answered() {
    ports_.settings.setText(answersKey, encodeWizardAnswers(answers_));
    refresh();
    askPreview();
}

QStringList WizardView::reasons() const {
    QStringList list;
    const WizardForm::Place here = place();
    for (const WizardForm::Section section : WizardForm::sections)
        list.append(qt(WizardForm::reason(section, here)));
    return list;
}

QStringList WizardView::chosen() const {
    return qt(answers_.chosen);
}

void WizardView::setPerCamera(bool perCamera) {
    if (answers_.perCamera == perCamera)
        return;
    answers_.perCamera = perCamera;
    for (const std::string& camera : answers_.chosen)
        answers_.planOf(camera);
    answered();
}

QString WizardView::current() const {
    return answers_.perCamera ? qt(current_) : QString();
}

void WizardView::setCurrent(const QString& camera) {
    const std::string name = camera.toStdString();
    if (!contains(answers_.chosen, name))
        return;
    current_ = name;
    answers_.planOf(name);
    refresh();
    Q_EMIT previewChanged(); // the gauges are those of this camera
}

void WizardView::choose(const QString& name, bool wanted) {
    const std::string camera = name.toStdString();
    std::erase(answers_.chosen, camera);
    if (wanted) {
        // In the order of the list, whatever the order of the ticks: cues go by the first.
        answers_.chosen.push_back(camera);
        std::ranges::sort(answers_.chosen, {}, [this](const auto& each) { return names_.indexOf(qt(each)); });
        answers_.planOf(camera);
    }
    answered();
}

bool WizardView::addName(const QString& text) {
    nameFault_.clear();
    if (text.trimmed().isEmpty()) {
        nameFault_ = QStringLiteral("This is empty. Type the name that the script is to call a camera.");
        Q_EMIT changed();
        return false;
    }
    const std::string typed = text.trimmed().toStdString();
    const std::string name = script::ScriptWizardGen::usableCamera(typed);
    if (name != typed)
        nameFault_ = QStringLiteral("A script has no room for such a name; \"%1\" is taken.").arg(qt(name));
    if (!contains(answers_.typed, name))
        answers_.typed.push_back(name);
    takeNames();
    choose(qt(name), true);
    return true;
}

QString WizardView::factsOf(const QString& name) const {
    const auto bodies = rig_.roster().camerasFor(name.toStdString());
    if (bodies.empty())
        return QStringLiteral("no body here");
    QStringList models;
    for (const auto& body : bodies)
        models.append(qt(rig::CameraRoster::bareModel(body->model())));
    return models.join(QStringLiteral(", "));
}

void WizardView::copyTo(const QString& name) {
    if (!answers_.perCamera || current_.empty())
        return;
    keepForUndo(name.isEmpty() ? QStringLiteral("All cameras have the answers of %1 now.").arg(current())
                               : QStringLiteral("%1 has the answers of %2 now.").arg(name, current()));
    const WizardChoices from = plan();
    for (const std::string& camera : answers_.chosen)
        if (camera != current_ && (name.isEmpty() || camera == name.toStdString())) {
            answers_.own[camera] = from;
            std::erase_if(typed_, [&](const auto& each) { return each.first.first == camera; });
        }
    answered();
}

void WizardView::startAfresh() {
    keepForUndo(QStringLiteral("All answers are as at the beginning."));
    WizardAnswers fresh;
    fresh.perCamera = answers_.perCamera;
    fresh.chosen = answers_.chosen;
    fresh.typed = answers_.typed;
    answers_ = fresh;
    typed_.clear();
    answered();
}

void WizardView::undo() {
    if (!before_)
        return;
    answers_ = *before_;
    before_.reset();
    undoText_.clear();
    typed_.clear();
    answered();
}

void WizardView::change(const QString& key, const std::function<void(const WizardForm::Field&)>& how) {
    const auto* field = WizardForm::fieldOf(key.toStdString());
    if (!field)
        return;
    how(*field);
    typed_.erase({planName(), field->id});
    answered();
}

void WizardView::tick(const QString& key, bool on) {
    change(key, [&](const auto& field) { WizardForm::tick(field, on, plan()); });
}

void WizardView::type(const QString& key, const QString& text) {
    const auto* field = WizardForm::fieldOf(key.toStdString());
    if (!field)
        return;
    const std::string fault = WizardForm::read(*field, text.toStdString(), plan());
    typed_[{planName(), field->id}] = {text, qt(fault)};
    answered();
}

void WizardView::settle(const QString& key) {
    const auto typed = typed_.find({planName(), key.toStdString()});
    if (typed == typed_.end() || !typed->second.fault.isEmpty())
        return;
    typed_.erase(typed);
    refresh();
}

void WizardView::nudge(const QString& key, int steps) {
    change(key, [&](const auto& field) { WizardForm::nudge(field, steps, plan()); });
}

QStringList WizardView::options(const QString& key) const {
    const auto* field = WizardForm::fieldOf(key.toStdString());
    return field ? qt(WizardForm::options(*field, plan())) : QStringList();
}

int WizardView::optionNow(const QString& key) const {
    const auto* field = WizardForm::fieldOf(key.toStdString());
    return field ? WizardForm::optionNow(*field, plan()) : -1;
}

void WizardView::takeOption(const QString& key, int option) {
    change(key, [&](const auto& field) { WizardForm::takeOption(field, option, plan()); });
}

void WizardView::takeOffer(const QString& key) {
    if (const auto floor = floorFor(key.toStdString()))
        takeValue(key, QString::number(*floor));
}

void WizardView::takeValue(const QString& key, const QString& value) {
    change(key, [&](const auto& field) { WizardForm::read(field, value.toStdString(), plan()); });
}

void WizardView::askPreview() {
    ++wanted_;
    if (open_ && !computing_)
        makePreview();
}

void WizardView::makePreview() {
    computing_ = true;
    const auto arrive =
        lifeline_.guard([this, number = wanted_](const std::shared_ptr<WizardPreview>& result) {
            computing_ = false;
            if (number != wanted_) {
                if (open_)
                    makePreview();
                return;
            }
            preview_ = std::move(*result);
            Q_EMIT previewChanged();
        });
    ports_.queues.background([arrive, &loop = ports_.loop, request = request()] {
        const auto result = std::make_shared<WizardPreview>(wizardPreview(request));
        loop.post([arrive, result] { arrive(result); });
    });
}

QString WizardView::caution() const {
    if (rig_.transport().live())
        return QStringLiteral(
            "A live run is on. Apply puts this script in the place of the one that is being "
            "fired.");
    const rig::ScriptDesk& desk = rig_.script();
    if (!desk.edited().get() || base::trimmed(desk.scriptText().get()).empty())
        return {};
    return QStringLiteral(
               "\"%1\" has changes that are in no file. Apply puts them aside: in Script, Recent › "
               "Unsaved text from before brings them back.")
        .arg(qt(desk.currentScriptName().get()));
}

QString WizardView::siteText() const {
    return WizardWords::site(site_);
}

QString WizardView::summary() const {
    return WizardWords::summary(preview_);
}

QString WizardView::tally() const {
    return WizardWords::tally(remarks());
}

QVariantList WizardView::cameras() const {
    return WizardWords::cameras(preview_, site_);
}

QVariantList WizardView::remarks() const {
    QVariantList rows;
    for (const auto& [key, typed] : typed_) {
        const auto* field = WizardForm::fieldOf(key.second);
        if (typed.fault.isEmpty() || !field)
            continue;
        const auto own = answers_.own.find(key.first);
        const WizardChoices& choices = own == answers_.own.end() ? answers_.shared : own->second;
        rows.append(WizardWords::row(
            WizardRemark::Kind::error,
            QStringLiteral("%1%2 cannot be read; %3 stands.")
                .arg(key.first.empty() ? QString() : qt(key.first) + QStringLiteral(": "),
                     QString::fromUtf8(field->label), qt(WizardForm::textOf(*field, choices)))));
    }
    rows += WizardWords::remarks(preview_);
    return rows;
}

const WizardCamera* WizardView::judged() const {
    const auto found = std::ranges::find_if(preview_.cameras, [this](const WizardCamera& camera) {
        return !answers_.perCamera || camera.name == current_;
    });
    return found == preview_.cameras.end() ? nullptr : &*found;
}

bool WizardView::hasGauges() const {
    return site_.central == WizardForm::Central::total && judged();
}

QString WizardView::gaugesOf() const {
    return answers_.perCamera && judged() ? qt(judged()->name) : QString();
}

QVariantList WizardView::gauges() const {
    return WizardWords::gauges(judged());
}

QVariantList WizardView::zones() const {
    return WizardWords::zones(judged());
}

QString WizardView::coronaLevel() const {
    return WizardWords::coronaLevel(judged());
}

QString WizardView::coronaText() const {
    return WizardWords::coronaText(judged());
}

void WizardView::apply() {
    if (answers_.chosen.empty())
        return;
    const QString name = QStringLiteral("Wizard %1").arg(qt(rig_.site().eclipseId()));
    site_ = wizardSite(rig_.site());
    rig_.script().applyWizardScript(wizardScript(request()), name.toStdString());
    Q_EMIT applied(name);
}

} // namespace zenka::ui
