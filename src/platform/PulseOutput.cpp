#include "platform/PulseOutput.h"

#include <mutex>
#include <pulse/pulseaudio.h>
#include <string_view>

namespace zenka::platform {

namespace {

constexpr pa_usec_t retry = 2 * PA_USEC_PER_SEC;

ports::AudioState unknown(const char* fault) {
    return {.muted = std::nullopt, .volume = std::nullopt, .fault = fault};
}

} // namespace

/// Everything but the state belongs to the library's thread, or is behind its lock.
class PulseOutput::Listener {
public:
    explicit Listener(std::string server) : server_(std::move(server)), loop_(pa_threaded_mainloop_new()) {
        if (!loop_ || pa_threaded_mainloop_start(loop_) != 0) {
            publish(unknown("the sound library does not start"));
            return;
        }
        pa_threaded_mainloop_lock(loop_);
        connect();
        pa_threaded_mainloop_unlock(loop_);
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener() {
        if (!loop_)
            return;
        pa_threaded_mainloop_lock(loop_);
        dropContext();
        if (timer_)
            pa_threaded_mainloop_get_api(loop_)->time_free(timer_);
        pa_threaded_mainloop_unlock(loop_);
        pa_threaded_mainloop_stop(loop_);
        pa_threaded_mainloop_free(loop_);
    }

    ports::AudioState state() const {
        const std::lock_guard lock(mutex_);
        return state_;
    }

private:
    static Listener& of(void* data) { return *static_cast<Listener*>(data); }

    void publish(const ports::AudioState& state) {
        const std::lock_guard lock(mutex_);
        state_ = state;
    }

    void connect() {
        dropContext();
        context_ = pa_context_new(pa_threaded_mainloop_get_api(loop_), "Zenka");
        if (!context_) {
            lost();
            return;
        }
        pa_context_set_state_callback(
            context_, [](pa_context*, void* data) { of(data).contextChanged(); }, this);
        pa_context_set_subscribe_callback(
            context_,
            [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* data) { of(data).ask(); },
            this);
        if (pa_context_connect(context_, server_.empty() ? nullptr : server_.c_str(), PA_CONTEXT_NOAUTOSPAWN,
                               nullptr) < 0)
            lost();
    }

    void dropContext() {
        if (!context_)
            return;
        pa_context_set_state_callback(context_, nullptr, nullptr);
        pa_context_set_subscribe_callback(context_, nullptr, nullptr);
        pa_context_disconnect(context_);
        pa_context_unref(context_);
        context_ = nullptr;
    }

    void contextChanged() {
        switch (pa_context_get_state(context_)) {
        case PA_CONTEXT_READY:
            forget(pa_context_subscribe(
                context_,
                static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SERVER),
                nullptr, nullptr));
            ask();
            break;
        case PA_CONTEXT_FAILED:
        case PA_CONTEXT_TERMINATED: lost(); break;
        default: break;
        }
    }

    void lost() {
        publish(unknown("no sound server answers"));
        // not at once: a context may not be dropped within its own callback
        if (!timer_ && context_)
            timer_ = pa_context_rttime_new(
                context_, pa_rtclock_now() + retry,
                [](pa_mainloop_api* api, pa_time_event* timer, const timeval*, void* data) {
                    api->time_free(timer);
                    of(data).timer_ = nullptr;
                    of(data).connect();
                },
                this);
    }

    void ask() {
        forget(pa_context_get_sink_info_by_name(
            context_, "@DEFAULT_SINK@",
            [](pa_context*, const pa_sink_info* sink, int end, void* data) { of(data).answered(sink, end); },
            this));
    }

    void answered(const pa_sink_info* sink, int end) {
        // an answer without a sink means that none is there; one with is followed by an end
        if (end < 0)
            publish(unknown("there is no sound output"));
        if (!sink)
            return;
        // stands in where no hardware is
        if (std::string_view(sink->name) == "auto_null") {
            publish(unknown("there is no sound output"));
            return;
        }
        publish(
            {.muted = sink->mute != 0,
             .volume = static_cast<float>(pa_cvolume_max(&sink->volume)) / static_cast<float>(PA_VOLUME_NORM),
             .fault = {}});
    }

    static void forget(pa_operation* operation) {
        if (operation)
            pa_operation_unref(operation);
    }

    const std::string server_;
    pa_threaded_mainloop* loop_ = nullptr;
    pa_context* context_ = nullptr;
    pa_time_event* timer_ = nullptr;
    mutable std::mutex mutex_;
    ports::AudioState state_; // not known until the server answers, and no fault
};

PulseOutput::PulseOutput(const std::string& server) : listener_(std::make_unique<Listener>(server)) {
}

PulseOutput::~PulseOutput() = default;

ports::AudioState PulseOutput::state() const {
    return listener_->state();
}

} // namespace zenka::platform
