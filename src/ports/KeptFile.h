#pragma once

#include "base/Lifeline.h"
#include "ports/Files.h"
#include "ports/MainLoop.h"
#include "ports/WorkQueues.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zenka::ports {

/// A file in which the program keeps something of the user's from one session to the next. What the disk does
/// to it is told in sentences. Main thread.
class KeptFile {
public:
    struct Means {
        Files& files;
        MainLoop& loop;
        WorkQueues& queues;
        std::function<void(const std::string& sentence)> tell; ///< main thread
    };

    /// What is in it stands at the beginning of sentences: "The saved sites". The queue's name is for
    /// debuggers.
    KeptFile(Means means, std::filesystem::path file, std::string what, const std::string& queueName);

    /// The text; nothing where there is no file. Waits for the disk, for start-up. A file that is there and
    /// cannot be read is left alone from then on: saving would put what little is known in the place of all
    /// of it.
    std::optional<std::string> load();

    /// Keeps a text that made no sense beside the file, under the name with ".damaged". Waits for the disk.
    bool keepDamaged(const std::string& text);

    /// Puts another text in the file, in the order of the calls; does not wait for it.
    void save(std::string text);

private:
    void tellOnce(bool& told, const std::string& words);

    const Means means_;
    const std::filesystem::path file_;
    const std::string what_;
    const std::shared_ptr<WorkQueue> queue_;
    bool unread_ = false;     ///< it is there, and was not given
    bool toldUnread_ = false; ///< that nothing is saved for it
    bool toldWrite_ = false;
    base::Lifeline lifeline_;
};

} // namespace zenka::ports
