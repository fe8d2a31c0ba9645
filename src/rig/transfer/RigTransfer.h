#pragma once

#include "base/Lifeline.h"
#include "ports/Ports.h"
#include "rig/bodies/FramingBook.h"
#include "rig/bodies/LibraryDesk.h"
#include "rig/bodies/MeasuredFloors.h"
#include "rig/fire/CompRulesBook.h"
#include "rig/run/Transport.h"
#include "rig/script/ScriptDesk.h"
#include "rig/shared/RigLog.h"
#include "rig/site/HorizonDesk.h"
#include "rig/site/SiteBook.h"
#include "rig/site/SiteDesk.h"
#include "rig/transfer/RigFile.h"
#include "rig/transfer/RigPartWords.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace zenka::rig {

/// Carries a whole rig from one computer to another as one file. Main thread; files are read and written on a
/// queue.
class RigTransfer {
public:
    /// What a rig is gathered from and put into.
    struct Desks {
        SiteDesk& site;
        SiteBook& sites;
        ScriptDesk& script;
        LibraryDesk& library;
        CompRulesBook& rules;
        MeasuredFloors& floors;
        HorizonDesk& horizons;
        const Transport& transport;
    };

    static constexpr char suffix[] = ".zenka-rig";
    static constexpr std::size_t mostBytes = 32 << 20;

    RigTransfer(const ports::Ports& ports, RigLog& log, const Desks& desks, std::string appVersion);

    /// The rig as it stands.
    RigContents gather() const;
    /// "1 site in use, 4 saved sites, script “x” with 318 frames": the parts that there are.
    static std::string summary(const RigContents& rig, std::size_t frames);
    /// The same of the rig as it stands.
    std::string summary() const { return summary(gather(), desks_.script.captures().size()); }

    /// Writes the rig as it stands, to be read by the user alone. Done hears a sentence, empty when all went
    /// well.
    void exportTo(const std::string& path, std::function<void(const std::string& fault)> done);

    /// What a file holds.
    struct Found {
        std::string name;       ///< of the file
        RigReading reading;     ///< its fault is a whole sentence
        std::size_t frames = 0; ///< of its script at its own site, or at the one here where it has none
    };
    /// Reads a file and changes nothing.
    void read(const std::string& path, std::function<void(const Found&)> done);
    /// The parts that a rig has, held against those here.
    std::vector<RigPartWords> describe(const RigContents& rig, std::size_t frames) const;

    /// Why nothing can be imported now, a sentence; empty when it can.
    std::string importFault() const;
    /// Takes parts of a rig; false, and nothing is changed, where importFault() has something to say.
    bool apply(const Found& found, const std::set<RigPart>& parts);

private:
    const ports::Ports& ports_;
    RigLog& log_;
    const Desks desks_;
    FramingBook framings_;
    const std::string appVersion_;
    std::shared_ptr<ports::WorkQueue> queue_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
