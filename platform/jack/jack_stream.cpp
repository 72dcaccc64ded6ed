#include "platform/jack/jack_stream.h"

#include <algorithm>
#include <chrono>
#include <csignal>

#include "platform/common/jack_turn.h"

namespace zv {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kChunk = 1024;  ///< frames handed to the client in one go
constexpr auto kLookAgain = 500ms;
constexpr auto kShutdownSeen = 50ms;  ///< a server that goes is noticed within this time
constexpr auto kClosingLimit = 1s;

void silent(const char*) {}

}  // namespace

jack_client_t* openJackClient(const char* name) {
    // The library writes to the socket of a server that has just died.
    static const auto before = std::signal(SIGPIPE, SIG_IGN);
    static_cast<void>(before);
    jack_set_error_function(silent);
    jack_set_info_function(silent);
    const auto turn = jackTurn();
    return turn ? jack_client_open(name, JackNoStartServer, nullptr) : nullptr;
}

void closeJackClient(jack_client_t* client) {
    const auto turn = jackTurn();
    jack_client_close(client);
}

JackStream::JackStream(JackDirection direction, std::vector<std::string> ports, engine::SoundClient& client)
    : direction_(direction), ports_(std::move(ports)), client_(&client), stereo_(kChunk * kSides) {}

JackStream::~JackStream() { close(); }

bool JackStream::open() { return connect(); }

bool JackStream::connect() {
    jack_ = openJackClient("Zentrova");
    if (jack_ == nullptr) return false;
    gone_ = false;
    const bool output = direction_ == JackDirection::output;
    for (std::size_t side = 0; side < kSides; ++side) {
        const std::string name = (output ? "out_" : "in_") + std::to_string(side + 1);
        own_[side] = jack_port_register(jack_, name.c_str(), JACK_DEFAULT_AUDIO_TYPE,
                                        output ? JackPortIsOutput : JackPortIsInput, 0);
    }
    const std::uint32_t rate = jack_get_sample_rate(jack_);
    const std::uint32_t period = std::min<std::uint32_t>(jack_get_buffer_size(jack_), kChunk);
    const bool changed = rate_ != 0 && (rate_ != rate || period_ != period);
    rate_ = rate;
    period_ = period;
    // Before the server asks for the first sound of the new kind.
    if (changed) tell([=](engine::SoundClient& client) { client.deviceChanged(rate, period); });
    jack_set_process_callback(jack_, &JackStream::onProcess, this);
    jack_on_shutdown(jack_, &JackStream::onShutdown, this);
    bool joined = own_[0] != nullptr && own_[1] != nullptr && jack_activate(jack_) == 0;
    for (std::size_t side = 0; joined && side < kSides; ++side) {
        const char* mine = jack_port_name(own_[side]);
        const char* theirs = ports_[std::min(side, ports_.size() - 1)].c_str();
        joined = jack_connect(jack_, output ? mine : theirs, output ? theirs : mine) == 0;
    }
    if (!joined) close();
    return joined;
}

void JackStream::close() {
    if (jack_ != nullptr) closeJackClient(jack_);
    jack_ = nullptr;
    own_ = {};
}

int JackStream::onProcess(jack_nframes_t frames, void* self) {
    static_cast<JackStream*>(self)->process(frames);
    return 0;
}

void JackStream::onShutdown(void* self) { static_cast<JackStream*>(self)->gone_ = true; }

void JackStream::process(std::uint32_t frames) {
    std::array<float*, kSides> side{};
    for (std::size_t i = 0; i < kSides; ++i)
        side[i] = static_cast<float*>(jack_port_get_buffer(own_[i], frames));
    calls_.fetch_add(1, std::memory_order_seq_cst);
    engine::SoundClient* client = client_.load(std::memory_order_seq_cst);
    for (std::uint32_t done = 0; done < frames;) {
        const auto now = static_cast<std::uint32_t>(std::min<std::size_t>(kChunk, frames - done));
        const std::span<float> stereo(stereo_.data(), std::size_t{now} * kSides);
        if (direction_ == JackDirection::output) {
            std::ranges::fill(stereo, 0.0F);
            if (client != nullptr) client->render(stereo);
            for (std::uint32_t f = 0; f < now; ++f)
                for (std::size_t i = 0; i < kSides; ++i) side[i][done + f] = stereo[f * kSides + i];
        } else if (client != nullptr) {
            for (std::uint32_t f = 0; f < now; ++f)
                for (std::size_t i = 0; i < kSides; ++i) stereo[f * kSides + i] = side[i][done + f];
            client->heard(stereo);
        }
        done += now;
    }
    calls_.fetch_sub(1, std::memory_order_seq_cst);
}

void JackStream::tell(const std::function<void(engine::SoundClient&)>& call) {
    const std::lock_guard lock(mutex_);
    engine::SoundClient* client = client_;
    if (!stopping_ && client != nullptr) call(*client);
}

void JackStream::follow() {
    std::unique_lock lock(mutex_);
    while (!stopping_) {
        changed_.wait_for(lock, gone_ ? std::chrono::milliseconds(kLookAgain) : kShutdownSeen,
                          [this] { return stopping_; });
        if (stopping_ || (jack_ != nullptr && !gone_)) continue;
        lock.unlock();
        if (jack_ != nullptr) {
            tell([](engine::SoundClient& client) { client.deviceLost(); });
            close();  // may hang with the server
        }
        if (connect())
            tell([](engine::SoundClient& client) { client.deviceBack(); });
        else
            gone_ = true;
        lock.lock();
    }
    lock.unlock();
    close();
    lock.lock();
    ended_ = true;
    changed_.notify_all();
}

bool JackStream::stop() {
    client_.store(nullptr, std::memory_order_seq_cst);
    std::unique_lock lock(mutex_);
    stopping_ = true;
    changed_.notify_all();
    const bool ended = changed_.wait_for(lock, kClosingLimit, [this] { return ended_; });
    // A callback that still saw the client is let finish.
    while (!ended && calls_.load(std::memory_order_seq_cst) != 0) std::this_thread::yield();
    return ended;
}

}  // namespace zv
