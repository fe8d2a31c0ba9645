#pragma once

/// The keys under which the run engine keeps the user's settings.
namespace zenka::rig::settingsKeys {

inline constexpr char selectedEclipse[] = "eclipse.selectedId";
inline constexpr char sitePrefix[] = "eclipse.site.";                           ///< + eclipse id
inline constexpr char locationConfirmedPrefix[] = "eclipse.locationConfirmed."; ///< + eclipse id
inline constexpr char defaultSite[] = "eclipse.defaultSite";                    ///< id of a saved site
inline constexpr char recentScripts[] = "eclipse.recentScripts";                ///< JSON array of paths
inline constexpr char scriptText[] = "eclipse.scriptText";
inline constexpr char scriptName[] = "eclipse.scriptName";
inline constexpr char scriptFile[] = "zenka.scriptFile"; ///< the path the text was opened from or saved to
inline constexpr char unsavedText[] = "zenka.unsavedScriptText";   ///< that another script took the place of
inline constexpr char allowedCommands[] = "zenka.allowedCommands"; ///< JSON array of command lines
inline constexpr char commandsWithheld[] =
    "zenka.commandsWithheld"; ///< flag: the text of last time holds some that wait for leave
inline constexpr char defaultScriptPath[] = "zenka.defaultScriptPath";
inline constexpr char welcomeSeen[] = "zenka.welcomeSeen";
inline constexpr char simClock[] = "eclipse.simClock"; ///< "eclipseId|clock"

/// What bodies were measured to hold, each + model.
inline constexpr char canonNativeDriver[] = "eclipse.canonNativeDriver";        ///< flag, on when unset
inline constexpr char measuredFloorPrefix[] = "eclipse.measuredFloor.";         ///< seconds
inline constexpr char measuredSameFloorPrefix[] = "eclipse.measuredSameFloor."; ///< seconds
inline constexpr char sustainedFloorPrefix[] = "eclipse.sustainedFloor.";       ///< seconds
inline constexpr char burstDepthPrefix[] = "eclipse.burstDepth.";               ///< frames
inline constexpr char burstCadencePrefix[] = "eclipse.burstCadence.";           ///< seconds
inline constexpr char longFrameFloorPrefix[] = "eclipse.longFrameFloor.";       ///< JSON object
/// Measurements of earlier versions have been thrown away.
inline constexpr char cadenceRevalidated[] = "eclipse.cadenceMeasurementsRevalidated";
inline constexpr char olympusRevalidated[] = "eclipse.olympusFloorsRevalidatedForCaptureImage";

inline constexpr char audioEnabled[] = "eclipse.audioEnabled";               ///< cues are spoken
inline constexpr char voice[] = "eclipse.voice";                             ///< id of the chosen voice
inline constexpr char lowBatteryThreshold[] = "eclipse.lowBatteryThreshold"; ///< percent
inline constexpr char lowBatteryAudio[] = "eclipse.lowBatteryAudio";
inline constexpr char criticalBatteryAudio[] = "eclipse.criticalBatteryAudio";

inline constexpr char framingPrefix[] = "zenka.framing.";      ///< + label in small letters: JSON object
inline constexpr char framingPlan[] = "zenka.framingPlan";     ///< the same for no body
inline constexpr char framingChoice[] = "zenka.framingChoice"; ///< JSON object: what was looked at last

inline constexpr char serviceHost[] = "zenka.serviceHost"; ///< of the program's own service, "https://host"
inline constexpr char timeServer[] = "zenka.timeServer";   ///< whose Date header the clock is held against
inline constexpr char elevationHost[] = "zenka.elevationHost"; ///< address before "/v1/elevation"
inline constexpr char terrainTiles[] = "zenka.terrainTiles";   ///< "mapbox" (when unset) or "open"
inline constexpr char terrainHost[] = "zenka.terrainHost";     ///< of the tiles that want a token
inline constexpr char terrainToken[] = "zenka.terrainToken";
inline constexpr char openTerrainHost[] = "zenka.openTerrainHost";              ///< of those that want none
inline constexpr char eclipseDayPromptedPrefix[] = "zenka.eclipseDayPrompted."; ///< + id: the day, ISO 8601

/// What a deployment gives: each has an environment variable over it.
inline constexpr const char* deployment[] = {serviceHost, timeServer,   elevationHost,  terrainTiles,
                                             terrainHost, terrainToken, openTerrainHost};

} // namespace zenka::rig::settingsKeys
