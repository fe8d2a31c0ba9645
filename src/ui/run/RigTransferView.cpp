#include "ui/run/RigTransferView.h"

#include "base/CivilTime.h"
#include "rig/RigModel.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <QDir>
#include <QFile>
#include <QPointer>
#include <QVariantMap>

#include <utility>

namespace zenka::ui {

namespace {

std::string diskPathOf(const QUrl& file) {
    return QFile::encodeName(file.toLocalFile()).toStdString();
}

} // namespace

RigTransferView::RigTransferView(rig::RigModel& rig, const ports::Ports& ports, AppView& app, QObject* parent)
    : QObject(parent), rig_(rig), ports_(ports), app_(app) {
    observe(this, rig.transport().timingMode().changed(), [this](const auto&) { Q_EMIT changed(); });
    connect(&app, &AppView::sheetChanged, this, [this] {
        if (found_ && !app_.holds(QStringLiteral("RigTransfer")))
            forget();
    });
}

void RigTransferView::begin(bool importing) {
    importing_ = importing;
    forget();
    summary_ = importing ? QString() : qt(rig_.transfer().summary());
    tell({}, false);
    app_.openSheet(QStringLiteral("RigTransfer"));
}

void RigTransferView::forget() {
    found_.reset();
    rows_.clear();
    taken_.clear();
    Q_EMIT partsChanged();
    Q_EMIT changed();
}

void RigTransferView::tell(const QString& message, bool failed) {
    message_ = message;
    failed_ = failed;
    Q_EMIT changed();
}

QString RigTransferView::suggestedName() const {
    return QStringLiteral("Zenka Rig ") + qt(rig_.site().eclipseId()) +
           QLatin1String(rig::RigTransfer::suffix);
}

QUrl RigTransferView::folder() const {
    const QString folder = qt(ports_.folders.documents().string());
    return QUrl::fromLocalFile(QDir(folder).exists() ? folder : QDir::homePath());
}

void RigTransferView::exportTo(const QUrl& file) {
    if (!file.isLocalFile() || busy_)
        return;
    busy_ = true;
    tell(QStringLiteral("Writing \"%1\"…").arg(file.fileName()), false);
    rig_.transfer().exportTo(diskPathOf(file), [view = QPointer(this), file](const std::string& fault) {
        if (!view)
            return;
        view->busy_ = false;
        view->tell(fault.empty() ? QStringLiteral("✓ Exported to \"%1\". The file tells your site and your "
                                                  "cameras' serial numbers: pass it on with care.")
                                       .arg(file.fileName())
                                 : qt(fault),
                   !fault.empty());
    });
}

void RigTransferView::read(const QUrl& file) {
    if (!file.isLocalFile() || busy_)
        return;
    busy_ = true;
    forget();
    tell(QStringLiteral("Reading \"%1\"…").arg(file.fileName()), false);
    rig_.transfer().read(diskPathOf(file), [view = QPointer(this)](const rig::RigTransfer::Found& found) {
        if (view)
            view->show(found);
    });
}

void RigTransferView::show(const rig::RigTransfer::Found& found) {
    busy_ = false;
    if (!app_.holds(QStringLiteral("RigTransfer")) || !importing_)
        return tell({}, false);
    if (!found.reading.contents)
        return tell(qt(found.reading.fault), true);
    found_ = found;
    rows_ = rig_.transfer().describe(*found.reading.contents, found.frames);
    for (const rig::RigPartWords& row : rows_)
        taken_.insert(row.part);
    Q_EMIT partsChanged();
    tell(rows_.empty() ? QStringLiteral("There is nothing in \"%1\" that can be taken.").arg(qt(found.name))
                       : QString(),
         rows_.empty());
}

QString RigTransferView::origin() const {
    if (!found_ || !found_->reading.contents)
        return {};
    const rig::RigContents& contents = *found_->reading.contents;
    QString words = QStringLiteral("\"%1\"").arg(qt(found_->name));
    if (const auto exported = contents.exported)
        words += QStringLiteral(", exported ") +
                 qt(base::formatTime("%Y-%m-%d %H:%M", *exported, absl::UTCTimeZone())) +
                 QStringLiteral(" UTC");
    if (!contents.appVersion.empty())
        words += QStringLiteral(" by Zenka ") + qt(contents.appVersion);
    return words;
}

QVariantList RigTransferView::parts() const {
    QVariantList rows;
    for (const rig::RigPartWords& row : rows_)
        rows.append(
            QVariantMap{{QStringLiteral("what"), qt(row.what)}, {QStringLiteral("effect"), qt(row.effect)}});
    return rows;
}

QStringList RigTransferView::leftOut() const {
    return found_ ? qt(found_->reading.leftOut) : QStringList();
}

bool RigTransferView::canImport() const {
    return found_ && !taken_.empty() && importFault().isEmpty();
}

QString RigTransferView::importFault() const {
    return qt(rig_.transfer().importFault());
}

void RigTransferView::take(int row, bool taken) {
    if (row < 0 || row >= static_cast<int>(rows_.size()))
        return;
    const rig::RigPart part = rows_[static_cast<std::size_t>(row)].part;
    if (taken)
        taken_.insert(part);
    else
        taken_.erase(part);
    Q_EMIT changed();
}

void RigTransferView::import() {
    if (!canImport())
        return;
    QStringList words;
    for (const rig::RigPartWords& row : rows_) {
        if (taken_.contains(row.part))
            words.append(qt(row.what));
    }
    const rig::RigTransfer::Found found =
        std::exchange(found_, std::nullopt).value_or(rig::RigTransfer::Found{});
    const std::set<rig::RigPart> taken = taken_;
    forget();
    if (rig_.transfer().apply(found, taken))
        tell(QStringLiteral("✓ Taken: %1.").arg(words.join(QStringLiteral(", "))), false);
}

} // namespace zenka::ui
