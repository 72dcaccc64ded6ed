#include "engine/sources/live_input.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <mutex>
#include <utility>

#include "engine/dsp/mix.h"
#include "engine/realtime/thread_tags.h"

namespace zv::engine {
namespace {

constexpr double kTankSeconds = 4;
constexpr std::size_t kTankSamples = 2U << 20;  ///< at most: 8 MB, whatever a stream says of itself
/// Seconds of sound in store with which a stream begins, and goes on after it ran dry once, twice and more often: one
/// that stalled will stall again.
constexpr std::array kRefillSeconds{0.4, 1.2, 2.4, 3.0};
constexpr std::size_t kPieceFrames = 2048;
constexpr auto kWait = std::chrono::milliseconds(10);  ///< for room or for sound

}  // namespace

struct UrlInput::Tank {
    Tank(std::unique_ptr<Decoder> source, SoundFormat f)
        : decoder(std::move(source)),
          format(f),
          ring(std::min(static_cast<std::size_t>(kTankSeconds * f.rate) * f.channels, kTankSamples)),
          piece(kPieceFrames * f.channels) {}

    /// Reads one piece; false when none was there, or no room for it.
    bool fill() {
        if (ended.load(std::memory_order_acquire) || ring.free() < piece.size()) return false;
        std::size_t frames = 0;
        try {
            frames = decoder->read(piece);
            std::string now = decoder->told();
            const std::lock_guard lock(toldMutex);
            toldNow = std::move(now);
            if (frames == 0 && decoder->ended()) ended.store(true, std::memory_order_release);
        } catch (...) {
            ended.store(true, std::memory_order_release);
        }
        dsp::makeHarmless(piece);
        ring.write(piece.data(), std::min(frames * format.channels, piece.size()));
        return frames > 0;
    }

    std::string told() const {
        const std::lock_guard lock(toldMutex);
        return toldNow;
    }

    std::unique_ptr<Decoder> decoder;
    SoundFormat format;
    Ring<float> ring;
    std::vector<float> piece;
    std::atomic<bool> ended{false}, closed{false};
    mutable std::mutex toldMutex;
    std::string toldNow;
};

UrlInput::UrlInput(std::unique_ptr<Decoder> decoder, bool offline) {
    const SoundFormat format = decoder->format();
    tank_ = std::make_shared<Tank>(std::move(decoder), format);
    if (offline) return;
    // A read may hang in the network as long as the time-out. No one joins this thread; it shares the tank.
    std::thread([tank = tank_] {
        const ThreadSection worker(ThreadKind::Worker);
        while (!tank->closed.load(std::memory_order_acquire) &&
               !tank->ended.load(std::memory_order_acquire)) {
            if (!tank->fill()) std::this_thread::sleep_for(kWait);
        }
    }).detach();
}

UrlInput::~UrlInput() { tank_->closed.store(true, std::memory_order_release); }

std::size_t UrlInput::filled() const { return tank_->ring.filled() / tank_->format.channels; }

std::string UrlInput::told() const { return tank_->told(); }

void UrlInput::fillNow() {
    assertNotAudioThread();
    while (tank_->fill()) {
    }
}

std::size_t UrlInput::read(std::span<float> out) {
    assertAudioThread();
    Ring<float>& ring = tank_->ring;
    const std::size_t channels = tank_->format.channels;
    const bool over = tank_->ended.load(std::memory_order_acquire);
    if (!flowing_) {
        const auto frames = static_cast<std::size_t>(kRefillSeconds[ranDry_] * tank_->format.rate);
        // Where a refill does not fit into the store, three quarters of the store are enough.
        const std::size_t enough = std::min(frames * channels, ring.capacity() / 4 * 3);
        if (ring.filled() < enough && !over) return 0;
        flowing_ = true;
    }
    const std::size_t got = ring.read(out.data(), out.size() / channels * channels);
    if (got == 0) {
        flowing_ = false;
        ranDry_ = std::min(ranDry_ + 1, kRefillSeconds.size() - 1);
    }
    return got / channels;
}

bool UrlInput::ended() const {
    return tank_->ended.load(std::memory_order_acquire) && tank_->ring.filled() == 0;
}

}  // namespace zv::engine
