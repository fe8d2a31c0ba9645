#pragma once

#include <memory>
#include <string>

namespace zenka::ports {

/// A library that was opened at run time. It stays open for the life of the process, as a closed library's
/// threads may outlive every caller.
class SharedLibrary {
public:
    virtual ~SharedLibrary() = default;

    /// The address of a function or a variable; null for a name that it does not have.
    virtual void* symbol(const char* name) const = 0;

    /// The same as a pointer to a function of a known type.
    template <typename Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(symbol(name));
    }
};

/// Opens the makers' own camera libraries, which are not shipped and may be missing. Any thread.
class SharedLibraries {
public:
    struct Opened {
        std::shared_ptr<const SharedLibrary> library; ///< null when it could not be opened
        std::string fault;                            ///< why, as the loader says it
    };

    virtual ~SharedLibraries() = default;

    /// By its file name ("libEDSDK.so"): from `../lib/zenka/` beside the executable, else where the loader
    /// looks.
    virtual Opened open(const std::string& name) = 0;
};

} // namespace zenka::ports
