/// The ring between the driver's side and the pump: one writer, one reader, no lock. The writer stores an entry and
/// moves MidiInWrite last; the reader alone moves MidiInRead.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace zv {

inline constexpr int kRingSlots = 30;

struct MidiInEntry {
    std::uint32_t code = 0;    ///< kMidiData or kMidiLongData
    std::uint32_t first = 0;   ///< the short message
    std::uint32_t second = 0;  ///< when it came, ms
};

extern std::array<MidiInEntry, kRingSlots> MidiInQueue;
/// Slots of the next entry; equal when the ring is empty.
extern std::atomic<std::int16_t> MidiInWrite, MidiInRead;

/// Writes one entry, unless it is the timing clock or neither a short nor a long message. It does not look
/// whether the reader follows: the 30th unread entry makes the ring look empty. [any, one thread]
void MidiInProc(std::uint32_t code, std::uint32_t first, std::uint32_t second);
/// Entries that wait. [control]
int MidiInBacklog();
/// The slot behind `slot`.
std::int16_t NextSlot(std::int16_t slot);
/// Empties the ring. The input must be closed: no other thread may write meanwhile. [control]
void ResetRing();

}  // namespace zv
