#include "platform/CanberraSounds.h"

#include <canberra.h>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace zenka::platform {

namespace {

/// An alarm sounds every second; a sound that waits longer than these comes too late to be of use.
constexpr std::size_t mostWaiting = 8;

std::string faultOf(int code, const std::string& name) {
    switch (code) {
    case CA_ERROR_NOTFOUND: return "the desktop has no sound named \"" + name + "\"";
    case CA_ERROR_NODRIVER:
    case CA_ERROR_NOTAVAILABLE:
    case CA_ERROR_DISCONNECTED: return "no sound server answers";
    case CA_ERROR_DISABLED: return "the desktop's alert sounds are turned off";
    default: return std::string("the sound library says: ") + ca_strerror(code);
    }
}

struct Sound {
    std::uint64_t number = 0;
    std::string name;
};

using Context = std::unique_ptr<ca_context, int (*)(ca_context*)>;

Context newContext() {
    ca_context* made = nullptr;
    if (ca_context_create(&made) == CA_SUCCESS)
        ca_context_change_props(made, CA_PROP_APPLICATION_NAME, "Zenka", CA_PROP_APPLICATION_ID, "zenka",
                                CA_PROP_MEDIA_ROLE, "event", nullptr);
    return {made, ca_context_destroy};
}

} // namespace

/// What the main thread, the desk's and the library's share.
struct CanberraSounds::Desk : std::enable_shared_from_this<Desk> {
    /// Hears how a sound ended, on any thread.
    using Ended = std::function<void(const Sound&, int code)>;

    explicit Desk(Ended told) : ended(std::move(told)) {}

    void serve() {
        Context context = newContext();
        std::unique_lock lock(mutex);
        for (;;) {
            changed.wait(lock, [this] { return closing || !waiting.empty(); });
            if (closing)
                break;
            const Sound sound = std::move(waiting.front());
            waiting.pop_front();
            lock.unlock();
            int code = give(context.get(), sound);
            if (code != CA_SUCCESS && code != CA_ERROR_NOTFOUND) {
                // a context does not come back once its sound server has gone
                context = newContext();
                code = give(context.get(), sound);
            }
            if (code != CA_SUCCESS)
                tell(sound, code);
            lock.lock();
        }
        lock.unlock();
    }

    void tell(const Sound& sound, int code) {
        const std::lock_guard lock(mutex);
        if (!closing)
            ended(sound, code);
    }

    const Ended ended;
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Sound> waiting;
    bool closing = false;

private:
    struct Playing {
        std::shared_ptr<Desk> desk;
        Sound sound;
    };

    /// Has the library play a sound, which calls back once if it took it.
    int give(ca_context* context, const Sound& sound) {
        if (!context)
            return CA_ERROR_NODRIVER;
        ca_proplist* properties = nullptr;
        if (const int code = ca_proplist_create(&properties); code != CA_SUCCESS)
            return code;
        ca_proplist_sets(properties, CA_PROP_EVENT_ID, sound.name.c_str());
        ca_proplist_sets(properties, CA_PROP_EVENT_DESCRIPTION, "Zenka's alarm");
        auto playing = std::make_unique<Playing>(Playing{.desk = shared_from_this(), .sound = sound});
        const int code = ca_context_play_full(context, static_cast<std::uint32_t>(sound.number), properties,
                                              over, playing.get());
        ca_proplist_destroy(properties);
        if (code == CA_SUCCESS)
            static_cast<void>(playing.release()); // over() takes it back
        return code;
    }

    static void over(ca_context*, std::uint32_t, int code, void* data) {
        const std::unique_ptr<Playing> playing(static_cast<Playing*>(data));
        playing->desk->tell(playing->sound, code);
    }
};

CanberraSounds::CanberraSounds(ports::MainLoop& loop)
    : desk_(std::make_shared<Desk>([&loop, ended = lifeline_.guard([this](const Sound& sound, int code) {
          auto node = playing_.extract(sound.number);
          if (!node.empty() && node.mapped() && code != CA_SUCCESS)
              node.mapped()(faultOf(code, sound.name));
      })](const Sound& sound, int code) { loop.post([ended, sound, code] { ended(sound, code); }); })),
      thread_([desk = desk_] { desk->serve(); }) {
}

CanberraSounds::~CanberraSounds() {
    const std::lock_guard lock(desk_->mutex);
    desk_->closing = true;
    desk_->changed.notify_all();
}

void CanberraSounds::play(const std::string& name, Failed failed) {
    playing_[++lastNumber_] = std::move(failed);
    const Sound sound{.number = lastNumber_, .name = name};
    const std::lock_guard lock(desk_->mutex);
    if (desk_->waiting.size() >= mostWaiting) {
        desk_->ended(sound, CA_ERROR_NOTAVAILABLE);
        return;
    }
    desk_->waiting.push_back(sound);
    desk_->changed.notify_all();
}

} // namespace zenka::platform
