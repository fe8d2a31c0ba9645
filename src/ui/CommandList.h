#pragma once

#include <functional>

class QQuickWindow;
class QString;
class QUrl;

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

class AnalyzerView;
class AppView;
class ChecklistPrinter;
class Commands;
class EditTarget;
class GuideView;
class PreflightView;
class RigTransferView;
class Theme;

/// Declares every command and shortcut of the program, in the order of the menus. The window is there when
/// the first command is triggered; `open` opens what is outside of it.
void declareCommands(Commands& commands, rig::RigModel& rig, AppView& app, Theme& theme, EditTarget& edit,
                     AnalyzerView& analyzer, PreflightView& preflight, RigTransferView& transfer,
                     ChecklistPrinter& checklist, GuideView& guide,
                     const std::function<QQuickWindow*()>& window,
                     const std::function<void(const QUrl&)>& open, const QString& runLogs);

} // namespace zenka::ui
