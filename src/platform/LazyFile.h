#pragma once

#include "platform/Descriptor.h"

#include <cstddef>
#include <filesystem>
#include <span>
#include <string_view>
#include <vector>

namespace zenka::platform {

/// A file in memory of which only those blocks are read that are asked for; all others are zeros. A plain
/// mapping would end the process when the card is pulled.
class LazyFile {
public:
    static constexpr std::size_t blockSize = std::size_t{64} << 10;
    /// More than this is read of no file, and what lies behind `seen` is not looked at. A hostile file may
    /// have Exiv2 copy as much as it sees.
    static constexpr std::size_t seen = std::size_t{256} << 20;
    static constexpr std::size_t budget = std::size_t{16} << 20;

    /// Links, folders, devices and empty files are not opened.
    explicit LazyFile(const std::filesystem::path& file);
    LazyFile(const LazyFile&) = delete;
    LazyFile& operator=(const LazyFile&) = delete;
    ~LazyFile();

    explicit operator bool() const { return memory_ != nullptr; }
    /// Of what is seen.
    std::size_t size() const { return size_; }

    /// Reads what of a range lies in the file; false when the disk fails or the budget is spent.
    bool fetch(std::size_t offset, std::size_t length);

    /// The file, in which unread blocks are zeros.
    std::string_view bytes() const { return {memory_, size_}; }
    std::byte* data() { return reinterpret_cast<std::byte*>(memory_); }

    std::size_t bytesRead() const { return read_; }

private:
    bool fetchBlock(std::size_t block);

    Descriptor descriptor_;
    char* memory_ = nullptr;
    std::size_t size_ = 0;
    std::size_t read_ = 0;
    std::vector<bool> there_; // by block
};

} // namespace zenka::platform
