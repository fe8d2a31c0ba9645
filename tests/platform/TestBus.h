#pragma once

#include "platform/ChildJobs.h"

#include <QTemporaryDir>
#include <QVariant>

#include <memory>
#include <string>
#include <vector>

namespace zenka::test {

/// A message bus of the test's own, and services on it played by python-dbusmock. The bus serves as
/// system and as session bus.
class TestBus {
public:
    TestBus();
    ~TestBus();

    const std::string& address() const { return address_; }

    /// Starts a mock with the arguments of `python3 -m dbusmock` and waits for its name on the bus.
    void addService(const std::string& name, const std::vector<std::string>& arguments);

    /// Makes the mock of the session bus's screen saver; inhibitCode is its Inhibit in Python.
    void addScreenSaver(const std::string& inhibitCode);
    void addLogind();

    /// A call from outside, of a service whose path and interface are its name's.
    QList<QVariant> call(const std::string& service, const std::string& interface, const std::string& method,
                         const QList<QVariant>& arguments = {});
    void addMethod(const std::string& service, const std::string& method, const std::string& in,
                   const std::string& out, const std::string& code);

    /// The calls that a mock got, as "Method argument argument".
    std::vector<std::string> calls(const std::string& service);

    /// logind's inhibitors, as "what who why mode".
    std::vector<std::string> inhibitors();

private:
    QTemporaryDir folder_;
    std::string address_;
    std::unique_ptr<Child> daemon_;
    std::vector<std::unique_ptr<Child>> services_;
};

/// A bus that takes every connection and never says a word.
class SilentBus {
public:
    SilentBus();
    SilentBus(const SilentBus&) = delete;
    SilentBus& operator=(const SilentBus&) = delete;
    ~SilentBus();
    std::string address() const;

private:
    QTemporaryDir folder_;
    int socket_ = -1;
};

} // namespace zenka::test
