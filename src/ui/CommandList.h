#pragma once

#include <functional>

class QQuickWindow;
class QString;

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

class AppView;
class Commands;
class EditTarget;
class Theme;

/// Declares every command and shortcut of the program, in the order of the menus. The window is there when
/// the first command is triggered.
void declareCommands(Commands& commands, rig::RigModel& rig, AppView& app, Theme& theme, EditTarget& edit,
                     const std::function<QQuickWindow*()>& window, const QString& runLogs);

} // namespace zenka::ui
