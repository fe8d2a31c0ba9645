#include "platform/LinuxFolders.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cstdlib>

namespace zenka::platform {

namespace {

// only what needs user-dirs.dirs is Qt's: its other folders take relative names, and its temporary one is
// empty while it does not exist

std::filesystem::path pathOf(const QString& name) {
    return QFile::encodeName(name).toStdString();
}

} // namespace

LinuxFolders::LinuxFolders()
    : applicationSupport_(base("XDG_DATA_HOME", ".local/share") / "ZenkaRig"),
      documents_(pathOf(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))),
      temporary_(base("TMPDIR", "/tmp")) {
}

std::filesystem::path LinuxFolders::base(const char* variable, const char* usual) {
    const char* value = std::getenv(variable);
    if (value && *value == '/')
        return value;
    return pathOf(QDir::homePath()) / usual;
}

} // namespace zenka::platform
