#include "ui/run/ChecklistPrinter.h"

#include "painting/ChecklistPdf.h"
#include "ports/FreshName.h"
#include "rig/RigModel.h"
#include "rig/checks/Checklist.h"
#include "ui/kit/QtText.h"

#include <QUrl>

#include <filesystem>
#include <utility>

namespace zenka::ui {

ChecklistPrinter::ChecklistPrinter(rig::RigModel& rig, const ports::Ports& ports, std::string appVersion,
                                   std::function<void(const QUrl&)> open)
    : rig_(rig), ports_(ports), appVersion_(std::move(appVersion)), open_(std::move(open)),
      queue_(ports.queues.serial("zenka.checklist")) {
}

void ChecklistPrinter::print() {
    const rig::FramingBook framings(ports_.settings, rig_.library());
    auto list = rig::checklist({.site = rig_.site(),
                                .horizons = rig_.horizons(),
                                .script = rig_.script(),
                                .roster = rig_.roster(),
                                .library = rig_.library(),
                                .framings = framings,
                                .cadence = rig_.cadence(),
                                .floors = rig_.floors(),
                                .appVersion = appVersion_,
                                .now = ports_.clock.now()});
    const auto written = lifeline_.guard([this](const std::filesystem::path& file, bool ok) {
        if (!ok) {
            rig_.log().pushLog("⚠️ The checklist could not be written to " +
                               ports_.folders.reports().string() +
                               ". See that the folder is not full and that you may write there.");
            return;
        }
        rig_.log().pushLog("Checklist written: " + file.filename().string() + ", in " +
                           file.parent_path().filename().string() + ".");
        open_(QUrl::fromLocalFile(qt(file.string())));
    });
    queue_->post([written, list = std::move(list), folder = ports_.folders.reports(),
                  name = rig::checklistName(rig_.site().eclipseId(), rig_.site().site().label),
                  &files = ports_.files, &loop = ports_.loop] {
        const auto file = ports::freshName(files, folder, name, ".pdf");
        const QByteArray bytes = painting::checklistPdf(list);
        const std::string_view whole(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        const bool ok = !file.empty() && files.writeAtomically(file, whole);
        loop.post([written, file, ok] { written(file, ok); });
    });
}

} // namespace zenka::ui
