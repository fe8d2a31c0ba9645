#pragma once

#include "ports/SharedLibraries.h"
#include "support/fake_edsdk/FakeEdsdk.h"

#include <dlfcn.h>
#include <set>
#include <string>

namespace zenka::test {

/// Opens the fake of Canon's library, of which single symbols may be missing, or says that there is none.
class EdsdkLibrary final : public ports::SharedLibraries {
public:
    EdsdkLibrary() : fake_(::dlopen(ZENKA_FAKE_EDSDK, RTLD_NOW | RTLD_LOCAL)) { fake() = FakeEdsdk(); }

    bool installed = true;
    std::set<std::string> hidden;

    FakeEdsdk& fake() const { return *reinterpret_cast<FakeEdsdk* (*)()>(::dlsym(fake_, "fake_edsdk"))(); }

    Opened open(const std::string& name) override {
        if (!installed || name != "libEDSDK.so")
            return {.library = nullptr, .fault = name + ": cannot open shared object file"};
        return {.library = std::make_shared<Library>(*this), .fault = {}};
    }

private:
    class Library final : public ports::SharedLibrary {
    public:
        explicit Library(const EdsdkLibrary& owner) : owner_(owner) {}
        void* symbol(const char* name) const override {
            return owner_.hidden.contains(name) ? nullptr : ::dlsym(owner_.fake_, name);
        }

    private:
        const EdsdkLibrary& owner_;
    };

    void* fake_;
};

} // namespace zenka::test
