#pragma once

#include "analysis/AnalysisResult.h"
#include "analysis/ExifFrame.h"
#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/cards/CardWatch.h"
#include "rig/run/Transport.h"
#include "rig/runlog/RunLogbook.h"
#include "rig/script/ScriptDesk.h"
#include "rig/shared/RigLog.h"

#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {

/// Where an analysis stands, as the window shows it.
struct AnalyzerState {
    enum class Step {
        idle,       ///< nothing to show
        offer,      ///< after a run: analyze now?
        message,    ///< something is missing
        pickCard,   ///< of several cards
        pickCamera, ///< of several in the script
        working,    ///< reads and compares
        pickRun,    ///< of several runs on the card
        verdict,    ///< done
    };
    Step step = Step::idle;
    bool unasked = false; ///< it comes by itself, after a run
    std::string summary;  ///< of the run that has just ended; empty otherwise
    std::string title;
    std::string text;
    std::vector<std::string> choices; ///< of a pick
    int recommended = -1;             ///< of the choices; -1: none
    int filesRead = 0;                ///< while working
    int filesFound = 0;
    bool pass = false;            ///< of the verdict
    std::filesystem::path report; ///< of the verdict; empty when it could not be written
    /// Of a verdict whose report could not be sent: why, a sentence, and what was to go with it.
    std::string sendFault;
    std::string note;
    std::string email;

    friend bool operator==(const AnalyzerState&, const AnalyzerState&) = default;
};

/// The Simulation Analyzer: reads a memory card after a run, compares it with the script on the desk, writes
/// the report and gives the verdict. Asks step by step what only the user can know. Reading and comparing
/// are off the main thread. Main thread.
class RunAnalyzer {
public:
    RunAnalyzer(const ports::Ports& ports, RigLog& log, const ScriptDesk& script, const Transport& transport,
                const RunLogbook& logbook, CardWatch& cards);
    RunAnalyzer(const RunAnalyzer&) = delete;
    RunAnalyzer& operator=(const RunAnalyzer&) = delete;
    ~RunAnalyzer();

    const base::Published<AnalyzerState>& state() const { return state_; }

    /// A run with real bodies was completed: sums it up, and offers the analysis, now or with the next card
    /// that is put in.
    void runCompleted();
    void offerPostRunAnalyze();

    /// Looks for a card and goes on from there.
    void analyzeRun();
    /// The same with a folder in the place of a card.
    void analyzeFolder(const std::filesystem::path& folder);

    /// Answers a pick, or takes up the offer (0).
    void choose(int choice);
    /// Gives up what is under way, or closes what is shown. A report that is written stays.
    void cancel();

    /// A run has begun or ended: an offer that nobody has taken up gives way to any run, all else to a live
    /// one.
    void followRun();

    /// The verdict's two ends.
    void sendReport(const std::string& note, const std::string& email = {});
    void keepLocal();
    /// The report sent last has not arrived: its verdict comes back with what was typed, unless something
    /// else has begun.
    void sendFailed(const std::string& why);

    /// A report that was written, to be opened.
    sigc::signal<void(const std::filesystem::path&)>& reportWritten() { return reportWritten_; }

    /// What is sent of a report.
    struct Outgoing {
        analysis::AnalysisResult result;
        std::string html;
        std::string note;
        std::string email; ///< for an answer; empty when none was given
    };
    /// A report is to be sent. Nobody hears it while no service is set up.
    sigc::signal<void(const Outgoing&)>& toSend() { return toSend_; }

private:
    struct Job; // what a comparison works on, off the main thread
    /// A verdict whose report is on its way.
    struct Sent {
        std::shared_ptr<Job> job;
        AnalyzerState verdict;
    };

    void cardInserted(const std::filesystem::path& dcim);
    bool mayOffer() const;
    bool refused();
    void cardsFound(const CardWatch::Cards& found);
    void begin(const std::filesystem::path& folder);
    void pickAnalyzerCamera();
    void runAnalyzer(const std::string& camera);
    void framesRead();
    void pickAnalyzerRun();
    void compare(std::size_t segment);
    void conclude();
    void showProgress();
    /// Does a part of the job on the queue and then goes on here, unless the job was given up.
    void work(const std::string& title, const std::string& text, void (*part)(Job&),
              void (RunAnalyzer::*then)());

    const ports::Ports& ports_;
    RigLog& log_;
    const ScriptDesk& script_;
    const Transport& transport_;
    const RunLogbook& logbook_;
    CardWatch& cards_;
    std::shared_ptr<ports::WorkQueue> queue_;
    base::Published<AnalyzerState> state_;
    bool pendingAnalyzeOffer_ = false;
    CardWatch::Cards found_; // of pickCard
    std::shared_ptr<Job> job_;
    Sent sent_;
    sigc::signal<void(const std::filesystem::path&)> reportWritten_;
    sigc::signal<void(const Outgoing&)> toSend_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
