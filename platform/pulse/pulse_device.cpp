#include "platform/pulse/pulse_device.h"

#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>

namespace zv {
namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t channels = 2;
constexpr std::size_t frameBytes = channels * sizeof(float);
// What the server keeps, in halves of a period, and what it asks for at a time. It halves what is left after
// two requests with the output itself: with nothing left it would wake up 2,000 times a second.
constexpr std::uint32_t bufferedHalves = 5;
constexpr std::uint32_t requestedHalves = 1;
// While the client rests the server asks for so much silence at a time. What it keeps is longer by two of
// them, so that the output itself stays as short as ever.
constexpr std::uint32_t restsInSecond = 2;
constexpr auto openLimit = 2s;
constexpr pa_usec_t soon = 20 * PA_USEC_PER_MSEC;
constexpr pa_usec_t later = 500 * PA_USEC_PER_MSEC;
constexpr pa_usec_t standstill = 1500 * PA_USEC_PER_MSEC;  // a rest asks more often
constexpr int audioPriority = 10;
constexpr auto unset = static_cast<std::uint32_t>(-1);

timeval inMicroseconds(pa_usec_t microseconds) {
    timeval when{};
    pa_gettimeofday(&when);
    return *pa_timeval_add(&when, microseconds);
}

/// Refused without the right to it; the sound then runs at the usual priority.
void raisePriority() {
    sched_param parameters{};
    parameters.sched_priority = audioPriority;
    pthread_setschedparam(pthread_self(), SCHED_RR, &parameters);
}

}  // namespace

PulseDevice::PulseDevice(const PulseOptions& options, Direction direction, std::string id, std::uint32_t rate,
                         engine::SoundClient& client)
    : options_(options),
      direction_(direction),
      id_(std::move(id)),
      rate_(rate),
      client_(&client),
      thrownAway_(std::size_t{options.periodFrames} * channels),
      silence_(std::size_t{options.periodFrames} * channels),
      first_(std::size_t{options.periodFrames} * channels) {}

PulseDevice::~PulseDevice() {
    if (!loop_) return;
    pa_threaded_mainloop_lock(loop_);
    if (wakeEvent_) api_->io_free(wakeEvent_);
    if (retryTimer_) api_->time_free(retryTimer_);
    if (paceTimer_) api_->time_free(paceTimer_);
    dropStream();
    dropContext();
    pa_threaded_mainloop_unlock(loop_);
    pa_threaded_mainloop_stop(loop_);
    pa_threaded_mainloop_free(loop_);
    if (wakeFile_ >= 0) close(wakeFile_);
}

bool PulseDevice::open() {
    loop_ = pa_threaded_mainloop_new();
    if (!loop_) return false;
    api_ = pa_threaded_mainloop_get_api(loop_);
    wakeFile_ = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (direction_ == Direction::Output && wakeFile_ >= 0)
        wakeEvent_ = api_->io_new(
            api_, wakeFile_, PA_IO_EVENT_INPUT,
            [](pa_mainloop_api*, pa_io_event*, int file, pa_io_event_flags_t, void* self) {
                eventfd_t times = 0;
                eventfd_read(file, &times);
                static_cast<PulseDevice*>(self)->woken();
            },
            this);
    if (!connectContext() || pa_threaded_mainloop_start(loop_) < 0) return false;
    std::unique_lock lock(openMutex_);
    opened_.wait_for(lock, openLimit, [&] { return openState_ != State::Opening; });
    return openState_ == State::Running;
}

void PulseDevice::settle(State state) {
    const bool opening = state_ == State::Opening;
    state_ = state;
    if (!opening) return;
    const std::lock_guard lock(openMutex_);
    openState_ = state;
    opened_.notify_all();
}

bool PulseDevice::connectContext() {
    context_ = pa_context_new(api_, "Zentrova");
    if (!context_) return false;
    pa_context_set_state_callback(context_, &PulseDevice::onContextState, this);
    pa_context_set_subscribe_callback(context_, &PulseDevice::onChange, this);
    const char* server = options_.server.empty() ? nullptr : options_.server.c_str();
    return pa_context_connect(context_, server, PA_CONTEXT_NOAUTOSPAWN, nullptr) >= 0;
}

void PulseDevice::dropStream() {
    if (!stream_) return;
    pa_stream_set_state_callback(stream_, nullptr, nullptr);
    pa_stream_set_write_callback(stream_, nullptr, nullptr);
    pa_stream_set_read_callback(stream_, nullptr, nullptr);
    pa_stream_set_underflow_callback(stream_, nullptr, nullptr);
    pa_stream_set_suspended_callback(stream_, nullptr, nullptr);
    pa_stream_disconnect(stream_);
    pa_stream_unref(stream_);
    stream_ = nullptr;
}

void PulseDevice::dropContext() {
    if (!context_) return;
    pa_context_set_state_callback(context_, nullptr, nullptr);
    pa_context_set_subscribe_callback(context_, nullptr, nullptr);
    pa_context_disconnect(context_);
    pa_context_unref(context_);
    context_ = nullptr;
}

void PulseDevice::onContextState(pa_context* context, void* self) {
    auto& device = *static_cast<PulseDevice*>(self);
    switch (pa_context_get_state(context)) {
        case PA_CONTEXT_READY: {
            raisePriority();
            const auto wanted = device.direction_ == Direction::Output ? PA_SUBSCRIPTION_MASK_SINK
                                                                       : PA_SUBSCRIPTION_MASK_SOURCE;
            if (pa_operation* operation = pa_context_subscribe(context, wanted, nullptr, nullptr))
                pa_operation_unref(operation);
            device.lookForDevice();
            break;
        }
        case PA_CONTEXT_FAILED:
        case PA_CONTEXT_TERMINATED:
            device.streamGone();
            break;
        default:
            break;
    }
}

void PulseDevice::onChange(pa_context*, pa_subscription_event_type_t event, std::uint32_t, void* self) {
    auto& device = *static_cast<PulseDevice*>(self);
    const bool isNew = (event & PA_SUBSCRIPTION_EVENT_TYPE_MASK) == PA_SUBSCRIPTION_EVENT_NEW;
    if (isNew && device.state_ == State::Lost) device.retryIn(soon);
}

/// Asks whether the device is there before a stream is opened on it: some servers would take another one.
void PulseDevice::lookForDevice() {
    if (id_.empty()) {
        openStream();
        return;
    }
    pa_operation* operation = nullptr;
    if (direction_ == Direction::Output) {
        operation = pa_context_get_sink_info_by_name(
            context_, id_.c_str(),
            [](pa_context*, const pa_sink_info* info, int end, void* self) {
                auto& device = *static_cast<PulseDevice*>(self);
                if (info) device.openStream();
                if (end < 0) device.streamGone();
            },
            this);
    } else {
        operation = pa_context_get_source_info_by_name(
            context_, id_.c_str(),
            [](pa_context*, const pa_source_info* info, int end, void* self) {
                auto& device = *static_cast<PulseDevice*>(self);
                if (info) device.openStream();
                if (end < 0) device.streamGone();
            },
            this);
    }
    if (operation)
        pa_operation_unref(operation);
    else
        streamGone();
}

void PulseDevice::openStream() {
    dropStream();
    const pa_sample_spec format{PA_SAMPLE_FLOAT32NE, rate_, channels};
    stream_ =
        pa_stream_new(context_, direction_ == Direction::Output ? "On air" : "Microphone", &format, nullptr);
    if (!stream_) {
        streamGone();
        return;
    }
    pa_stream_set_state_callback(stream_, &PulseDevice::onStreamState, this);
    const char* name = id_.empty() ? nullptr : id_.c_str();
    const auto periodBytes = static_cast<std::uint32_t>(options_.periodFrames * frameBytes);
    // The stream stays where it was put: one that wanders to another card would be on air from the wrong
    // output.
    const auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);
    int result = 0;
    if (direction_ == Direction::Output) {
        pa_stream_set_write_callback(
            stream_,
            [](pa_stream*, std::size_t bytes, void* self) {
                static_cast<PulseDevice*>(self)->giveSound(bytes);
            },
            this);
        resting_ = 0;
        pa_stream_set_suspended_callback(
            stream_, [](pa_stream*, void* self) { static_cast<PulseDevice*>(self)->suspended(); }, this);
        pa_stream_set_underflow_callback(
            stream_, [](pa_stream*, void* self) { static_cast<PulseDevice*>(self)->client_->ranDry(); },
            this);
        const pa_buffer_attr buffer = queue(false);
        result = pa_stream_connect_playback(stream_, name, &buffer, flags, nullptr, nullptr);
    } else {
        pa_stream_set_read_callback(
            stream_,
            [](pa_stream*, std::size_t, void* self) { static_cast<PulseDevice*>(self)->takeSound(); }, this);
        const pa_buffer_attr buffer{unset, unset, unset, unset, periodBytes};
        result = pa_stream_connect_record(stream_, name, &buffer, flags);
    }
    if (result < 0) streamGone();
}

void PulseDevice::onStreamState(pa_stream* stream, void* self) {
    auto& device = *static_cast<PulseDevice*>(self);
    switch (pa_stream_get_state(stream)) {
        case PA_STREAM_READY:
            device.streamReady();
            break;
        case PA_STREAM_FAILED:
        case PA_STREAM_TERMINATED:
            device.streamGone();
            break;
        default:
            break;
    }
}

void PulseDevice::streamReady() {
    const bool back = state_ == State::Lost;
    settle(State::Running);
    if (paceTimer_) {
        api_->time_free(paceTimer_);
        paceTimer_ = nullptr;
    }
    servedAt_ = 0;
    stale_ = false;
    if (back) client_->deviceBack();
}

/// Whether the server asks, or gives, for the first time after it has stood still: a stream of before may play nothing
/// any more (PipeWire), or lag by as much. Then another one is opened in its place.
bool PulseDevice::outlivedStandstill() {
    if (stale_) return true;
    const pa_usec_t now = pa_rtclock_now();
    stale_ = servedAt_ != 0 && now - servedAt_ > standstill;
    servedAt_ = now;
    if (!stale_) return false;
    streamGone();
    retryIn(soon);
    return true;
}

void PulseDevice::streamGone() {
    if (state_ == State::Opening) {
        settle(State::Failed);
        return;
    }
    if (state_ == State::Failed) return;
    if (state_ == State::Running) {
        settle(State::Lost);
        client_->deviceLost();
        paceOn();
    }
    retryIn(later);
}

/// The server has put the output to sleep, or woken it: another program has the card, or somebody turned it off.
/// The stream stays.
void PulseDevice::suspended() {
    const bool asleep = pa_stream_is_suspended(stream_) > 0;
    if (asleep && state_ == State::Running) {
        settle(State::Lost);
        client_->deviceLost();
        paceOn();
    } else if (!asleep && state_ == State::Lost && pa_stream_get_state(stream_) == PA_STREAM_READY) {
        streamReady();
    }
}

void PulseDevice::retryIn(pa_usec_t microseconds) {
    const timeval when = inMicroseconds(microseconds);
    if (retryTimer_) {
        api_->time_restart(retryTimer_, &when);
        return;
    }
    retryTimer_ = api_->time_new(
        api_, &when,
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
            static_cast<PulseDevice*>(self)->retry();
        },
        this);
}

void PulseDevice::retry() {
    if (state_ != State::Lost) return;
    dropStream();
    if (context_ && pa_context_get_state(context_) == PA_CONTEXT_READY) {
        lookForDevice();
        return;
    }
    dropContext();
    if (!connectContext()) {
        dropContext();
        retryIn(later);
    }
}

/// While an output is away its client goes on being asked at the pace of a clock: the show does not stand
/// still.
void PulseDevice::paceOn() {
    if (direction_ != Direction::Output || paceTimer_) return;
    lostAt_ = pa_rtclock_now();
    pacedFrames_ = 0;
    const timeval now = inMicroseconds(0);
    paceTimer_ = api_->time_new(
        api_, &now,
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
            static_cast<PulseDevice*>(self)->pace();
        },
        this);
}

void PulseDevice::pace() {
    const std::uint64_t due = (pa_rtclock_now() - lostAt_) * rate_ / PA_USEC_PER_SEC;
    if (due > pacedFrames_ + rate_) pacedFrames_ = due - rate_;  // what a sleeping machine missed is gone
    for (; pacedFrames_ + options_.periodFrames <= due; pacedFrames_ += options_.periodFrames)
        client_->render(thrownAway_);
    // Another output drives meanwhile, so nobody waits for what this one is asked.
    const timeval next =
        inMicroseconds(client_->resting() ? soon : PA_USEC_PER_SEC * options_.periodFrames / rate_);
    api_->time_restart(paceTimer_, &next);
}

void PulseDevice::giveSound(std::size_t bytes) {
    if (outlivedStandstill()) return;
    if (resting_.load(std::memory_order_relaxed) != 0) {
        if (client_->resting()) {
            giveSilence(bytes);
        } else {
            woken();
        }
        return;
    }
    for (std::size_t frames = bytes / frameBytes; frames > 0;) {
        const std::size_t now = std::min<std::size_t>(frames, options_.periodFrames);
        if (!give(now, PA_SEEK_RELATIVE)) return;
        frames -= now;
    }
    if (client_->resting()) rest();
}

/// One period at most.
bool PulseDevice::give(std::size_t frames, pa_seek_mode_t where) {
    while (frames > 0) {
        void* room = nullptr;
        std::size_t roomBytes = frames * frameBytes;
        if (pa_stream_begin_write(stream_, &room, &roomBytes) < 0 || !room) return false;
        const std::size_t now = std::min(roomBytes / frameBytes, frames);
        if (now == 0) {
            pa_stream_cancel_write(stream_);
            return false;
        }
        client_->render({static_cast<float*>(room), now * channels});
        if (pa_stream_write(stream_, room, now * frameBytes, nullptr, 0, where) < 0) return false;
        where = PA_SEEK_RELATIVE;
        frames -= now;
    }
    return true;
}

// ---- rest
// ------------------------------------------------------------------------------------------------------
// While the client has nothing but silence a long stretch of it lies at the server, which asks for more now
// and then. The device goes on, so that it need not start first. An order puts sound in the place of what is
// left of the silence, so it is heard even sooner than behind a queue of periods.

pa_buffer_attr PulseDevice::queue(bool resting) const {
    const auto half = static_cast<std::uint32_t>(options_.periodFrames * frameBytes / 2);
    if (!resting) return {unset, bufferedHalves * half, 0, requestedHalves * half, unset};
    const auto ask = static_cast<std::uint32_t>(rate_ / restsInSecond * frameBytes);
    return {unset, (bufferedHalves - 2 * requestedHalves) * half + 2 * ask, 0, ask, unset};
}

void PulseDevice::askQueue(bool resting) {
    const pa_buffer_attr wanted = queue(resting);
    if (pa_operation* operation = pa_stream_set_buffer_attr(stream_, &wanted, nullptr, nullptr))
        pa_operation_unref(operation);
}

void PulseDevice::rest() {
    // Either wake() finds this, or what was ordered before it is seen here.
    resting_.exchange(1, std::memory_order_acq_rel);
    if (!wakeEvent_ || !client_->resting()) {
        resting_.store(0, std::memory_order_relaxed);
        return;
    }
    askQueue(true);
}

void PulseDevice::giveSilence(std::size_t bytes) {
    while (bytes >= frameBytes) {
        void* room = nullptr;
        std::size_t now = bytes;
        if (pa_stream_begin_write(stream_, &room, &now) < 0 || !room) return;
        now = std::min(now, bytes) / frameBytes * frameBytes;
        std::memset(room, 0, now);
        if (now == 0 || pa_stream_write(stream_, room, now, nullptr, 0, PA_SEEK_RELATIVE) < 0) return;
        bytes -= now;
    }
}

void PulseDevice::wake() {
    if (resting_.fetch_add(0, std::memory_order_acq_rel) != 0) eventfd_write(wakeFile_, 1);
}

void PulseDevice::woken() {
    if (resting_.load(std::memory_order_relaxed) == 0 || state_ != State::Running) return;
    client_->render(first_);
    // Orders were heard that make no sound.
    if (client_->resting()) return;
    resting_.store(0, std::memory_order_relaxed);
    askQueue(false);
    if (pa_stream_write(stream_, first_.data(), first_.size() * sizeof(float), nullptr, 0,
                        PA_SEEK_RELATIVE_ON_READ) < 0)
        return;
    give(options_.periodFrames / 2, PA_SEEK_RELATIVE);
}

void PulseDevice::takeSound() {
    if (outlivedStandstill()) return;
    const void* data = nullptr;
    std::size_t bytes = 0;
    while (pa_stream_readable_size(stream_) > 0) {
        if (pa_stream_peek(stream_, &data, &bytes) < 0 || bytes == 0) return;
        for (std::size_t done = 0; done + frameBytes <= bytes;) {
            const std::size_t now = std::min<std::size_t>((bytes - done) / frameBytes, options_.periodFrames);
            const auto* from = data ? reinterpret_cast<const float*>(static_cast<const char*>(data) + done)
                                    : silence_.data();
            client_->heard({from, now * channels});
            done += now * frameBytes;
        }
        pa_stream_drop(stream_);
    }
}

}  // namespace zv
