#include "midi/ring.h"

#include "platform/midi.h"

namespace zv {

std::array<MidiInEntry, kRingSlots> MidiInQueue;
std::atomic<std::int16_t> MidiInWrite{0}, MidiInRead{0};

namespace {
constexpr std::uint32_t kTimingClock = 0xF8;
}

std::int16_t NextSlot(std::int16_t slot) {
    return static_cast<std::int16_t>(slot + 1 == kRingSlots ? 0 : slot + 1);
}

void MidiInProc(std::uint32_t code, std::uint32_t first, std::uint32_t second) {
    if (code != kMidiData && code != kMidiLongData) return;
    if (code == kMidiData && first == kTimingClock) return;
    const std::int16_t slot = MidiInWrite.load(std::memory_order_relaxed);
    MidiInQueue[static_cast<std::size_t>(slot)] = {code, first, second};
    MidiInWrite.store(NextSlot(slot), std::memory_order_release);
}

int MidiInBacklog() {
    const int backlog = MidiInWrite.load(std::memory_order_acquire) - MidiInRead.load();
    return backlog < 0 ? backlog + kRingSlots : backlog;
}

void ResetRing() {
    MidiInQueue.fill({});
    MidiInWrite.store(0);
    MidiInRead.store(0);
}

}  // namespace zv
