#include "ui/kit/DesktopDialogs.h"

#include <QDir>
#include <QLibraryInfo>

namespace zenka::ui {

namespace {

constexpr char gtk[] = "gtk3";
constexpr char portal[] = "xdgdesktopportal";

} // namespace

bool desktopHasFileDialogs() {
    const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platformthemes"));
    QStringList installed;
    for (const QString& file : plugins.entryList({QStringLiteral("libq*.so")}))
        installed.append(file.mid(4).chopped(3));
    return hasFileDialogs(qEnvironmentVariable("XDG_CURRENT_DESKTOP"),
                          qEnvironmentVariable("QT_QPA_PLATFORMTHEME"), installed);
}

bool hasFileDialogs(const QString& desktop, const QString& wantedTheme, const QStringList& installed) {
    const auto has = [&](const char* theme) { return installed.contains(QLatin1String(theme)); };
    if (!wantedTheme.isEmpty())
        return (wantedTheme == QLatin1String(gtk) || wantedTheme == QLatin1String(portal)) &&
               installed.contains(wantedTheme);
    static const QStringList ofGtk{QStringLiteral("GNOME"),    QStringLiteral("X-CINNAMON"),
                                   QStringLiteral("PANTHEON"), QStringLiteral("UNITY"),
                                   QStringLiteral("MATE"),     QStringLiteral("XFCE"),
                                   QStringLiteral("LXDE")};
    for (const QString& name : desktop.toUpper().split(QLatin1Char(':'))) {
        if (ofGtk.contains(name))
            return has(gtk);
    }
    return false;
}

QList<FilePlace> filePlaces(const QString& user) {
    QList<FilePlace> places{{QStringLiteral("Home"), QDir::homePath()}};
    for (const QString& root : {QStringLiteral("/media/"), QStringLiteral("/run/media/")}) {
        const QDir drives(root + user);
        for (const QString& drive : drives.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            places.append({drive, drives.filePath(drive)});
    }
    return places;
}

} // namespace zenka::ui
