#pragma once

#include "base/Lifeline.h"
#include "ports/Ports.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::rig {

/// Script files on the disk, and the list of those used last. Main thread; reading and writing are done on
/// a queue, in order of the calls.
class ScriptFiles {
public:
    /// No script of a person comes near it. Keeps a picture or a film, chosen by mistake, out of the editor.
    static constexpr std::size_t mostBytes = 16'000'000;

    struct Read {
        std::optional<std::string> text; ///< with line feeds alone
        bool windowsLineEnds = false;    ///< the file had CR LF
        std::string fault;               ///< without a text: a sentence why
    };

    explicit ScriptFiles(const ports::Ports& ports);

    /// Reads a file at once, waiting for the disk; for the start of the program.
    Read readNow(const std::string& path) const;

    void read(const std::string& path, std::function<void(Read)> done);
    /// Puts a whole file in the place of the one there; done hears whether it is safe on the disk.
    void write(const std::string& path, std::string text, bool windowsLineEnds,
               std::function<void(bool)> done);

    /// Paths, the newest first, at most 10.
    std::vector<std::string> recent() const;
    void noteRecent(const std::string& path);

    /// The last piece of a path.
    static std::string nameOf(const std::string& path);

private:
    const ports::Ports& ports_;
    std::shared_ptr<ports::WorkQueue> queue_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
