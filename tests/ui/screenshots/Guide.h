#pragma once

#include <filesystem>

/// The pictures of the guide and of the README, and what becomes pictures in another program: pages for a
/// browser (glance.html, report.html) and the checklist.pdf. Each of these is false where it could not go its
/// way.
namespace zenka::screenshots {

bool shootGuide(const std::filesystem::path& folder);

/// From the first start to a rehearsal, on simulated bodies.
bool shootFirstSteps(const std::filesystem::path& folder);

/// A body is measured.
bool shootMeasuring(const std::filesystem::path& folder);

/// Bodies are plugged in, a rig is carried, a live run loses a cable, and its card is read.
bool shootEclipseDay(const std::filesystem::path& folder);

} // namespace zenka::screenshots
