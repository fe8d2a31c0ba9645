#include "ports/KeptFile.h"

#include <utility>

namespace zenka::ports {

KeptFile::KeptFile(Means means, std::filesystem::path file, std::string what, const std::string& queueName)
    : means_(std::move(means)), file_(std::move(file)), what_(std::move(what)),
      queue_(means_.queues.serial(queueName)) {
}

std::optional<std::string> KeptFile::load() {
    auto text = means_.files.read(file_);
    unread_ = !text && means_.files.exists(file_);
    if (unread_)
        means_.tell(
            what_ + " cannot be read: the disk does not give " + file_.filename().string() +
            ". It is left as it is, so nothing new is kept in it; start Zenka again when the disk is well.");
    return text;
}

bool KeptFile::keepDamaged(const std::string& text) {
    return means_.files.writeAtomically(file_.string() + ".damaged", text);
}

void KeptFile::save(std::string text) {
    if (unread_)
        return tellOnce(toldUnread_,
                        " cannot be kept, for the ones before could not be read. What you change holds "
                        "until Zenka ends.");
    const auto arrive = lifeline_.guard([this](bool written) {
        if (written)
            toldWrite_ = false;
        else
            tellOnce(toldWrite_, " could not be written to " + file_.filename().string() +
                                     ": the disk may be full. What you changed holds until Zenka ends.");
    });
    queue_->post([&files = means_.files, &loop = means_.loop, file = file_, text = std::move(text), arrive] {
        loop.post([arrive, written = files.writeAtomically(file, text)] { arrive(written); });
    });
}

void KeptFile::tellOnce(bool& told, const std::string& words) {
    if (!std::exchange(told, true))
        means_.tell(what_ + words);
}

} // namespace zenka::ports
