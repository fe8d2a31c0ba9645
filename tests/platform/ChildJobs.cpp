#include "platform/ChildJobs.h"

#include "platform/LinuxFiles.h"
#include "platform/LinuxKeepAwake.h"
#include "platform/LinuxStallSampler.h"

#include <QCoreApplication>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace zenka::test {

namespace {

/// Tells the parent, past any buffer, that something is done.
void tell(const std::string& line) {
    if (::write(STDOUT_FILENO, (line + "\n").data(), line.size() + 1) < 0)
        std::perror("tell");
}

/// Appends numbered rows for ever, telling each number once its row was taken.
int appendRows(const std::string& path) {
    platform::LinuxFiles files;
    const auto file = files.create(path, "head\n");
    for (int row = 0; file; ++row)
        if (file->append("row " + std::to_string(row) + " of a run\n"))
            tell(std::to_string(row));
    return 1;
}

/// Writes a file again and again, all of one letter, telling each letter that was written.
int rewriteFile(const std::string& path) {
    platform::LinuxFiles files;
    for (char letter = 'a';; letter = letter == 'z' ? 'a' : static_cast<char>(letter + 1))
        if (files.writeAtomically(path, std::string(300'000, letter)))
            tell(std::string(1, letter));
}

/// Ends while a service still owes its answer.
int holdAndLeave(const std::string& address) {
    int count = 1;
    std::string name = "child";
    char* words[] = {name.data(), nullptr};
    const QCoreApplication application(count, words);
    platform::LinuxKeepAwake keepAwake({}, {.system = address, .session = address});
    keepAwake.hold("leaving");
    ::usleep(300'000); // the calls are out
    return 0;
}

/// Takes a sample of itself and ends when that is over.
int sampleWith(const std::string& program, const std::string& file) {
    platform::LinuxStallSampler sampler(program);
    if (!sampler.sampleTo(file))
        return 1;
    while (!childless())
        ::usleep(10'000);
    tell("went on");
    return 0;
}

} // namespace

int runChildJob(const std::vector<std::string>& words) {
    if (words.size() == 2 && words[0] == "append-rows")
        return appendRows(words[1]);
    if (words.size() == 2 && words[0] == "rewrite-file")
        return rewriteFile(words[1]);
    if (words.size() == 2 && words[0] == "hold-and-leave")
        return holdAndLeave(words[1]);
    if (words.size() == 3 && words[0] == "sample-with")
        return sampleWith(words[1], words[2]);
    return 2;
}

std::vector<std::string> childJob(std::vector<std::string> words) {
    words.insert(words.begin(), {std::filesystem::read_symlink("/proc/self/exe").string(), "--child"});
    return words;
}

} // namespace zenka::test
