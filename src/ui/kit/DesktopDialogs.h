#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace zenka::ui {

/// Whether Qt shows the desktop's own file dialogs here. Where it has no plug-in for the desktop it shows one
/// of its own, whose bar of folders is white whatever the colours are.
bool desktopHasFileDialogs();

/// The same for what the session says of itself ("ubuntu:GNOME"; the theme is one that the user wants) and
/// the themes that are installed.
bool hasFileDialogs(const QString& desktop, const QString& wantedTheme, const QStringList& installed);

struct FilePlace {
    QString name;
    QString folder;
};

/// The user's home, and the drives that the desktop has mounted for him.
QList<FilePlace> filePlaces(const QString& user);

} // namespace zenka::ui
