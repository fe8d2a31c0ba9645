#include "platform/QtSettings.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "platform/Descriptor.h"
#include "platform/LinuxClock.h"
#include "platform/LinuxFolders.h"

#include <QFile>
#include <QSettings>

#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <tuple>

namespace zenka::platform {

namespace {

namespace fs = std::filesystem;

constexpr base::Seconds gathering{0.05};

QString nameOf(const fs::path& path) {
    return QFile::decodeName(QByteArray::fromStdString(path.string()));
}

/// A hand-written value with commas reads as a list; the list is put together again.
std::string textOf(const QVariant& value) {
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", ")).toStdString();
    return value.toString().toStdString();
}

fs::path usualFile() {
    return LinuxFolders::base("XDG_CONFIG_HOME", ".config") / "ZenkaRig" / "zenka.conf";
}

/// The file holds places and tokens. Qt would make one that all can read, but keeps the rights of one there.
void keepFromOthers(const fs::path& file) {
    std::error_code fault;
    if (fs::create_directories(file.parent_path(), fault))
        ::chmod(file.parent_path().c_str(), 0700);
    struct stat status {};
    const Descriptor handle(
        ::open(file.c_str(), O_RDONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600));
    if (handle && ::fstat(handle.get(), &status) == 0 && S_ISREG(status.st_mode))
        std::ignore = ::fchmod(handle.get(), status.st_mode & 0700);
}

} // namespace

/// The changes on their way to the disk. Shared with the queue's work, which may outlive the settings.
class QtSettings::Writer {
public:
    using Changes = std::map<std::string, std::optional<std::string>>;

    explicit Writer(const fs::path& file) : file_(nameOf(file)) {}

    /// True when the first of a burst was added, for which a write must be asked for.
    bool add(const std::string& key, std::optional<std::string> value) {
        const std::lock_guard lock(mutex_);
        changes_[key] = std::move(value);
        return !std::exchange(asked_, true);
    }

    /// On the queue.
    void write() {
        Changes changes;
        {
            const std::lock_guard lock(mutex_);
            changes.swap(changes_);
            asked_ = false;
        }
        if (changes.empty())
            return;
        keepFromOthers(QFile::encodeName(file_).toStdString());
        QSettings settings(file_, QSettings::IniFormat);
        for (const auto& [key, value] : changes) {
            if (value)
                settings.setValue(QString::fromStdString(key), QString::fromStdString(*value));
            else
                settings.remove(QString::fromStdString(key));
        }
        settings.sync();
        if (settings.status() == QSettings::AccessError) {
            const std::lock_guard lock(mutex_);
            changes_.merge(changes); // newer changes of the same keys stay
        }
    }

    bool idle() const {
        const std::lock_guard lock(mutex_);
        return changes_.empty();
    }

private:
    const QString file_;
    mutable std::mutex mutex_;
    Changes changes_;
    bool asked_ = false;
};

QtSettings::QtSettings(ports::WorkQueues& queues) : QtSettings(queues, usualFile()) {
}

QtSettings::QtSettings(ports::WorkQueues& queues, const fs::path& file)
    : writer_(std::make_shared<Writer>(file)), queue_(queues.serial("zenka.settings")) {
    load(file);
}

QtSettings::~QtSettings() {
    flush(base::Seconds(5));
}

void QtSettings::load(const fs::path& file) {
    std::error_code fault;
    if (!fs::exists(file, fault))
        return;
    const QSettings settings(nameOf(file), QSettings::IniFormat);
    for (const QString& key : settings.allKeys())
        if (!key.isEmpty()) // of a line that begins with "="; it could not be written again
            values_[key.toStdString()] = textOf(settings.value(key));
    if (settings.status() == QSettings::NoError)
        return;
    if (settings.status() == QSettings::AccessError) {
        damage_ = "The settings in " + file.string() + " cannot be read.";
        return;
    }
    const fs::path copy = file.string() + base::formatTime(".damaged-%Y%m%d-%H%M%S", LinuxClock().now(),
                                                           base::machineTimeZone());
    const bool copied = fs::copy_file(file, copy, fs::copy_options::overwrite_existing, fault);
    damage_ = "The settings in " + file.string() + " are damaged; what could be read is used." +
              (copied ? " The damaged file is kept as " + copy.filename().string() + "." : std::string());
    // the file is made whole at once, or each start would find the damage again
    for (const auto& [key, value] : values_)
        change(key, value);
}

void QtSettings::letEnvironmentRule(const std::string& key) {
    std::string variable;
    for (const char c : key) {
        if (c >= 'A' && c <= 'Z')
            variable += '_';
        variable += c == '.' ? '_' : static_cast<char>(QChar::toUpper(static_cast<char32_t>(c)));
    }
    if (const char* value = std::getenv(variable.c_str()))
        ruling_[key] = value;
}

std::optional<std::string> QtSettings::text(const std::string& key) const {
    if (const auto ruling = ruling_.find(key); ruling != ruling_.end())
        return ruling->second;
    const auto found = values_.find(key);
    return found == values_.end() ? std::nullopt : std::optional(found->second);
}

void QtSettings::setText(const std::string& key, const std::string& value) {
    change(key, value);
}

std::optional<double> QtSettings::number(const std::string& key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? std::nullopt : base::readNumber(found->second);
}

void QtSettings::setNumber(const std::string& key, double value) {
    change(key, base::plainNumber(value));
}

std::optional<bool> QtSettings::flag(const std::string& key) const {
    const auto found = values_.find(key);
    if (found == values_.end() || (found->second != "true" && found->second != "false"))
        return std::nullopt;
    return found->second == "true";
}

void QtSettings::setFlag(const std::string& key, bool value) {
    change(key, value ? "true" : "false");
}

void QtSettings::remove(const std::string& key) {
    change(key, std::nullopt);
}

std::vector<std::string> QtSettings::keysBeginningWith(const std::string& prefix) const {
    return base::keysBeginningWith(values_, prefix);
}

bool QtSettings::flush(base::Seconds limit) {
    queue_->post([writer = writer_] { writer->write(); });
    return queue_->drain(limit) && writer_->idle();
}

void QtSettings::change(const std::string& key, std::optional<std::string> value) {
    if (value)
        values_[key] = *value;
    else
        values_.erase(key);
    if (writer_->add(key, std::move(value)))
        queue_->postAfter(gathering, [writer = writer_] { writer->write(); });
}

} // namespace zenka::platform
