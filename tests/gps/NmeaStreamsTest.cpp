#include "platform/virtual/VirtualPorts.h"
#include "support/NmeaReplay.h"
#include "support/ScriptedSerial.h"

#include <gmock/gmock.h>

using namespace zenka;

TEST(NmeaStreams, eachStreamGivesItsFixesHoweverItsBytesArrive) {
    const auto streams = test::nmeaStreams();
    ASSERT_GE(streams.size(), 9U);
    for (const auto& stream : streams) {
        for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, std::size_t{4096}}) {
            SCOPED_TRACE(stream.name + " in pieces of " + std::to_string(piece));
            platform::VirtualTime time{base::Instant{1786554000}};
            platform::VirtualWorkQueues queues{time};
            test::InlineLoop loop;
            test::ScriptedSerial serial{time};
            serial.plug("/dev/ttyUSB0");
            gps::GPSReceiver receiver(serial, queues, loop, time);
            std::vector<std::string> fixes;
            receiver.start({.onUpdate =
                                [&](const gps::GPSFix& fix, std::optional<base::Instant> wall) {
                                    fixes.push_back(test::fixLine(fix, wall.has_value()));
                                },
                            .onConnectionChange = {},
                            .onPassedOver = {}});
            double due = time.continuousSeconds() + 0.01;
            for (std::size_t at = 0; at < stream.bytes.size(); at += piece, due += 0.001)
                time.at(due, platform::VirtualTime::Lane::other, [&serial, &stream, at, piece] {
                    serial.send("/dev/ttyUSB0", stream.bytes.substr(at, piece));
                });
            time.runFor(base::Seconds{7});
            EXPECT_EQ(fixes, stream.fixes);
        }
    }
}
