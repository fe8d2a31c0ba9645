#include "ui/kit/DesktopDialogs.h"

#include <gtest/gtest.h>

using zenka::ui::hasFileDialogs;

TEST(DesktopDialogs, areThereWhereAnInstalledThemeShowsThem) {
    const QStringList both{"gtk3", "xdgdesktopportal"};
    EXPECT_TRUE(hasFileDialogs("ubuntu:GNOME", "", both));
    EXPECT_TRUE(hasFileDialogs("X-Cinnamon", "", {"gtk3"}));
    EXPECT_FALSE(hasFileDialogs("GNOME", "", {}));
    EXPECT_FALSE(hasFileDialogs("KDE", "", both));
    EXPECT_FALSE(hasFileDialogs("", "", both));
    EXPECT_TRUE(hasFileDialogs("KDE", "xdgdesktopportal", both));
    EXPECT_FALSE(hasFileDialogs("GNOME", "qt5ct", both));
}
