#include "rig/script/ScriptDesk.h"

#include "base/Text.h"
#include "rig/shared/SettingsKeys.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace zenka::rig {

namespace {

constexpr base::Seconds debounceSpan{0.4};

constexpr char starterScript[] =
    "# New Zenka script.\n"
    "# Times are MM:SS.s relative to the contacts (C1, C2, MAX, C3, C4).\n"
    "# Build one with the Wizard or the AI assistant above, or click \"Load example\" for a full reference.\n"
    "\n"
    "TAKEPIC,MAX,+,00:00.0,CAM1,1/250,8.0,200,0.000,RAW,None,N,Inner corona at maximum";

} // namespace

ScriptDesk::ScriptDesk(const ports::Ports& ports, RigLog& log, SiteDesk& site)
    : ports_(ports), log_(log), site_(site), files_(ports) {
}

void ScriptDesk::restore() {
    const auto saved = ports_.settings.text(settingsKeys::scriptText);
    const auto defaultPath = ports_.settings.text(settingsKeys::defaultScriptPath);
    const auto savedName = ports_.settings.text(settingsKeys::scriptName).value_or("Untitled");
    const auto recent = files_.recent();

    const bool mayBeLost = saved && !base::trimmed(*saved).empty();
    const std::string savedFile = ports_.settings.text(settingsKeys::scriptFile).value_or("");

    if (saved)
        arrived_.emit(*saved, Arrival::lastTime);
    const bool defaultLoaded = defaultPath && loadNow(*defaultPath);
    if (defaultPath && !defaultLoaded)
        log_.pushLog("⚠️ The script for each start could not be read: " + *defaultPath +
                     ". The text from before is used instead. Choose another one in Script.");
    if (defaultLoaded) {
        if (mayBeLost && *saved != scriptText_.get() && files_.readNow(savedFile).text != saved)
            ports_.settings.setText(settingsKeys::unsavedText, *saved);
    } else if (mayBeLost) {
        // Until the file has been compared, or when there is none, the text counts as one that no file has.
        replace(*saved,
                {.name = savedName,
                 .file = savedFile,
                 .saved = *saved == starterScript ? std::optional(Fingerprint::of(*saved)) : std::nullopt});
        compareWithLastFile(savedFile);
    } else if (!recent.empty() && loadNow(recent.front())) {
        files_.noteRecent(recent.front());
        keep();
    } else {
        load(starterScript, savedName);
    }
    if (!saved && !ports_.settings.flag(settingsKeys::welcomeSeen).value_or(false))
        showWelcome_.set(true);
}

void ScriptDesk::dismissWelcome() {
    ports_.settings.setFlag(settingsKeys::welcomeSeen, true);
    showWelcome_.set(false);
}

void ScriptDesk::setScriptText(std::string text) {
    scriptText_.set(std::move(text));
    publishOrigin();
    ports_.loop.cancel(debounce_);
    ++wantedCompile_;
    debounce_ = ports_.loop.after(debounceSpan, lifeline_.guard([this] { compileAside(); }));
}

void ScriptDesk::load(std::string text, std::string name) {
    const auto saved = Fingerprint::of(text);
    replace(std::move(text), {.name = std::move(name), .saved = saved});
}

void ScriptDesk::takeBack(std::string text) {
    if (text == scriptText_.get())
        return;
    arrived_.emit(text, Arrival::atStart);
    load(std::move(text), currentScriptName_.get());
}

void ScriptDesk::replace(std::string text, Origin origin) {
    ports_.loop.cancel(debounce_);
    ++wantedCompile_;
    const std::string& before = scriptText_.get();
    if (edited_.get() && before != text && !base::trimmed(before).empty())
        ports_.settings.setText(settingsKeys::unsavedText, before);
    origins_.push_back(std::move(origin));
    origin_ = origins_.size() - 1;
    scriptText_.set(std::move(text));
    publishOrigin();
}

void ScriptDesk::takeOrigin(std::size_t origin) {
    if (origin >= origins_.size())
        return;
    origin_ = origin;
    publishOrigin();
}

void ScriptDesk::publishOrigin() {
    const Origin& origin = origins_[origin_];
    currentScriptName_.set(origin.name);
    scriptFile_.set(origin.file);
    edited_.set(!origin.saved || !origin.saved->matches(scriptText_.get()));
}

ScriptDesk::Fingerprint ScriptDesk::Fingerprint::of(std::string_view text) {
    return {text.size(), std::hash<std::string_view>{}(text)};
}

void ScriptDesk::compareWithLastFile(const std::string& path) {
    if (path.empty())
        return;
    files_.read(path, lifeline_.guard([this, number = origin_](const ScriptFiles::Read& read) {
        Origin& origin = origins_[number];
        origin.windowsLineEnds = read.windowsLineEnds;
        origin.saved = read.text ? std::optional(Fingerprint::of(*read.text)) : std::nullopt;
        publishOrigin();
    }));
}

void ScriptDesk::compile() {
    ports_.loop.cancel(debounce_);
    ++wantedCompile_;
    take(script::ZenkaScript::compile(scriptText_.get(), site_.compileSite().context()));
}

std::vector<script::Capture> ScriptDesk::compilePreview(const std::string& text) const {
    return script::ZenkaScript::compile(text, site_.compileSite().context()).captures;
}

void ScriptDesk::compileAside() {
    const auto arrive = lifeline_.guard(
        [this, number = ++wantedCompile_](const std::shared_ptr<script::CompiledScript>& result) {
            if (number == wantedCompile_)
                take(std::move(*result));
        });
    ports_.queues.background(
        [arrive, &loop = ports_.loop, text = scriptText_.get(), site = site_.compileSite()] {
            const auto result =
                std::make_shared<script::CompiledScript>(script::ZenkaScript::compile(text, site.context()));
            loop.post([arrive, result] { arrive(result); });
        });
}

void ScriptDesk::take(script::CompiledScript result) {
    takenCompile_ = wantedCompile_;
    captures_ = std::move(result.captures);
    audioCues_ = std::move(result.audioCues);
    diagnostics_ = std::move(result.diagnostics);
    cameraTokens_ = std::move(result.cameras);
    scriptCameraSettings_ = std::move(result.cameraSettings);

    captureOffsets_.clear();
    captureOffsets_.reserve(captures_.size());
    for (const script::Capture& capture : captures_)
        captureOffsets_.push_back(capture.offsetSec);
    capturesByToken_ = script::capturesByToken(captures_);
    visibleCameras_.clear();
    for (const auto& [token, captures] : capturesByToken_)
        visibleCameras_.insert(token);
    captureBounds_ = captures_.empty()
                         ? std::nullopt
                         : std::optional(Bounds{captureOffsets_.front(), captureOffsets_.back()});

    keep();
    compiled_.emit();
}

const script::Capture* ScriptDesk::nextCapture(const std::string& token, double clock) const {
    const auto its = capturesByToken_.find(token);
    if (its == capturesByToken_.end())
        return nullptr;
    const auto next = std::ranges::upper_bound(its->second, clock, {}, &script::Capture::offsetSec);
    return next == its->second.end() ? nullptr : &*next;
}

bool ScriptDesk::loadNow(const std::string& path) {
    ScriptFiles::Read read = files_.readNow(path);
    if (!read.text)
        return false;
    takeFile(path, *std::move(read.text), read.windowsLineEnds, Arrival::atStart);
    return true;
}

void ScriptDesk::takeFile(const std::string& path, std::string text, bool windowsLineEnds, Arrival arrival) {
    arrived_.emit(text, arrival);
    const auto saved = Fingerprint::of(text);
    replace(std::move(text), {.name = ScriptFiles::nameOf(path),
                              .file = path,
                              .saved = saved,
                              .windowsLineEnds = windowsLineEnds});
}

void ScriptDesk::openFile(const std::string& path, Done done) {
    files_.read(path, lifeline_.guard([this, path, done = std::move(done)](ScriptFiles::Read read) {
        if (!read.text)
            return done(read.fault + " The script here is as it was.");
        takeFile(path, *std::move(read.text), read.windowsLineEnds, Arrival::opened);
        files_.noteRecent(path);
        compile();
        done({});
    }));
}

void ScriptDesk::saveFile(const std::string& path, Done done) {
    keep();
    const auto saved = Fingerprint::of(scriptText_.get());
    const auto written = [this, path, saved, number = origin_, text = scriptText_.get(),
                          done = std::move(done)](bool ok) {
        if (!ok)
            return done(absl::StrFormat("\"%s\" could not be written: the folder may be full or closed to "
                                        "you. The text is kept here; save it to another folder.",
                                        ScriptFiles::nameOf(path)));
        files_.noteRecent(path);
        Origin& origin = origins_[number]; // perhaps no longer that of the script on the desk
        origin.name = ScriptFiles::nameOf(path);
        origin.file = path;
        origin.saved = saved;
        publishOrigin();
        keep();
        saved_.emit(text);
        done({});
    };
    files_.write(path, scriptText_.get(), origins_[origin_].windowsLineEnds, lifeline_.guard(written));
}

void ScriptDesk::newScript() {
    load(starterScript, "Untitled");
    compile();
}

void ScriptDesk::loadExample(std::string text, std::string name) {
    load(std::move(text), std::move(name));
    compile();
}

void ScriptDesk::takeFromElsewhere(std::string text, std::string name) {
    arrived_.emit(text, Arrival::opened);
    load(std::move(text), std::move(name));
}

void ScriptDesk::applyWizardScript(std::string text, const std::string& name, const std::string& savedPath) {
    const auto saved = Fingerprint::of(text);
    replace(std::move(text), {.name = name, .file = savedPath, .saved = saved});
    if (!savedPath.empty())
        files_.noteRecent(savedPath);
    compile();
    log_.pushLog("Loaded “" + name + "” from the Script Wizard — press play to simulate.");
}

std::string ScriptDesk::defaultScript() const {
    return ports_.settings.text(settingsKeys::defaultScriptPath).value_or("");
}

void ScriptDesk::setDefaultScript(const std::string& path) {
    if (path.empty())
        ports_.settings.remove(settingsKeys::defaultScriptPath);
    else
        ports_.settings.setText(settingsKeys::defaultScriptPath, path);
}

std::optional<std::string> ScriptDesk::unsavedText() const {
    return ports_.settings.text(settingsKeys::unsavedText);
}

void ScriptDesk::bringBackUnsavedText() {
    auto text = unsavedText();
    if (!text)
        return;
    arrived_.emit(*text, Arrival::opened); // it may once have come from a file
    loadExample(*std::move(text), "Unsaved text");
}

void ScriptDesk::keep() {
    ports_.settings.setText(settingsKeys::scriptText, scriptText_.get());
    ports_.settings.setText(settingsKeys::scriptName, currentScriptName_.get());
    ports_.settings.setText(settingsKeys::scriptFile, scriptFile_.get());
}

} // namespace zenka::rig
