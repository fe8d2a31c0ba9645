#pragma once

#include "services/GlanceDesk.h"
#include "services/ServiceDesk.h"
#include "support/VirtualRig.h"
#include "ui/Window.h"
#include "ui/screenshots/Album.h"

#include <QString>

#include <memory>

/// Each of these shoots its sheets in every theme and size.
namespace zenka::screenshots {

/// A rehearsal of the example stands ten seconds before totality, on bodies of all kinds. Gives the one that
/// refused its test shot.
std::shared_ptr<test::ScriptedCamera> beginRehearsal(test::VirtualRig& rig);

/// The dashboard with an alarm and its cards, and every sheet as it opens, or the one that is named.
void shootDashboard(test::VirtualRig& rig, ui::Window& window,
                    const std::shared_ptr<test::ScriptedCamera>& body, const QString& only, Album& album);

/// The guide in Help: its beginning, a picture, and another page that a link led to.
void shootHelp(ui::Window& window, Album& album);

/// The page for phones, switched on.
void shootGlance(ui::Window& window, services::GlanceDesk& glance, Album& album);

/// The profilers at their work and when they are done, and what is said of drops.
void shootProfilers(test::VirtualRig& rig, ui::Window& window, Album& album);

/// What the analyzer asks, does and finds.
void shootAnalyzer(test::VirtualRig& rig, ui::Window& window, Album& album);

/// The question about commands that came with a file.
void shootConsent(test::VirtualRig& rig, ui::Window& window, Album& album);

/// The list before arming with much to mend, chips and their details, the bar of warnings and what is spoken.
void shootPreflight(test::VirtualRig& rig, ui::Window& window, Album& album);

/// What is exported, and a rig that was read: whole, with damage, and no rig at all. Beside the pictures lies
/// the checklist of the rig.
void shootRigTransfer(test::VirtualRig& rig, ui::Window& window, Album& album);

/// The terrain in the location sheet: not looked up, on its way, and in front of the Sun.
void shootHorizon(test::VirtualRig& rig, ui::Window& window, Album& album);

/// The framing simulator with a body of the script, one with figures of its own that the Sun leaves, and a
/// plan.
void shootFraming(test::VirtualRig& rig, ui::Window& window, Album& album);

/// A chat with the assistant: an answer with a script, one with faults and a failure, and the question about
/// commands.
void shootAssistant(test::VirtualRig& rig, ui::Window& window, Album& album);

/// What goes to a service, with one set.
void shootServices(test::VirtualRig& rig, ui::Window& window, services::ServiceDesk& services, Album& album);

} // namespace zenka::screenshots
