#include "services/TelemetrySpool.h"

#include "base/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace zenka::services {

namespace {

using Json = nlohmann::json;

constexpr std::size_t longestId = 64;
/// What makes room makes some more, so that a full spool is not written anew for each event.
constexpr std::size_t roomLeft = TelemetrySpool::mostBytes / 5;

/// Ids become names of files.
bool isId(const std::string& text) {
    return !text.empty() && text.size() <= longestId &&
           text.find_first_not_of("0123456789abcdefABCDEF-") == std::string::npos;
}

std::string lineOf(const TelemetrySpool::Record& record) {
    return "{\"id\":\"" + record.id + "\",\"body\":" + record.body + "}\n";
}

std::optional<TelemetrySpool::Record> recordIn(std::string_view line) {
    const Json object = Json::parse(line, nullptr, false);
    if (!object.is_object())
        return std::nullopt;
    const auto id = object.find("id");
    const auto body = object.find("body");
    if (id == object.end() || !id->is_string() || body == object.end() || !body->is_object())
        return std::nullopt;
    TelemetrySpool::Record record{.id = id->get<std::string>(), .body = body->dump()};
    return isId(record.id) ? std::optional(std::move(record)) : std::nullopt;
}

} // namespace

bool TelemetrySpool::append(const Record& record) {
    std::string line = lineOf(record);
    if (!isId(record.id) || line.size() > mostBytes - roomLeft || !makeRoom(line.size()))
        return false;
    if (endsCut_)
        line.insert(line.begin(), '\n');
    const auto file = files_.openForAppending(spool_);
    if (!file || !file->append(line)) {
        size_.reset(); // a piece of it may have been written
        return false;
    }
    size_ = size_.value_or(0) + line.size(); // makeRoom() has learnt it
    endsCut_ = false;
    return true;
}

bool TelemetrySpool::makeRoom(std::size_t bytes) {
    if (!size_) {
        const std::string content = files_.read(spool_).value_or("");
        size_ = content.size();
        endsCut_ = !content.empty() && !content.ends_with('\n');
    }
    std::size_t size = *size_ + bytes + 1;
    if (size <= mostBytes)
        return true;
    auto records = load().records;
    size = bytes;
    // From the newest back, as many as leave some room.
    auto first = records.end();
    while (first != records.begin()) {
        size += lineOf(*std::prev(first)).size();
        if (size > mostBytes - roomLeft)
            break;
        --first;
    }
    records.erase(records.begin(), first);
    return rewrite(records);
}

std::vector<TelemetrySpool::Record> TelemetrySpool::read() {
    Content content = load();
    if (content.damaged)
        rewrite(content.records);
    return std::move(content.records);
}

TelemetrySpool::Content TelemetrySpool::load() {
    Content content;
    const std::string text = files_.read(spool_).value_or("");
    std::set<std::string> ids;
    for (const std::string_view line : base::splitPieces(text, '\n')) {
        auto record = recordIn(line);
        if (record && ids.insert(record->id).second)
            content.records.push_back(std::move(*record));
        else
            content.damaged = true;
    }
    return content;
}

bool TelemetrySpool::rewrite(const std::vector<Record>& records) {
    std::string text;
    for (const Record& record : records)
        text += lineOf(record);
    size_.reset();
    if (records.empty()) // which a full disk does not keep from being done
        files_.remove(spool_);
    else if (!files_.writeAtomically(spool_, text))
        return false;
    size_ = text.size();
    endsCut_ = false;
    return true;
}

bool TelemetrySpool::remove(const std::set<std::string>& ids) {
    Content content = load();
    const auto gone =
        std::erase_if(content.records, [&](const Record& each) { return ids.contains(each.id); });
    if ((gone > 0 || content.damaged) && !rewrite(content.records))
        return false;
    for (const std::string& id : ids)
        takeIn(id);
    return true;
}

void TelemetrySpool::clear() {
    files_.remove(spool_);
    size_.reset();
    tidyOutbox({});
}

void TelemetrySpool::putOut(const Record& record) {
    takeIn(record.id);
    if (const auto file = files_.openForAppending(outFile(record.id)))
        file->append(record.body);
}

void TelemetrySpool::tidyOutbox(const std::set<std::string>& onTheirWay) {
    for (const std::string& name : files_.namesIn(outbox_))
        if (!onTheirWay.contains(std::filesystem::path(name).stem()))
            files_.remove(outbox_ / name);
}

} // namespace zenka::services
