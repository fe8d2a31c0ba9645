#include "analysis/CardWalk.h"

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

namespace zenka::analysis {

namespace fs = std::filesystem;

int walkFiles(const fs::path& folder, const std::function<bool(const fs::path&)>& visit) {
    int unreadable = 0;
    std::vector<fs::path> ahead{folder}; // the next one last
    while (!ahead.empty()) {
        const fs::path here = std::move(ahead.back());
        ahead.pop_back();
        std::vector<fs::path> files;
        std::vector<fs::path> folders;
        std::error_code fault;
        for (fs::directory_iterator at(here, fault), end; !fault && at != end; at.increment(fault)) {
            std::error_code unknown;
            const fs::file_type type = at->symlink_status(unknown).type();
            if (type == fs::file_type::regular)
                files.push_back(at->path());
            else if (type == fs::file_type::directory)
                folders.push_back(at->path());
        }
        if (fault)
            ++unreadable;
        std::ranges::sort(files);
        if (!std::ranges::all_of(files, visit))
            return unreadable;
        std::ranges::sort(folders, std::greater());
        std::ranges::move(folders, std::back_inserter(ahead));
    }
    return unreadable;
}

} // namespace zenka::analysis
