#pragma once

#include "services/GlanceDesk.h"
#include "services/ServiceDesk.h"
#include "support/ToldNames.h"
#include "support/ToldPages.h"
#include "support/VirtualRig.h"
#include "ui/Window.h"
#include "ui/screenshots/Album.h"

#include <QCoreApplication>

#include <filesystem>

namespace zenka::screenshots {

/// A rig in virtual time with its window, and an album of that.
struct Stage {
    explicit Stage(const std::filesystem::path& folder) : album(window, folder) {}

    /// Lets time pass, and the window follow: what is queued for it would pile up and slow the rig down.
    void run(double seconds) {
        constexpr double slice = 20;
        for (; seconds > slice; seconds -= slice) {
            rig.run(slice);
            QCoreApplication::processEvents();
        }
        rig.run(seconds);
    }

    test::VirtualRig rig;
    test::ToldNames names;
    services::ServiceDesk services{rig.machine.all, names, rig.model, "0.1.0"};
    test::ToldPages pages;
    services::GlanceDesk glance{rig.machine.all, pages, rig.model};
    ui::Window window{rig.model, rig.machine.all, services, glance, QStringLiteral("0.1.0")};
    Album album;
};

} // namespace zenka::screenshots
