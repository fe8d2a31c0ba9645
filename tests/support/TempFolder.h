#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace zenka::test {

/// A new folder with a blank and a quote in its name, removed with its object.
class TempFolder {
public:
    TempFolder() {
        std::string name = std::filesystem::temp_directory_path() / "zenka o'test XXXXXX";
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no folder can be made below the temporary one");
        path_ = name;
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace zenka::test
