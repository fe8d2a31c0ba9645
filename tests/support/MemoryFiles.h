#pragma once

#include "ports/Files.h"
#include "ports/Folders.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zenka::test {

/// A disk in memory. It can be full, or gone.
class MemoryFiles final : public ports::Files {
public:
    std::map<std::filesystem::path, std::string> contents;
    bool broken = false; ///< every write fails from now on
    int wholeWrites = 0; ///< files that were written anew

    std::optional<std::string> read(const std::filesystem::path& path) override {
        const auto found = contents.find(path);
        return found == contents.end() ? std::nullopt : std::optional(found->second);
    }

    std::optional<std::string> readBeginning(const std::filesystem::path& path, std::size_t most) override {
        const auto whole = read(path);
        return whole ? std::optional(whole->substr(0, most)) : std::nullopt;
    }

    bool writeAtomically(const std::filesystem::path& path, std::string_view bytes) override {
        if (broken)
            return false;
        contents[path] = bytes;
        ++wholeWrites;
        return true;
    }

    bool writeDocument(const std::filesystem::path& path, std::string_view bytes) override {
        return writeAtomically(path, bytes);
    }

    std::unique_ptr<ports::AppendFile> create(const std::filesystem::path& path,
                                              std::string_view bytes) override {
        if (broken || contents.contains(path))
            return nullptr;
        contents[path] = bytes;
        return std::make_unique<Appender>(*this, path);
    }

    std::unique_ptr<ports::AppendFile> openForAppending(const std::filesystem::path& path) override {
        if (broken)
            return nullptr;
        contents.try_emplace(path);
        return std::make_unique<Appender>(*this, path);
    }

    std::vector<std::string> namesIn(const std::filesystem::path& folder) override {
        std::vector<std::string> names;
        for (const auto& [path, content] : contents)
            if (path.parent_path() == folder)
                names.push_back(path.filename());
        return names;
    }

    bool exists(const std::filesystem::path& path) override { return contents.contains(path); }
    void remove(const std::filesystem::path& path) override { contents.erase(path); }

    /// The one file with this ending; the test fails on none or several.
    std::string only(const std::string& ending) const;
    int count(const std::string& ending) const;

private:
    struct Appender final : ports::AppendFile {
        Appender(MemoryFiles& owner, std::filesystem::path where) : files(owner), path(std::move(where)) {}
        bool append(std::string_view bytes) override {
            if (files.broken)
                return false;
            files.contents[path] += bytes;
            return true;
        }
        MemoryFiles& files;
        std::filesystem::path path;
    };
};

/// Folders with blanks and a quote in their names.
class MemoryFolders final : public ports::Folders {
public:
    std::filesystem::path applicationSupport() const override { return "/home/o'brien/app data/ZenkaRig"; }
    std::filesystem::path documents() const override { return "/home/o'brien/My Documents"; }
    std::filesystem::path temporary() const override { return "/tmp"; }
};

} // namespace zenka::test
