#include "platform/Spawn.h"

#include <algorithm>
#include <csignal>
#include <spawn.h>
#include <unistd.h>

namespace zenka::platform {

namespace {

/// The system takes pointers to letters that it could write to, and does not.
std::vector<char*> pointersTo(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

int spawn(const Spawning& spawning, pid_t& child) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_adddup2(&actions, spawning.input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, spawning.output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, spawning.errors, STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    std::vector<std::string> words = spawning.arguments;
    words.insert(words.begin(), spawning.program);
    std::vector<std::string> entries = spawning.environment;
    const int fault = posix_spawnp(&child, spawning.program.c_str(), &actions, &attributes,
                                   pointersTo(words).data(), pointersTo(entries).data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return fault;
}

std::vector<std::string> environmentWithout(const std::vector<std::string_view>& names) {
    std::vector<std::string> entries;
    for (char** entry = environ; *entry; ++entry) {
        const std::string_view text = *entry;
        if (std::ranges::find(names, text.substr(0, text.find('='))) == names.end())
            entries.emplace_back(text);
    }
    return entries;
}

} // namespace zenka::platform
