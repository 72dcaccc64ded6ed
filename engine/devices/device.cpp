#include "engine/devices/device.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "engine/graph/graph.h"
#include "engine/realtime/thread_tags.h"

namespace zv::engine {
namespace {

constexpr std::uint64_t kDriverGoneMicros = 500'000;  ///< silent so long, the driver counts as lost
// An output that would run dry waits no longer than this for the driver, which has run dry itself by then.
constexpr std::uint64_t kDriverLateMicros = 30'000, kLatePeriods = 4;
constexpr double kBridgeSlackMs = 12;  ///< over the periods of both sides: scheduling
constexpr double kBridgeLeastMs = 18, kBridgeMostMs = 60;

}  // namespace

void OutputSlot::deviceLost() { lost_.store(true, std::memory_order_release); }

bool OutputSlot::resting() const {
    asked_.fetch_add(1, std::memory_order_relaxed);
    // The stand-in has nothing to do while another output drives.
    return outputs_.resting() || (number_ == 0 && !outputs_.drives(*this));
}

void OutputSlot::wake() {
    if (device_ && ready()) device_->wake();
}
void OutputSlot::deviceBack() {
    Bridge* bridge = bridge_;
    if (ready() && bridge) bridge->restart();
    lost_.store(false, std::memory_order_release);
}

bool OutputSlot::open(std::unique_ptr<SoundDevice> device, bool oneClock) {
    device_ = std::move(device);
    if (device_->rate() == 0) return false;
    oneClock_ = oneClock;
    for (auto* counter : {&callbacks_, &asked_, &underruns_, &longestNs_}) *counter = 0;
    take(device_->rate(), device_->period());
    lost_.store(false, std::memory_order_release);
    ready_.store(true, std::memory_order_release);
    return true;
}

void OutputSlot::deviceChanged(std::uint32_t rate, std::uint32_t period) {
    if (ready() && lost() && rate != 0) take(rate, period);
}

/// All that hangs on the device's rate and period. It is made first, for the other outputs render meanwhile; nobody
/// renders while it is put in place.
void OutputSlot::take(std::uint32_t rate, std::uint32_t period) {
    Graph& graph = outputs_.graph();
    const std::uint32_t graphRate = graph.rate();
    BridgeOptions options;
    options.inRate = graphRate;
    options.outRate = rate;
    options.oneClock = oneClock_;
    options.leastMs = kBridgeLeastMs;
    options.mostMs = kBridgeMostMs;
    options.targetMs = 2 * period * 1000.0 / rate + kBridgeSlackMs;
    auto bridge = std::make_unique<Bridge>(options);
    std::unique_ptr<dsp::Resampler> resampler;
    std::vector<float> in;
    if (rate != graphRate) {
        resampler = std::make_unique<dsp::Resampler>(graphRate, rate);
        in.resize((resampler->inputNeeded(kBlock) + 64) * 2);
    }
    graph.acquire();
    rate_.store(rate, std::memory_order_relaxed);
    periodMicros_.store(period * std::uint64_t{1'000'000} / rate, std::memory_order_relaxed);
    bridge_ = bridge.get();
    former_.swap(present_);
    present_.swap(bridge);  // the one before the former goes when nobody waits for it
    resampler_.swap(resampler);
    in_.swap(in);
    graph.release();
}

void OutputSlot::close() {
    ready_.store(false, std::memory_order_release);
    device_.reset();  // waits for a callback that is under way
    // Another output's callback may just be writing into the bridge: it goes when none is rendering.
    Graph& graph = outputs_.graph();
    graph.acquire();
    bridge_ = nullptr;
    auto old = std::move(present_);
    graph.release();
    rank.store(~std::uint64_t{0});
}

DeviceStatistics OutputSlot::statistics() const {
    DeviceStatistics s;
    s.callbacks = callbacks_.load(std::memory_order_relaxed);
    s.asked = asked_.load(std::memory_order_relaxed);
    s.underruns = underruns_.load(std::memory_order_relaxed);
    s.longestCallbackNs = longestNs_.load(std::memory_order_relaxed);
    s.commandOverflows = outputs_.graph().commands.overflows();
    s.sourceUnderruns = outputs_.graph().sourceUnderruns.load(std::memory_order_relaxed);
    const Bridge* bridge = bridge_;
    if (ready() && !lost() && bridge) s.sourceUnderruns += bridge->underruns();
    s.open = ready();
    s.lost = lost();
    s.resting = outputs_.resting();
    return s;
}

void OutputSlot::computeBlock(std::uint32_t frames) {
    Graph& graph = outputs_.graph();
    if (outputs_.hooks.offline && outputs_.hooks.beforeBlock) {
        const AudioPause pause;
        outputs_.hooks.beforeBlock();
    }
    graph.renderBlock(frames);
    for (int i = 1; i < kMostDevices; ++i) {
        OutputSlot* other = outputs_.slot(i);
        if (!other || other == this || !other->usable() || !graph.plays(i)) continue;
        Bridge& bridge = *other->bridge_;
        if (graph.quiet()) {
            bridge.rest();
        } else {
            bridge.write({graph.bus(i), std::size_t{frames} * 2});
        }
    }
}

/// This output followed another one that is gone. What it has not given yet still comes, so it keeps its
/// distance to the sound that is computed, until a silence, or until the other one drives again.
void OutputSlot::produceBehind(std::span<float> stereo) {
    Graph& graph = outputs_.graph();
    Bridge& bridge = *bridge_;
    for (std::size_t due = bridge.due(stereo.size() / 2); due > 0;) {
        const auto frames = static_cast<std::uint32_t>(std::min<std::size_t>(kBlock, due));
        computeBlock(frames);
        bridge.write({graph.bus(number_), std::size_t{frames} * 2});
        due -= frames;
    }
    bridge.readOwn(stereo);
}

void OutputSlot::produce(std::span<float> stereo) {
    Graph& graph = outputs_.graph();
    const std::size_t total = stereo.size() / 2;
    for (std::size_t done = 0; done < total;) {
        const auto frames = static_cast<std::uint32_t>(std::min<std::size_t>(kBlock, total - done));
        float* out = stereo.data() + done * 2;
        done += frames;
        if (!resampler_) {
            computeBlock(frames);
            const float* bus = graph.bus(number_);
            if (graph.plays(number_)) {
                std::copy_n(bus, std::size_t{frames} * 2, out);
            } else {
                std::fill_n(out, std::size_t{frames} * 2, 0.0F);
            }
            continue;
        }
        const std::size_t need = resampler_->inputNeeded(frames);
        for (std::size_t got = 0; got < need;) {
            const auto n = static_cast<std::uint32_t>(std::min<std::size_t>(kBlock, need - got));
            computeBlock(n);
            if (graph.plays(number_)) {
                std::copy_n(graph.bus(number_), std::size_t{n} * 2, in_.data() + got * 2);
            } else {
                std::fill_n(in_.data() + got * 2, std::size_t{n} * 2, 0.0F);
            }
            got += n;
        }
        resampler_->process({in_.data(), need * 2}, {out, std::size_t{frames} * 2});
    }
}

void OutputSlot::render(std::span<float> stereo) {
    if (!ready()) {
        std::ranges::fill(stereo, 0.0F);
        return;
    }
    asked_.fetch_add(1, std::memory_order_relaxed);
    using Clock = std::chrono::steady_clock;
    const auto began = Clock::now();
    Graph& graph = outputs_.graph();
    bool drove = false;
    if (outputs_.resting()) {
        std::ranges::fill(stereo, 0.0F);
        callbacks_.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    {
        const AudioSection section;
        Bridge& bridge = *bridge_;
        const std::uint64_t micros = stereo.size() / 2 * std::uint64_t{1'000'000} / rate_;
        if (outputs_.drives(*this, number_ != 0 && bridge.runsDry(stereo.size() / 2)) && graph.tryAcquire()) {
            drove = true;
            const bool leads = outputs_.leads(*this);
            if (leads) outputs_.silentMicros.store(0, std::memory_order_relaxed);
            if (leads || number_ != 0) outputs_.deputySilentMicros.store(0, std::memory_order_relaxed);
            graph.applyCommands();
            if (bridge.follows() && graph.plays(number_) && !graph.quiet()) {
                produceBehind(stereo);
            } else {
                produce(stereo);
                // Whoever drives next may write before this output reads.
                bridge.clear();
            }
            graph.release();
        } else {
            outputs_.silentMicros.fetch_add(micros, std::memory_order_relaxed);
            if (number_ == 0) {
                outputs_.deputySilentMicros.fetch_add(micros, std::memory_order_relaxed);
                std::ranges::fill(stereo, 0.0F);
            } else {
                bridge.read(stereo);
            }
        }
    }
    const auto spent = static_cast<std::uint64_t>((Clock::now() - began).count());
    callbacks_.fetch_add(1, std::memory_order_relaxed);
    if (spent > longestNs_.load(std::memory_order_relaxed))
        longestNs_.store(spent, std::memory_order_relaxed);
    if (spent * rate_ > stereo.size() / 2 * std::uint64_t{1'000'000'000})
        underruns_.fetch_add(1, std::memory_order_relaxed);
    if (drove && outputs_.hooks.offline && outputs_.hooks.afterPeriod) outputs_.hooks.afterPeriod();
}

// ---- all outputs

OutputSlot* Outputs::slot(int number) const {
    if (number < 0 || number >= kMostDevices) return nullptr;
    return slots_[static_cast<std::size_t>(number)].load(std::memory_order_acquire);
}

bool Outputs::isOpen(int number) const {
    const OutputSlot* slot = this->slot(number);
    return slot && slot->ready();
}

bool Outputs::anyOpen() const {
    return std::ranges::any_of(owned_, [](const auto& slot) { return slot && slot->ready(); });
}

int Outputs::open(int number, const std::string& id, std::uint32_t rate, DeviceSource& source) {
    const auto place = static_cast<std::size_t>(number);
    if (!owned_[place]) {
        owned_[place] = std::make_unique<OutputSlot>(*this, number);
        slots_[place].store(owned_[place].get(), std::memory_order_release);
    }
    OutputSlot& slot = *owned_[place];
    auto device = number == 0 ? source.openNoSound(rate, slot) : source.openOutput(id, rate, slot);
    if (!device) return BASS_ERROR_DRIVER;
    return slot.open(std::move(device), source.oneClock()) ? BASS_OK : BASS_ERROR_FREQ;
}

void Outputs::close(int number) {
    if (OutputSlot* slot = this->slot(number)) slot->close();
}

bool Outputs::resting() const {
    // In this order: a thread that finds the command gone also finds what it changed.
    return graph_.commands.empty() && graph_.quiet();
}

void Outputs::wake() {
    for (const auto& slot : owned_)
        if (slot) slot->wake();
}

const OutputSlot* Outputs::leader(const OutputSlot* without) const {
    const OutputSlot* best = nullptr;
    for (const auto& place : slots_) {
        const OutputSlot* other = place.load(std::memory_order_acquire);
        if (!other || other == without || !other->usable()) continue;
        if (!best || other->rank.load(std::memory_order_relaxed) < best->rank.load(std::memory_order_relaxed))
            best = other;
    }
    return best;
}

bool Outputs::drives(const OutputSlot& slot, bool runsDry) const {
    const OutputSlot* first = leader(nullptr);
    if (&slot == first) return true;
    const std::uint64_t silent = silentMicros.load(std::memory_order_relaxed);
    const bool late =
        runsDry && first && silent > std::max(kDriverLateMicros, kLatePeriods * first->periodMicros());
    // Both outputs of a server that stands still are silent without being lost: the stand-in computes on.
    if (slot.number() == 0 && silent > kDriverGoneMicros &&
        deputySilentMicros.load(std::memory_order_relaxed) > kDriverGoneMicros)
        return true;
    return (late || silent > kDriverGoneMicros) && &slot == leader(first);
}

// ---- inputs

void InputSlot::heard(std::span<const float> stereo) {
    const AudioSection section;
    calls_.fetch_add(1, std::memory_order_seq_cst);
    const bool anew = back_.exchange(false, std::memory_order_acq_rel);
    for (auto& place : inputs_)
        if (RecordInput* input = place.load(std::memory_order_seq_cst)) {
            if (anew) input->bridge.restart();
            input->bridge.write(stereo);
        }
    calls_.fetch_add(1, std::memory_order_seq_cst);
}

bool InputSlot::add(const std::shared_ptr<RecordInput>& input) {
    const auto place = std::ranges::find(held_, nullptr);
    if (place == held_.end()) return false;
    *place = input;
    inputs_[static_cast<std::size_t>(place - held_.begin())].store(input.get(), std::memory_order_seq_cst);
    return true;
}

void InputSlot::remove(const RecordInput* input) {
    const auto place = std::ranges::find(held_, input, [](const auto& held) { return held.get(); });
    if (place == held_.end()) return;
    inputs_[static_cast<std::size_t>(place - held_.begin())].store(nullptr, std::memory_order_seq_cst);
    // A callback that still saw it is let finish.
    const std::uint64_t call = calls_.load(std::memory_order_seq_cst);
    while (call % 2 != 0 && calls_.load(std::memory_order_seq_cst) == call) std::this_thread::yield();
    place->reset();
}

// ---- numbers

void DeviceRegister::refresh(const std::vector<DeviceDescription>& present, const std::vector<bool>& kept) {
    for (Entry& entry : entries_) entry.present = false;
    for (const DeviceDescription& device : present) {
        const auto known =
            std::ranges::find(entries_, device.id, [](const Entry& e) { return e.description.id; });
        if (known == entries_.end()) {
            entries_.push_back({device, true});
        } else {
            *known = {device, true};
        }
    }
    while (!entries_.empty() && !entries_.back().present &&
           !(entries_.size() <= kept.size() && kept[entries_.size() - 1]))
        entries_.pop_back();
}

}  // namespace zv::engine
