#include "platform/LazyFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace zenka::platform {

LazyFile::LazyFile(const std::filesystem::path& file) {
    // Not to wait for the other end of a pipe that somebody named like an image.
    descriptor_ = Descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat facts {};
    if (!descriptor_ || ::fstat(descriptor_.get(), &facts) != 0 || !S_ISREG(facts.st_mode) ||
        facts.st_size <= 0)
        return;
    const auto size = std::min(static_cast<std::size_t>(facts.st_size), seen);
    void* memory =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED)
        return;
    memory_ = static_cast<char*>(memory);
    size_ = size;
    there_.resize((size + blockSize - 1) / blockSize);
}

LazyFile::~LazyFile() {
    if (memory_)
        ::munmap(memory_, size_);
}

bool LazyFile::fetch(std::size_t offset, std::size_t length) {
    if (offset >= size_ || length == 0)
        return true;
    const std::size_t last = offset + std::min(length, size_ - offset) - 1;
    for (std::size_t block = offset / blockSize; block <= last / blockSize; ++block) {
        if (!there_[block] && !fetchBlock(block))
            return false;
    }
    return true;
}

bool LazyFile::fetchBlock(std::size_t block) {
    const std::size_t begin = block * blockSize;
    const std::size_t end = std::min(begin + blockSize, size_);
    if (read_ + (end - begin) > budget)
        return false;
    for (std::size_t at = begin; at < end;) {
        const ssize_t got = ::pread(descriptor_.get(), memory_ + at, end - at, static_cast<off_t>(at));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        at += static_cast<std::size_t>(got);
        read_ += static_cast<std::size_t>(got);
    }
    there_[block] = true;
    return true;
}

} // namespace zenka::platform
