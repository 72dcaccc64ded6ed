/// Any sequence of operations of the engine, with any arguments, out of a string of bytes: nothing crashes, hangs or
/// leaks; results, codes and states fit together; what goes out is finite sound of the length that was asked for.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "engine/bass.h"
#include "engine/ports.h"
#include "platform/offline/offline_devices.h"

namespace zv::engine::test {

class RandomOperations {
  public:
    using Bytes = std::span<const std::uint8_t>;
    /// On offline devices with this period. `compared`: without what depends on the period by right.
    RandomOperations(Bytes input, std::uint32_t period, bool compared);
    /// On devices with threads of their own, in the studio that stands.
    RandomOperations(Bytes input, const std::vector<DWORD>& studio);
    ~RandomOperations();
    RandomOperations(const RandomOperations&) = delete;
    RandomOperations& operator=(const RandomOperations&) = delete;

    /// Performs up to `most` operations; aborts the process when something does not hold. What was heard.
    std::vector<float> run(int most = 150);

    /// What a fuzzer asks of an input: performed once, or twice with device periods of 64 and of 256 frames, which
    /// must give the same bits.
    static void performInput(Bytes input);

  private:
    // Arguments out of the input.
    unsigned byte();
    unsigned word() { return byte() | byte() << 8; }
    bool flag() { return byte() % 2 != 0; }
    float number();
    float between(float low, float high);
    QWORD position();
    DWORD milliseconds();
    DWORD of(std::span<const DWORD> list);
    DWORD any();
    HFX anyEffect() { return effects_.empty() ? 0 : effects_[byte() % effects_.size()]; }

    DWORD created(DWORD handle, const char* what);
    void adopt(DWORD handle, const char* what);
    void pull(std::uint64_t frames);
    void operation(unsigned what);
    void create(unsigned what);
    void device(unsigned what);
    void look(unsigned what);
    void change(unsigned what, DWORD channel);
    void setSync(DWORD channel);
    void setEffect();
    void data();

    Bytes input_;
    bool compared_ = false;
    std::shared_ptr<OfflineDevices> devices_;  ///< null: devices with threads of their own
    std::vector<DWORD> handles_;
    std::vector<HFX> effects_;
    std::vector<std::pair<DWORD, HSYNC>> syncs_;
    std::vector<std::unique_ptr<struct SyncAct>> acts_;
    std::vector<float> heard_;
    std::uint64_t rendered_ = 0;
};

}  // namespace zv::engine::test
