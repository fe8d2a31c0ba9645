#pragma once

#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/SiteDesk.h"
#include "script/ZenkaScript.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zenka::rig {

/// The script: its text, and what it compiles to for the selected eclipse and site.
class ScriptDesk {
public:
    /// Clock values of the first and the last capture.
    struct Bounds {
        double first = 0;
        double last = 0;
    };

    ScriptDesk(const ports::Ports& ports, SiteDesk& site);

    const base::Published<std::string>& scriptText() const { return scriptText_; }
    const base::Published<std::string>& currentScriptName() const { return currentScriptName_; }
    const base::Published<bool>& showWelcome() const { return showWelcome_; }

    const std::vector<script::Capture>& captures() const { return captures_; }
    /// The captures' offsets alone, so that a tick with nothing due touches nothing else.
    const std::vector<double>& captureOffsets() const { return captureOffsets_; }
    const std::optional<Bounds>& captureBounds() const { return captureBounds_; }
    const std::map<std::string, std::vector<script::Capture>>& capturesByToken() const {
        return capturesByToken_;
    }
    const std::vector<script::AudioCue>& audioCues() const { return audioCues_; }
    const std::vector<script::ScriptDiag>& diagnostics() const { return diagnostics_; }
    const std::vector<std::string>& cameraTokens() const { return cameraTokens_; }
    const std::set<std::string>& visibleCameras() const { return visibleCameras_; }
    const std::map<std::string, std::map<std::string, std::string>>& scriptCameraSettings() const {
        return scriptCameraSettings_;
    }

    /// Finds the script to begin with: the default file, the text of last time, the first recent file,
    /// or the starter script.
    void restore();

    /// Takes a text as the editor has it; it compiles once no more changes come for 400 ms.
    void setScriptText(std::string text);

    /// Takes a whole script at once; compile() follows up.
    void load(std::string text, std::string name);

    /// Compiles for the site's last circumstances and raises compiled().
    void compile();

    sigc::signal<void()>& compiled() { return compiled_; }

private:
    /// False, and nothing changed, when the file cannot be read as UTF-8.
    bool loadFile(const std::string& path);
    std::vector<std::string> recentScripts() const;
    void noteRecent(const std::string& path);

    const ports::Ports& ports_;
    SiteDesk& site_;
    base::Published<std::string> scriptText_;
    base::Published<std::string> currentScriptName_{"Untitled"};
    base::Published<bool> showWelcome_{false};
    std::vector<script::Capture> captures_;
    std::vector<double> captureOffsets_;
    std::optional<Bounds> captureBounds_;
    std::map<std::string, std::vector<script::Capture>> capturesByToken_;
    std::vector<script::AudioCue> audioCues_;
    std::vector<script::ScriptDiag> diagnostics_;
    std::vector<std::string> cameraTokens_;
    std::set<std::string> visibleCameras_;
    std::map<std::string, std::map<std::string, std::string>> scriptCameraSettings_;
    ports::MainLoop::TimerId debounce_ = ports::MainLoop::TimerId::none;
    sigc::signal<void()> compiled_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
