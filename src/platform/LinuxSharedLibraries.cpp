#include "platform/LinuxSharedLibraries.h"

#include <dlfcn.h>
#include <system_error>
#include <utility>

namespace zenka::platform {

namespace {

namespace fs = std::filesystem;

class OpenedLibrary final : public ports::SharedLibrary {
public:
    explicit OpenedLibrary(void* handle) : handle_(handle) {}
    void* symbol(const char* name) const override { return ::dlsym(handle_, name); }

private:
    void* handle_;
};

ports::SharedLibraries::Opened openFile(const std::string& file) {
    if (void* handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))
        return {.library = std::make_shared<OpenedLibrary>(handle), .fault = {}};
    const char* fault = ::dlerror();
    return {.library = nullptr, .fault = fault ? fault : ""};
}

} // namespace

LinuxSharedLibraries::LinuxSharedLibraries()
    : folder_([] {
          std::error_code none;
          const fs::path program = fs::read_symlink("/proc/self/exe", none);
          return program.empty() ? fs::path() : program.parent_path().parent_path() / "lib" / "zenka";
      }()) {
}

ports::SharedLibraries::Opened LinuxSharedLibraries::open(const std::string& name) {
    std::error_code none;
    const fs::path own = folder_ / name;
    if (folder_.empty() || !fs::exists(own, none))
        return openFile(name);
    Opened beside = openFile(own.string());
    if (beside.library)
        return beside;
    // Why the one that was put there cannot be used helps more than that there is no other.
    Opened elsewhere = openFile(name);
    return elsewhere.library ? elsewhere : beside;
}

} // namespace zenka::platform
