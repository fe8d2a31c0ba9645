#pragma once

#include "ports/Files.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zenka::test {

/// Passes all on to another disk, but fails the Nth operation, or all from the Nth on for a while. Of an
/// append that fails a part is written, as it happens on a disk that has just become full.
class FaultyFiles final : public ports::Files {
public:
    explicit FaultyFiles(ports::Files& disk) : disk_(disk) {}

    int operations = 0; ///< so far
    int failFrom = 0;   ///< the first to fail, counted from 1; 0: none
    int failures = 1;   ///< how many in a row

    struct Fault {
        std::string operation;
        std::string file;
        bool there = false; ///< the file was
    };
    std::vector<Fault> faults;

    std::optional<std::string> read(const std::filesystem::path& path) override {
        return fails("read", path) ? std::nullopt : disk_.read(path);
    }
    std::optional<std::string> readBeginning(const std::filesystem::path& path, std::size_t most) override {
        return fails("readBeginning", path) ? std::nullopt : disk_.readBeginning(path, most);
    }
    bool writeAtomically(const std::filesystem::path& path, std::string_view bytes) override {
        return !fails("writeAtomically", path) && disk_.writeAtomically(path, bytes);
    }
    bool writeDocument(const std::filesystem::path& path, std::string_view bytes) override {
        return !fails("writeDocument", path) && disk_.writeDocument(path, bytes);
    }
    std::unique_ptr<ports::AppendFile> create(const std::filesystem::path& path,
                                              std::string_view bytes) override {
        return fails("create", path) ? nullptr : wrapped(disk_.create(path, bytes), path);
    }
    std::unique_ptr<ports::AppendFile> openForAppending(const std::filesystem::path& path) override {
        return fails("openForAppending", path) ? nullptr : wrapped(disk_.openForAppending(path), path);
    }
    std::vector<std::string> namesIn(const std::filesystem::path& folder) override {
        return fails("namesIn", folder) ? std::vector<std::string>{} : disk_.namesIn(folder);
    }
    bool exists(const std::filesystem::path& path) override {
        return fails("exists", path) || disk_.exists(path);
    }
    void remove(const std::filesystem::path& path) override {
        if (!fails("remove", path))
            disk_.remove(path);
    }

private:
    class Appender final : public ports::AppendFile {
    public:
        Appender(FaultyFiles& files, std::unique_ptr<ports::AppendFile> file, std::filesystem::path path)
            : files_(files), file_(std::move(file)), path_(std::move(path)) {}
        bool append(std::string_view bytes) override {
            if (!files_.fails("append", path_))
                return file_->append(bytes);
            file_->append(bytes.substr(0, bytes.size() - 1)); // all but the end of the line
            return false;
        }

    private:
        FaultyFiles& files_;
        std::unique_ptr<ports::AppendFile> file_;
        std::filesystem::path path_;
    };

    std::unique_ptr<ports::AppendFile> wrapped(std::unique_ptr<ports::AppendFile> file,
                                               const std::filesystem::path& path) {
        return file ? std::make_unique<Appender>(*this, std::move(file), path) : nullptr;
    }
    bool fails(const char* what, const std::filesystem::path& path) {
        ++operations;
        if (failFrom == 0 || operations < failFrom || operations - failFrom >= failures)
            return false;
        faults.push_back({what, path.filename().string(), disk_.exists(path)});
        return true;
    }

    ports::Files& disk_;
};

} // namespace zenka::test
