#include "rig/cards/RunAnalyzer.h"

#include "analysis/ExifReader.h"
#include "analysis/ReportHTML.h"
#include "analysis/RunAnalysis.h"
#include "base/CivilTime.h"
#include "ports/FreshName.h"
#include "rig/cards/AnalyzerWords.h"
#include "rig/runlog/RunLogLibrary.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

using Step = AnalyzerState::Step;

constexpr base::Seconds rowsInFlight{2}; // after the end of a run

} // namespace

/// One analysis. Its parts that work on the queue are done one behind the other, and the main thread reads
/// what they found when they are done.
struct RunAnalyzer::Job {
    Job(const ports::Ports& machine, std::filesystem::path where)
        : ports(machine), zone(base::machineTimeZone()), folder(std::move(where)),
          reader(machine.images, machine.queues, zone) {}

    const ports::Ports& ports;
    const absl::TimeZone zone; // the cameras' clocks are taken to show the machine's time
    const std::filesystem::path folder;
    script::CapturesByToken script;
    std::string scriptName;
    std::string camera;

    std::atomic<bool> cancelled = false;
    std::atomic<int> filesRead = 0;
    std::atomic<int> filesFound = 0;
    std::atomic<bool> progressOnItsWay = false;
    std::function<void()> progressed; ///< any thread

    analysis::ExifReader reader;
    std::optional<std::string> model;
    std::vector<std::vector<analysis::ExifFrame>> segments;
    int cardFrames = 0;      ///< of all runs
    std::size_t segment = 0; ///< that is compared
    RunLogLibrary::Match logs;

    analysis::AnalysisResult result;
    std::string html;
    std::filesystem::path report;
    bool written = false;

    const std::vector<script::Capture>& captures() { return script[camera]; }
    int expected() { return static_cast<int>(captures().size()); }

    analysis::ReadWatch watch() {
        return {.progress =
                    [this](int read, int found) {
                        filesFound = found;
                        // Several threads tell, and not in order.
                        for (int before = filesRead; before < read;)
                            filesRead.compare_exchange_weak(before, read);
                        if (!progressOnItsWay.exchange(true))
                            progressed();
                    },
                .cancelled = [this] { return cancelled.load(); }};
    }

    void readModel() { model = reader.firstCameraModel(folder, watch()); }
    void readFrames() {
        const auto frames = reader.read(folder, watch());
        cardFrames = static_cast<int>(frames.size());
        segments = analysis::RunAnalysis::segments(frames);
    }
    void compare() {
        const auto frames = segments.empty() ? std::vector<analysis::ExifFrame>() : segments[segment];
        std::vector<script::Capture> expected = captures();
        logs = RunLogLibrary(ports.files, ports.folders.runLogs()).match(camera, expected, cancelled);
        const auto& log = logs.best;
        if (log)
            expected = analysis::RunLogTables::withLogged(std::move(expected), log->compensated);
        result = analysis::RunAnalysis::compare(
            expected, frames,
            {.sdName = CardWatch::nameOf(folder), .scriptName = scriptName, .camera = camera},
            log ? std::optional(log->verdict) : std::nullopt, log ? std::optional(log->name) : std::nullopt);
        const base::Instant now = ports.clock.now();
        html = analysis::ReportHTML::generate(result, frames, expected,
                                              {.imageFiles = reader.lastImageFiles(),
                                               .generated = now,
                                               .zone = zone,
                                               .cardFrames = cardFrames});
        if (cancelled)
            return;
        report =
            ports::freshName(ports.files, ports.folders.reports(),
                             "Zenka Run Report " + base::formatTime("%Y-%m-%d %H%M", now, zone), ".html");
        written = !report.empty() && ports.files.writeAtomically(report, html);
    }
};

RunAnalyzer::RunAnalyzer(const ports::Ports& ports, RigLog& log, const ScriptDesk& script,
                         const Transport& transport, const RunLogbook& logbook, CardWatch& cards)
    : ports_(ports), log_(log), script_(script), transport_(transport), logbook_(logbook), cards_(cards),
      queue_(ports.queues.serial("analyzer")) {
    cards_.inserted().connect([this](const std::filesystem::path& dcim) { cardInserted(dcim); });
}

RunAnalyzer::~RunAnalyzer() {
    if (job_)
        job_->cancelled = true;
}

// --- the offer

void RunAnalyzer::runCompleted() {
    ports_.loop.after(rowsInFlight, lifeline_.guard([this] {
        if (!mayOffer())
            return;
        cards_.look(lifeline_.guard([this](const CardWatch::Cards& found) {
            if (!mayOffer())
                return;
            if (!found.empty())
                return offerPostRunAnalyze();
            pendingAnalyzeOffer_ = true;
            state_.set(AnalyzerWords::runEnded(logbook_.pendingSurvey().get()));
        }));
    }));
}

void RunAnalyzer::offerPostRunAnalyze() {
    pendingAnalyzeOffer_ = false;
    state_.set(AnalyzerWords::offer(logbook_.pendingSurvey().get()));
}

void RunAnalyzer::cardInserted(const std::filesystem::path& dcim) {
    const std::string name = CardWatch::nameOf(dcim);
    log_.pushLog("💾 Card “" + name + "” is in. Tools ▸ Simulation Analyzer compares it with the script.");
    // Nobody is to be disturbed in a run, and a card that was put in for something else is none of ours.
    const bool aRunWasFired = pendingAnalyzeOffer_ || !logbook_.lastCsvPath().empty();
    if (aRunWasFired && mayOffer() && !script_.captures().empty())
        offerPostRunAnalyze();
}

bool RunAnalyzer::mayOffer() const {
    const Step step = state_.get().step;
    return !transport_.runActive() && (step == Step::idle || step == Step::message);
}

void RunAnalyzer::followRun() {
    const AnalyzerState& state = state_.get();
    const bool givesWay = state.unasked ? transport_.runActive() : transport_.live();
    if (!givesWay || state.step == Step::idle)
        return;
    if (state.step == Step::verdict)
        keepLocal();
    else
        cancel();
}

// --- the way to the frames

bool RunAnalyzer::refused() {
    if (state_.get().step == Step::working)
        return true;
    if (transport_.live())
        state_.set(AnalyzerWords::liveRun());
    else if (script_.captures().empty())
        state_.set(AnalyzerWords::noScript());
    else
        return false;
    return true;
}

void RunAnalyzer::analyzeRun() {
    if (refused())
        return;
    job_.reset();
    state_.set(AnalyzerWords::lookingForCards());
    cards_.look(lifeline_.guard([this](const CardWatch::Cards& found) {
        if (state_.get().step == Step::working && !job_)
            cardsFound(found);
    }));
}

void RunAnalyzer::analyzeFolder(const std::filesystem::path& folder) {
    if (!refused())
        begin(folder);
}

void RunAnalyzer::cardsFound(const CardWatch::Cards& found) {
    if (found.empty()) {
        state_.set(AnalyzerWords::noCard());
    } else if (found.size() == 1) {
        begin(found.front());
    } else {
        found_ = found;
        state_.set(AnalyzerWords::whichCard(found));
    }
}

void RunAnalyzer::begin(const std::filesystem::path& folder) {
    job_ = std::make_shared<Job>(ports_, folder);
    job_->script = script_.capturesByToken();
    job_->scriptName = script_.currentScriptName().get();
    if (job_->scriptName.empty())
        job_->scriptName = "loaded script";
    job_->progressed = [&loop = ports_.loop, show = lifeline_.guard([this] { showProgress(); })] {
        loop.post(show);
    };
    if (job_->script.size() == 1)
        return runAnalyzer(job_->script.begin()->first);
    work(
        CardWatch::nameOf(folder), "Looking for the camera of this card…", [](Job& job) { job.readModel(); },
        &RunAnalyzer::pickAnalyzerCamera);
}

void RunAnalyzer::pickAnalyzerCamera() {
    state_.set(AnalyzerWords::whichCamera(job_->model.value_or("an unknown camera"), job_->script));
}

void RunAnalyzer::runAnalyzer(const std::string& camera) {
    job_->camera = camera;
    const std::string name = CardWatch::nameOf(job_->folder);
    log_.pushLog("Simulation Analyzer: reading “" + name + "” for " + camera + "…");
    work(
        name, "Reading what the images say of themselves…", [](Job& job) { job.readFrames(); },
        &RunAnalyzer::framesRead);
}

void RunAnalyzer::framesRead() {
    if (const auto words = AnalyzerWords::nothingReadable(job_->reader);
        job_->segments.empty() && !words.empty())
        log_.pushLog(words);
    if (job_->segments.size() >= 2)
        pickAnalyzerRun();
    else
        compare(0);
}

void RunAnalyzer::pickAnalyzerRun() {
    state_.set(AnalyzerWords::whichRun(job_->segments, job_->expected(), job_->zone));
}

void RunAnalyzer::compare(std::size_t segment) {
    job_->segment = segment;
    work(
        CardWatch::nameOf(job_->folder), "Comparing with the script…", [](Job& job) { job.compare(); },
        &RunAnalyzer::conclude);
}

void RunAnalyzer::conclude() {
    const Job& job = *job_;
    if (!job.written)
        log_.pushLog("⚠️ Analyzer: the report could not be written to " +
                     ports_.folders.reports().string() + ". Is the disk full, or the folder not yours?");
    AnalyzerState verdict = AnalyzerWords::verdict(job.result, job.reader, job.logs, job.written);
    verdict.report = job.written ? job.report : std::filesystem::path();
    log_.pushLog(
        absl::StrFormat("%s, %d of %d landed.", verdict.title, job.result.matched, job.result.expectedTotal));
    state_.set(std::move(verdict));
    if (job.written)
        reportWritten_.emit(job.report);
}

// --- answers

void RunAnalyzer::choose(int choice) {
    const AnalyzerState state = state_.get();
    const auto chosen = static_cast<std::size_t>(choice);
    if (state.step == Step::offer)
        return analyzeRun();
    if (choice < 0 || chosen >= state.choices.size())
        return;
    if (state.step == Step::pickCard)
        begin(found_[chosen]);
    else if (state.step == Step::pickCamera)
        runAnalyzer(state.choices[chosen]);
    else if (state.step == Step::pickRun)
        compare(chosen);
}

void RunAnalyzer::cancel() {
    if (job_)
        job_->cancelled = true;
    job_.reset();
    state_.set({});
}

void RunAnalyzer::sendReport(const std::string& note, const std::string& email) {
    if (state_.get().step != Step::verdict)
        return;
    if (toSend_.empty()) {
        log_.pushLog("Analyzer: no service is set up that a report could be sent to. It is kept in " +
                     ports_.folders.reports().filename().string() + ".");
        return keepLocal();
    }
    const auto job = std::move(job_);
    sent_ = {.job = job, .verdict = state_.get()};
    sent_.verdict.note = note;
    sent_.verdict.email = email;
    state_.set({});
    toSend_.emit({.result = job->result, .html = job->html, .note = note, .email = email});
}

void RunAnalyzer::sendFailed(const std::string& why) {
    if (!sent_.job || state_.get().step != Step::idle || transport_.runActive())
        return;
    job_ = std::move(sent_.job);
    AnalyzerState verdict = std::move(sent_.verdict);
    sent_ = {};
    verdict.sendFault = why;
    state_.set(std::move(verdict));
}

void RunAnalyzer::keepLocal() {
    if (state_.get().step != Step::verdict)
        return;
    log_.pushLog("Analyzer: report kept local (not sent).");
    cancel();
}

// --- the queue

void RunAnalyzer::work(const std::string& title, const std::string& text, void (*part)(Job&),
                       void (RunAnalyzer::*then)()) {
    const auto job = job_;
    state_.set({.step = Step::working, .title = title, .text = text});
    if (job != job_)
        return; // who heard of it has given it up
    queue_->post([job, part, &loop = ports_.loop, arrive = lifeline_.guard([this, job, then] {
        if (job == job_)
            (this->*then)();
    })] {
        part(*job);
        loop.post(arrive);
    });
}

void RunAnalyzer::showProgress() {
    AnalyzerState state = state_.get();
    if (!job_ || state.step != Step::working)
        return;
    job_->progressOnItsWay = false;
    state.filesRead = job_->filesRead;
    state.filesFound = job_->filesFound;
    state_.set(std::move(state));
}

} // namespace zenka::rig
