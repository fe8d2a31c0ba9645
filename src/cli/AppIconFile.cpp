#include "cli/AppIconFile.h"

#include "cli/Print.h"
#include "painting/AppIcon.h"
#include "platform/LinuxFiles.h"

namespace zenka::cli {

void renderAppIcon(const std::string& path, int size) {
    if (!platform::LinuxFiles().writeDocument(path, painting::pngOf(painting::appIcon(size))))
        printLine("cannot write " + path);
}

} // namespace zenka::cli
