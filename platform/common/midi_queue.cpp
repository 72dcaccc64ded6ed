#include "platform/common/midi_queue.h"

#include "platform/common/callback_section.h"

namespace zv {
namespace {

constexpr unsigned char kSystemExclusive = 0xF0, kTimingClock = 0xF8, kContinuedExclusive = 0xF7;

}  // namespace

std::atomic<std::uint64_t> midiDropped{0};

std::uint64_t midiMessagesDropped() { return midiDropped.load(std::memory_order_relaxed); }

std::uint32_t packMidi(std::span<const unsigned char> bytes) {
    std::uint32_t message = 0;
    for (std::size_t i = 0; i < bytes.size() && i < 3; ++i) message |= std::uint32_t{bytes[i]} << (8 * i);
    return message;
}

std::size_t midiLength(unsigned char status) {
    switch (status & 0xF0) {
        case 0xC0:
        case 0xD0:
            return 2;
        case 0xF0:
            return status == 0xF2 ? 3 : status == 0xF1 || status == 0xF3 ? 2 : 1;
        default:
            return 3;
    }
}

bool MidiQueue::push(std::span<const unsigned char> bytes, std::uint32_t ms) noexcept {
    const CallbackSection callback;
    if (bytes.empty() || bytes[0] < 0x80 || bytes[0] == kTimingClock) return true;
    const bool isLong = bytes[0] == kSystemExclusive || bytes[0] == kContinuedExclusive;
    if (isLong && longMessages_ == 0) return true;
    const std::uint32_t at = written_.load(std::memory_order_relaxed);
    if (at - read_.load(std::memory_order_acquire) == kMidiWaiting) {
        midiDropped.fetch_add(1, std::memory_order_relaxed);
        return false;
    }
    if (isLong) --longMessages_;
    waiting_[at % kMidiWaiting] = {isLong ? kMidiLongData : kMidiData, isLong ? 0 : packMidi(bytes), ms};
    written_.store(at + 1, std::memory_order_release);
    return true;
}

int MidiQueue::deliver(MidiInCallback callback, int most) {
    int count = 0;
    for (; count < most; ++count) {
        const std::uint32_t at = read_.load(std::memory_order_relaxed);
        if (at == written_.load(std::memory_order_acquire)) break;
        const Waiting next = waiting_[at % kMidiWaiting];
        read_.store(at + 1, std::memory_order_release);
        callback(next.code, next.message, next.ms);
    }
    return count;
}

}  // namespace zv
