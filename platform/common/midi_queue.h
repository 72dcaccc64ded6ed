/// Messages on their way from a driver's thread to the interface thread, without locks.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/midi.h"

namespace zv {

/// Bytes of a message as one number: status in the low byte, data 1 and data 2 above it.
std::uint32_t packMidi(std::span<const unsigned char> bytes);

/// How many bytes a short message with this status has, 1 to 3.
std::size_t midiLength(unsigned char status);

/// One writer, one reader.
class MidiQueue {
  public:
    /// `longMessages`: how many long messages it takes in all.
    explicit MidiQueue(int longMessages) : longMessages_(longMessages) {}

    /// A message's bytes, and when it came (ms). The timing clock is left out, as is a long message behind the
    /// last one that is taken. False when the queue is full and the message lost. [any, one thread]
    bool push(std::span<const unsigned char> bytes, std::uint32_t ms) noexcept;
    /// Hands over at most `most`, oldest first; how many. [control]
    int deliver(MidiInCallback callback, int most);

  private:
    struct Waiting {
        std::uint32_t code, message, ms;
    };
    std::array<Waiting, kMidiWaiting> waiting_{};
    std::atomic<std::uint32_t> written_{0}, read_{0};  ///< counted up for ever
    int longMessages_;
};

/// Messages that no queue had room for.
extern std::atomic<std::uint64_t> midiDropped;

}  // namespace zv
