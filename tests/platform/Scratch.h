#pragma once

#include <QDir>
#include <QTemporaryDir>

#include <filesystem>
#include <string>

namespace zenka::test {

/// A folder of its own, with a hard name, gone with its object.
class Scratch {
public:
    std::filesystem::path path() const {
        const auto folder = std::filesystem::path(folder_.path().toStdString()) / "a folder with 'one quote";
        std::filesystem::create_directories(folder);
        return folder;
    }

private:
    QTemporaryDir folder_{QDir::tempPath() + QStringLiteral("/zenka platform XXXXXX")};
};

} // namespace zenka::test
