#include "cli/OgImage.h"

#include "cli/Print.h"
#include "eclipse/Catalog.h"
#include "painting/AppIcon.h"
#include "painting/SharingPicture.h"
#include "platform/LinuxClock.h"
#include "platform/LinuxFiles.h"
#include "platform/OffscreenText.h"

namespace zenka::cli {

void renderOGImage(const std::string& path) {
    const platform::OffscreenText text;
    if (!painting::canWriteLetters()) {
        printLine("cannot write " + path + ": there is no font to write its words with, such as DejaVu Sans");
        return;
    }
    const auto next = eclipse::Catalog::nextAfter(platform::LinuxClock().now());
    if (!platform::LinuxFiles().writeDocument(path, painting::pngOf(painting::sharingPicture(next))))
        printLine("cannot write " + path);
}

} // namespace zenka::cli
