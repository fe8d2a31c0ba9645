#include "Check.h"
#include "platform/HeifExif.h"
#include "platform/LazyFile.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string name = [] {
        std::string pattern = std::filesystem::temp_directory_path() / "zenka-fuzz-heif-XXXXXX";
        check(mkstemp(pattern.data()) >= 0);
        return pattern;
    }();
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    zenka::platform::LazyFile file(name);
    if (!file)
        return 0;
    const auto piece = zenka::platform::heifExif(file);
    check(!piece || (piece->offset <= size && piece->length <= size - piece->offset));
    return 0;
}
