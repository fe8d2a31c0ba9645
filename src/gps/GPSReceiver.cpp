#include "gps/GPSReceiver.h"

#include "gps/NMEA.h"
#include "gps/Outbox.h"
#include "gps/SentenceLines.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

namespace zenka::gps {

namespace {

using base::Seconds;

constexpr int baud = 9600; // the one rate of these receivers
/// For this long a device is listened to before it is passed over.
constexpr Seconds probeTime{2.5};
constexpr Seconds pauseBetweenRounds{3.0};
/// A receiver that is silent for longer has gone.
constexpr Seconds quietLimit{8.0};
/// What one read waits at most, so that the end of the program waits no longer for it.
constexpr Seconds readLimit{0.15};
/// After a pause as long as this, bytes may have waited for us, and their arrival is not now.
constexpr Seconds pauseThatAges{0.5};
constexpr std::size_t fullReading = 512;
constexpr std::size_t mostReasonsKept = 64;

constexpr std::string_view streamMark = "$G";

} // namespace

/// Each piece of its work that is posted to the queue reads once and posts the next one, and only while
/// this object lives. It has all but the outbox to itself.
struct GPSReceiver::Reader : std::enable_shared_from_this<Reader> {
    Reader(ports::SerialPorts& serialPortsGiven, ports::WorkQueues& queuesGiven, ports::MainLoop& loopGiven,
           const ports::Clock& clockGiven)
        : serialPorts(serialPortsGiven), queues(queuesGiven), loop(loopGiven), clock(clockGiven) {}

    /// Main thread.
    void start(std::weak_ptr<const Listener> listener) {
        deliver = [outbox = outbox, listener = std::move(listener)] { outbox->deliver(listener); };
        queue = queues.serial("zenka.gps");
        queue->post(later(&Reader::beginRound));
    }

    using Step = void (Reader::*)();

    /// A step of this object, for as long as it lives.
    std::function<void()> later(Step step) {
        return [weak = weak_from_this(), step] {
            if (const auto self = weak.lock())
                (self.get()->*step)();
        };
    }

    void beginRound() {
        candidates = serialPorts.candidates();
        std::ranges::reverse(candidates); // taken from the back
        openNext();
    }

    void openNext() {
        if (candidates.empty()) {
            queue->postAfter(pauseBetweenRounds, later(&Reader::beginRound));
            return;
        }
        path = std::move(candidates.back());
        candidates.pop_back();
        auto opened = serialPorts.open(path, baud);
        line = std::move(opened.line);
        if (!line) {
            passOver(absl::StrFormat("%s cannot be read: %s", path, opened.fault));
            return;
        }
        heard = false;
        mark.clear();
        probeEnd = clock.continuousSeconds() + probeTime.count();
        queue->post(later(&Reader::probe));
    }

    void probe() {
        const Seconds left{probeEnd - clock.continuousSeconds()};
        const auto reading = line->read(std::clamp(left, Seconds{0}, readLimit));
        const base::Instant arrival = clock.now();
        heard = heard || !reading.bytes.empty();
        mark += reading.bytes;
        if (const auto at = mark.find(streamMark); at != mark.npos) {
            beginReading(mark.substr(at), arrival);
            return;
        }
        mark.erase(0, mark.size() - (mark.ends_with('$') ? 1 : 0));
        if (reading.gone)
            passOver(absl::StrFormat("%s cannot be read: it went away", path));
        else if (clock.continuousSeconds() < probeEnd)
            queue->post(later(&Reader::probe));
        else if (heard)
            passOver(absl::StrFormat("%s is no satellite receiver: it sent something else", path));
        else
            passOver(absl::StrFormat("%s is no satellite receiver: it sent nothing for %.1f s", path,
                                     probeTime.count()));
    }

    void passOver(const std::string& why) {
        line.reset();
        if (told.size() < mostReasonsKept && told.insert(why).second) {
            outbox->passedOver(why);
            tell();
        }
        queue->post(later(&Reader::openNext));
    }

    void beginReading(std::string_view bytes, base::Instant arrival) {
        fix = {};
        lines.clear();
        quiet = Seconds{0};
        backlog = false;
        lastReadEnd = clock.continuousSeconds();
        outbox->connection(true);
        tell();
        take(bytes, arrival);
        queue->post(later(&Reader::readOn));
    }

    void readOn() {
        const auto reading = line->read(readLimit);
        const base::Instant arrival = clock.now(); // before anything else, as time is measured by it
        const double now = clock.continuousSeconds();
        const Seconds passed{now - std::exchange(lastReadEnd, now)};

        backlog = backlog || passed > pauseThatAges;
        take(reading.bytes, backlog ? std::nullopt : std::optional(arrival));
        backlog = backlog && reading.bytes.size() >= fullReading;

        // A night's sleep of the machine counts little: the receiver may be as awake as ever.
        quiet = reading.bytes.empty() ? quiet + std::min(passed, Seconds{1}) : Seconds{0};
        if (!reading.gone && quiet <= quietLimit) {
            queue->post(later(&Reader::readOn));
            return;
        }
        line.reset();
        outbox->connection(false);
        tell();
        beginRound();
    }

    void take(std::string_view bytes, std::optional<base::Instant> arrival) {
        lines.feed(bytes, [&](std::string_view sentence) {
            // Only a time that is in this very sentence belongs to its arrival.
            const auto before = std::exchange(fix.utc, std::nullopt);
            const bool understood = NMEA::apply(sentence, fix);
            const bool timed = fix.utc.has_value();
            if (!timed)
                fix.utc = before;
            if (understood) {
                outbox->update(fix, timed ? arrival : std::nullopt);
                tell();
            }
        });
    }

    void tell() {
        if (outbox->takeTurn())
            loop.post(deliver);
    }

    ports::SerialPorts& serialPorts;
    ports::WorkQueues& queues;
    ports::MainLoop& loop;
    const ports::Clock& clock;
    std::shared_ptr<ports::WorkQueue> queue; // none before the start
    const std::shared_ptr<Outbox> outbox = std::make_shared<Outbox>();
    std::function<void()> deliver;

    std::vector<std::string> candidates; // of this round, the next one last
    std::set<std::string> told;
    std::string path;
    std::unique_ptr<ports::SerialLine> line;

    bool heard = false;
    std::string mark; // the end of what was heard, as the mark may be cut in two
    double probeEnd = 0;

    SentenceLines lines;
    GPSFix fix;
    Seconds quiet{0};
    double lastReadEnd = 0;
    bool backlog = false;
};

GPSReceiver::GPSReceiver(ports::SerialPorts& serialPorts, ports::WorkQueues& queues, ports::MainLoop& loop,
                         const ports::Clock& clock)
    : reader_(std::make_shared<Reader>(serialPorts, queues, loop, clock)) {
}

GPSReceiver::~GPSReceiver() = default;

void GPSReceiver::start(Listener listener) {
    if (listener_)
        return;
    listener_ = std::make_shared<const Listener>(std::move(listener));
    reader_->start(listener_);
}

} // namespace zenka::gps
