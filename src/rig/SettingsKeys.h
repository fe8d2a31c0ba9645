#pragma once

/// The keys under which the run engine keeps the user's settings.
namespace zenka::rig::settingsKeys {

inline constexpr char selectedEclipse[] = "eclipse.selectedId";
inline constexpr char sitePrefix[] = "eclipse.site.";                           ///< + eclipse id
inline constexpr char locationConfirmedPrefix[] = "eclipse.locationConfirmed."; ///< + eclipse id
inline constexpr char recentScripts[] = "eclipse.recentScripts";                ///< JSON array of paths
inline constexpr char scriptText[] = "eclipse.scriptText";
inline constexpr char scriptName[] = "eclipse.scriptName";
inline constexpr char defaultScriptPath[] = "zenka.defaultScriptPath";
inline constexpr char welcomeSeen[] = "zenka.welcomeSeen";
inline constexpr char simClock[] = "eclipse.simClock"; ///< "eclipseId|clock"

} // namespace zenka::rig::settingsKeys
