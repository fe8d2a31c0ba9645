#include "rig/runlog/RunLogLibrary.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

/// What a log's name says of its beginning: "2026-08-12 183000".
std::string_view begunOf(std::string_view name) {
    constexpr std::string_view before = " run ";
    const std::size_t found = name.find(before);
    return found == name.npos ? name : name.substr(found + before.size());
}

} // namespace

RunLogLibrary::RunLogLibrary(ports::Files& files, std::filesystem::path folder)
    : files_(files), folder_(std::move(folder)) {
}

RunLogLibrary::Match RunLogLibrary::match(const std::string& camera,
                                          const std::vector<script::Capture>& captures,
                                          const std::atomic<bool>& cancelled) {
    std::vector<std::string> names = files_.namesIn(folder_);
    std::erase_if(names, [](const std::string& name) { return !name.ends_with(".csv"); });
    std::ranges::stable_sort(names, std::ranges::greater(), begunOf);
    analysis::RunLogMatcher matcher(camera, captures);
    int unreadable = 0;
    for (const std::string& name : names) {
        if (cancelled)
            return {};
        if (const auto csv = files_.read(folder_ / name))
            matcher.look(name, *csv);
        else
            ++unreadable;
    }
    return {.best = matcher.best(), .others = matcher.others(), .unreadable = unreadable};
}

} // namespace zenka::rig
