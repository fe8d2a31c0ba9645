#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/script/ScriptFiles.h"
#include "rig/shared/RigLog.h"
#include "rig/site/SiteDesk.h"
#include "script/ZenkaScript.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
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

    /// How a text came here that the user did not write here.
    enum class Arrival {
        opened,   ///< from a file that the user has just chosen, of its own or with more in it
        atStart,  ///< from a file that the program begins with
        lastTime, ///< as it stood when the program ended
    };

    /// Hears a sentence for the user: empty when all went well.
    using Done = std::function<void(const std::string& fault)>;

    ScriptDesk(const ports::Ports& ports, RigLog& log, SiteDesk& site);

    const base::Published<std::string>& scriptText() const { return scriptText_; }
    const base::Published<std::string>& currentScriptName() const { return currentScriptName_; }
    /// The file the text was opened from or saved to, empty for none.
    const base::Published<std::string>& scriptFile() const { return scriptFile_; }
    /// The text differs from that file's; without a file, from the text as it was loaded.
    const base::Published<bool>& edited() const { return edited_; }
    const base::Published<bool>& showWelcome() const { return showWelcome_; }

    const std::vector<script::Capture>& captures() const { return captures_; }
    /// The captures' offsets alone, so that a tick with nothing due touches nothing else.
    const std::vector<double>& captureOffsets() const { return captureOffsets_; }
    const std::optional<Bounds>& captureBounds() const { return captureBounds_; }
    const script::CapturesByToken& capturesByToken() const { return capturesByToken_; }
    /// The first frame of a camera behind a clock value; none when there is no more.
    const script::Capture* nextCapture(const std::string& token, double clock) const;
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

    /// The welcome was read: no later start shows it.
    void dismissWelcome();

    /// Takes a text as the editor has it; it compiles off the main thread once no more changes come for
    /// 400 ms, so that typing goes on in the longest script.
    void setScriptText(std::string text);

    /// Takes a whole script at once; compile() follows up.
    void load(std::string text, std::string name);

    /// Takes the script of a run that is resumed; compile() follows up. Mostly it is the one that stands, and
    /// keeps its file.
    void takeBack(std::string text);

    /// Which script the text on the desk belongs to: a number for each that was taken.
    std::size_t origin() const { return origin_; }
    /// An undo or a redo has brought back the text of another script: name and file come back with it, so
    /// that a save cannot go to the wrong file.
    void takeOrigin(std::size_t origin);

    /// Reads a file in the place of the script, and compiles. A file that cannot be read changes nothing.
    void openFile(const std::string& path, Done done);
    /// Writes the text to a file, which is the script's own from then on.
    void saveFile(const std::string& path, Done done);
    std::vector<std::string> recentScripts() const { return files_.recent(); }

    /// The starter script, compiled.
    void newScript();
    /// A script that belongs to no file, compiled.
    void loadExample(std::string text, std::string name);
    /// A script that came to this computer in something else than a file of its own. It is as little trusted
    /// as one that was opened; compile() follows up.
    void takeFromElsewhere(std::string text, std::string name);
    /// The script wizard's script, compiled. savedPath is the file that it was written to, empty for none.
    void applyWizardScript(std::string text, const std::string& name, const std::string& savedPath = {});

    /// The file that each start begins with; an empty path for none.
    std::string defaultScript() const;
    void setDefaultScript(const std::string& path);
    /// The text that another script took the place of last and that was in no file.
    std::optional<std::string> unsavedText() const;
    void bringBackUnsavedText();

    /// Stores text, name and file at once, as compile() does.
    void keep();

    /// Compiles for the site's last circumstances and raises compiled().
    void compile();

    /// Compiles another text for the same, and touches nothing.
    std::vector<script::Capture> compilePreview(const std::string& text) const;

    /// The text has changed, and what it compiles to is on its way.
    bool compiling() const { return takenCompile_ != wantedCompile_; }

    sigc::signal<void()>& compiled() { return compiled_; }
    /// A text from outside has come, and is about to be compiled.
    sigc::signal<void(const std::string& text, Arrival)>& arrived() { return arrived_; }
    /// The text was written to a file.
    sigc::signal<void(const std::string& text)>& saved() { return saved_; }

private:
    /// Enough of a text to know it again.
    struct Fingerprint {
        std::size_t size = 0;
        std::size_t hash = 0;

        static Fingerprint of(std::string_view text);
        bool matches(std::string_view text) const { return size == text.size() && *this == of(text); }
        friend bool operator==(const Fingerprint&, const Fingerprint&) = default;
    };

    /// Where a script comes from.
    struct Origin {
        std::string name = "Untitled";
        std::string file;                 ///< path, empty for none
        std::optional<Fingerprint> saved; ///< as in the file, or as loaded; nothing: not known
        bool windowsLineEnds = false;
    };

    void compileAside();
    void take(script::CompiledScript result);

    /// False, and nothing changed, when the file cannot be read as UTF-8.
    bool loadNow(const std::string& path);
    void takeFile(const std::string& path, std::string text, bool windowsLineEnds, Arrival arrival);
    void replace(std::string text, Origin origin);
    void compareWithLastFile(const std::string& path);
    void publishOrigin();

    const ports::Ports& ports_;
    RigLog& log_;
    SiteDesk& site_;
    ScriptFiles files_;
    std::vector<Origin> origins_{Origin{}}; // of all scripts taken, since an undo may bring each back
    std::size_t origin_ = 0;
    base::Published<std::string> scriptFile_;
    base::Published<bool> edited_{false};
    base::Published<std::string> scriptText_;
    base::Published<std::string> currentScriptName_{"Untitled"};
    base::Published<bool> showWelcome_{false};
    std::vector<script::Capture> captures_;
    std::vector<double> captureOffsets_;
    std::optional<Bounds> captureBounds_;
    script::CapturesByToken capturesByToken_;
    std::vector<script::AudioCue> audioCues_;
    std::vector<script::ScriptDiag> diagnostics_;
    std::vector<std::string> cameraTokens_;
    std::set<std::string> visibleCameras_;
    std::map<std::string, std::map<std::string, std::string>> scriptCameraSettings_;
    std::size_t takenCompile_ = 0;
    std::size_t wantedCompile_ = 0; // only the result of the compile asked for last is taken
    ports::MainLoop::TimerId debounce_ = ports::MainLoop::TimerId::none;
    sigc::signal<void()> compiled_;
    sigc::signal<void(const std::string&, Arrival)> arrived_;
    sigc::signal<void(const std::string&)> saved_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
