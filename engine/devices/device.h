/// Outputs and inputs that are open. One output drives the graph: its callback computes the sound of all
/// outputs and hands the others theirs over a bridge. So the graph belongs to one thread, without a lock, and
/// outputs with clocks of their own follow the driver by an inaudible correction.
///
/// The driver is the output on which the eldest source plays (the main output), of those that are there; when
/// it is lost the next one takes over, at the latest the no-sound device, and gives back when it returns.
#pragma once

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "engine/graph/channel.h"
#include "engine/ports.h"
#include "engine/sources/bridge.h"

namespace zv::engine {

class Graph;
class Outputs;

class OutputSlot final : public SoundClient {
  public:
    OutputSlot(Outputs& outputs, int number) : outputs_(outputs), number_(number) {}

    void render(std::span<float> stereo) override;  // [audio]
    void heard(std::span<const float>) override {}
    void deviceLost() override;
    void deviceBack() override;
    void deviceChanged(std::uint32_t rate, std::uint32_t period) override;
    void ranDry() override { underruns_.fetch_add(1, std::memory_order_relaxed); }
    bool resting() const override;
    void wake();  // [any but audio], under the engine's lock

    int number() const { return number_; }
    bool ready() const { return ready_.load(std::memory_order_acquire); }
    bool lost() const { return lost_.load(std::memory_order_acquire); }
    bool usable() const { return ready() && !lost(); }
    DeviceStatistics statistics() const;
    /// Place in the order of drivers: of those open the lowest drives. Written by [control]
    std::atomic<std::uint64_t> rank{~std::uint64_t{0}};

    bool open(std::unique_ptr<SoundDevice> device, bool oneClock);
    void close();
    std::uint64_t periodMicros() const { return periodMicros_.load(std::memory_order_relaxed); }

  private:
    void take(std::uint32_t rate, std::uint32_t period);
    void produce(std::span<float> stereo);
    void produceBehind(std::span<float> stereo);
    void computeBlock(std::uint32_t frames);

    Outputs& outputs_;
    const int number_;
    std::atomic<bool> ready_{false}, lost_{false};
    std::unique_ptr<SoundDevice> device_;
    std::atomic<std::uint32_t> rate_{0};
    std::atomic<std::uint64_t> periodMicros_{0};
    bool oneClock_ = false;
    std::atomic<Bridge*> bridge_{nullptr};
    std::unique_ptr<Bridge> present_,
        former_;  ///< `former_`: the one before the device changed, which statistics() may still read
    std::unique_ptr<dsp::Resampler> resampler_;  ///< from the graph's rate, null when equal
    std::vector<float> in_;
    std::atomic<std::uint64_t> callbacks_{0}, underruns_{0}, longestNs_{0};
    mutable std::atomic<std::uint64_t> asked_{0};
};

/// What a render needs from the rest of the engine.
struct RenderHooks {
    bool offline = false;
    void (*beforeBlock)() = nullptr;  ///< offline: loads what the next block reads
    void (*afterPeriod)() = nullptr;  ///< offline: runs syncs
};

class Outputs {
  public:
    explicit Outputs(Graph& graph) : graph_(graph) {}

    /// Opens output `number` (0: no sound; below kMostDevices). Returns a BASS_ERROR_ code. [control]
    int open(int number, const std::string& id, std::uint32_t rate, DeviceSource& source);
    void close(int number);  // [control]
    bool isOpen(int number) const;
    bool anyOpen() const;
    OutputSlot* slot(int number) const;

    /// Wait-free: whether `slot` is to compute the graph now. One that is about to run dry because the driver is late
    /// waits for it no longer. [audio]
    bool drives(const OutputSlot& slot, bool runsDry = false) const;
    /// The same while all callbacks come in time.
    bool leads(const OutputSlot& slot) const { return &slot == leader(nullptr); }
    /// Nothing sounds and no command waits: devices need not ask. Wait-free. [any]
    bool resting() const;
    /// A command came that ends the rest. [any but audio], under the engine's lock
    void wake();
    Graph& graph() { return graph_; }
    RenderHooks hooks;
    /// Microseconds that others have rendered since the driver last did. [audio]
    std::atomic<std::uint64_t> silentMicros{0};
    /// Microseconds that the no-sound device has waited since an output last drove, the driver or its deputy. [audio]
    std::atomic<std::uint64_t> deputySilentMicros{0};

  private:
    const OutputSlot* leader(const OutputSlot* without) const;

    Graph& graph_;
    std::array<std::unique_ptr<OutputSlot>, kMostDevices> owned_;
    std::array<std::atomic<OutputSlot*>, kMostDevices> slots_{};
};

/// An input: hands what it hears to the recordings on it.
class InputSlot final : public SoundClient {
  public:
    static constexpr std::size_t kMostRecordings = 8;
    void render(std::span<float>) override {}
    void heard(std::span<const float> stereo) override;  // [audio] of the input
    void deviceLost() override {}
    /// Sets a flag: the recordings drop what they hold and go on with the next callback's sound. [any]
    void deviceBack() override { back_.store(true, std::memory_order_release); }

    bool add(const std::shared_ptr<RecordInput>& input);  // [control]
    void remove(const RecordInput* input);
    std::string id;
    bool initialised = false;
    std::unique_ptr<SoundDevice> device;

  private:
    std::array<std::atomic<RecordInput*>, kMostRecordings> inputs_{};
    std::array<std::shared_ptr<RecordInput>, kMostRecordings> held_;
    std::atomic<std::uint64_t> calls_{0};  ///< odd while a callback is under way
    std::atomic<bool> back_{false};        ///< the device came back since the last callback
};

/// Devices by number: a device keeps its number as long as it is known, also when another one goes.
class DeviceRegister {
  public:
    /// Takes in what is there now; devices that are gone keep their place unless they are last and not
    /// `kept`.
    void refresh(const std::vector<DeviceDescription>& present, const std::vector<bool>& kept);
    struct Entry {
        DeviceDescription description;
        bool present = true;
    };
    const std::vector<Entry>& entries() const { return entries_; }
    void clear() { entries_.clear(); }

  private:
    std::vector<Entry> entries_;
};

}  // namespace zv::engine
