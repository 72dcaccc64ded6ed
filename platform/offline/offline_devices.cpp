#include "platform/offline/offline_devices.h"

#include <algorithm>
#include <cmath>
#include <deque>

namespace zv {
namespace {

/// Time in units that every usual sample rate divides without a rest.
constexpr double ticksPerSecond = 705'600'000.0;

double ticksPerFrame(std::uint32_t rate, double partsPerMillion) {
    return ticksPerSecond / rate / (1.0 + partsPerMillion * 1e-6);
}

/// What an output has sent, on the time line of wall time.
struct KeptSound {
    std::uint32_t rate = 0;
    double began = 0;           ///< time of the first frame ever kept
    std::uint64_t taken = 0;    ///< frames handed out
    std::deque<float> samples;  ///< interleaved, from frame `taken` on
    std::uint64_t frames() const { return taken + samples.size() / 2; }
};

struct Fed {
    std::vector<float> stereo;
    std::uint32_t rate = 0;
    double began = 0;
};

/// A device as the machine has it, plugged or not, open or not.
struct Jack {
    std::string name;
    bool plugged = true;
    double clockError = 0;
    bool hangs = false;
    KeptSound kept;
    Fed fed;
};

class Line;

struct World {
    OfflineOptions options;
    double now = 0;  ///< ticks
    bool clocksDiffer = false;
    std::vector<std::unique_ptr<Jack>> outputs, inputs;
    std::vector<Line*> lines;  ///< open devices in the order of opening

    Jack* find(const std::string& name) {
        for (auto* list : {&outputs, &inputs})
            for (auto& jack : *list)
                if (jack->name == name) return jack.get();
        return nullptr;
    }
};

/// One open device.
class Line final : public engine::SoundDevice {
  public:
    Line(std::shared_ptr<World> world, Jack* jack, bool input, std::uint32_t rate,
         engine::SoundClient& client)
        : world_(std::move(world)), jack_(jack), input_(input), rate_(rate), client_(client) {
        restart();
        world_->lines.push_back(this);
    }
    ~Line() override { std::erase(world_->lines, this); }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    std::uint32_t rate() const override { return rate_; }
    std::uint32_t period() const override { return world_->options.period; }

    Jack* jack() const { return jack_; }
    bool input() const { return input_; }
    bool running() const { return !jack_ || (jack_->plugged && !jack_->hangs && !resting_); }
    engine::SoundClient& client() { return client_; }

    /// The device's clock begins anew at the present moment.
    void restart() {
        origin_ = world_->now;
        done_ = 0;
        resting_ = false;
    }
    /// Counts from the next period on, so that a change of the clock's pace does not reach back.
    void anchor() {
        origin_ += static_cast<double>(done_) * step();
        done_ = 0;
    }
    /// When the next call is due: an output is asked at the start of a period, an input has heard it at its
    /// end.
    double due() const {
        const std::uint64_t frame = done_ + (input_ ? world_->options.period : 0);
        return origin_ + static_cast<double>(frame) * step();
    }
    void call() {
        const std::uint32_t frames = world_->options.period;
        buffer_.assign(std::size_t{frames} * 2, 0.0F);
        if (input_) {
            listen(frames);
            client_.heard(buffer_);
        } else {
            client_.render(buffer_);
            if (jack_ && world_->options.keepSound) keep();
            resting_ = world_->options.rests && client_.resting();
        }
        done_ += frames;
    }
    void wake() override {
        if (resting_) restart();
    }

  private:
    double step() const { return ticksPerFrame(rate_, jack_ ? jack_->clockError : 0.0); }

    void keep() {
        KeptSound& kept = jack_->kept;
        if (kept.rate == 0) {
            kept.rate = rate_;
            kept.began = origin_;
        }
        // The time in which nothing was sent is silence. A clock of its own is not held against wall time.
        const double start = origin_ + static_cast<double>(done_) * step();
        const auto frame = static_cast<std::uint64_t>(
            std::llround((start - kept.began) / ticksPerFrame(kept.rate, jack_->clockError)));
        if (jack_->clockError == 0 && frame > kept.frames() + 1)
            kept.samples.resize((frame - kept.taken) * 2, 0.0F);
        kept.samples.insert(kept.samples.end(), buffer_.begin(), buffer_.end());
    }

    void listen(std::uint32_t frames) {
        const Fed& fed = jack_->fed;
        const std::size_t length = fed.stereo.size() / 2;
        if (length == 0) return;
        const double perFed = ticksPerFrame(fed.rate, 0);
        for (std::uint32_t i = 0; i < frames; ++i) {
            const double time = origin_ + static_cast<double>(done_ + i) * step();
            const double at = (time - fed.began) / perFed;
            if (at < -1e-6) continue;
            // Of equal rates every frame is one of the fed ones, to the bit; else a straight line lies
            // between.
            const double nearest = std::round(at);
            const bool exact = std::abs(at - nearest) < 1e-4;
            const auto index = static_cast<std::size_t>(exact ? nearest : std::floor(at));
            if (index >= length) break;
            const auto part = static_cast<float>(exact ? 0.0 : at - std::floor(at));
            for (std::size_t c = 0; c < 2; ++c) {
                const float a = fed.stereo[index * 2 + c];
                const float b = index + 1 < length ? fed.stereo[index * 2 + 2 + c] : 0.0F;
                buffer_[i * 2 + c] = exact ? a : a + (b - a) * part;
            }
        }
    }

    std::shared_ptr<World> world_;
    Jack* jack_;  ///< null: the no-sound device
    bool input_;
    std::uint32_t rate_;
    engine::SoundClient& client_;
    double origin_ = 0;
    std::uint64_t done_ = 0;  ///< frames since the origin
    bool resting_ = false;
    std::vector<float> buffer_;
};

class Offline final : public OfflineDevices {
  public:
    explicit Offline(OfflineOptions options) : world_(std::make_shared<World>()) {
        options.period = std::max(options.period, 1U);
        for (const auto& name : options.outputs) world_->outputs.push_back(jackNamed(name));
        for (const auto& name : options.inputs) world_->inputs.push_back(jackNamed(name));
        world_->options = std::move(options);
    }

    std::vector<engine::DeviceDescription> outputs() override { return describe(world_->outputs); }
    std::vector<engine::DeviceDescription> inputs() override { return describe(world_->inputs); }
    std::unique_ptr<engine::SoundDevice> openOutput(const std::string& id, std::uint32_t rate,
                                                    engine::SoundClient& client) override {
        return open(world_->outputs, id, false, rate, client);
    }
    std::unique_ptr<engine::SoundDevice> openInput(const std::string& id, std::uint32_t rate,
                                                   engine::SoundClient& client) override {
        return open(world_->inputs, id, true, rate, client);
    }
    std::unique_ptr<engine::SoundDevice> openNoSound(std::uint32_t rate,
                                                     engine::SoundClient& client) override {
        return std::make_unique<Line>(world_, nullptr, false, std::max(rate, 1U), client);
    }
    bool offline() const override { return true; }
    bool oneClock() const override { return !world_->clocksDiffer; }
    bool rests() const override { return world_->options.rests; }

    void pull(std::uint64_t frames, std::uint32_t rate) override {
        const double target = world_->now + static_cast<double>(frames) * ticksPerSecond / std::max(rate, 1U);
        while (Line* line = nextDue(target)) {
            world_->now = std::max(world_->now, line->due());
            line->call();
        }
        world_->now = target;
    }

    std::vector<float> takeSound(const std::string& name) override {
        Jack* jack = world_->find(name);
        if (!jack || jack->kept.rate == 0) return {};
        KeptSound& kept = jack->kept;
        const double passed = (world_->now - kept.began) / ticksPerFrame(kept.rate, jack->clockError);
        const auto end = static_cast<std::uint64_t>(std::max(0.0, std::floor(passed + 1e-6)));
        if (end <= kept.taken) return {};
        const std::uint64_t count = (end - kept.taken) * 2;
        if (kept.samples.size() < count) kept.samples.resize(count, 0.0F);
        const auto last = kept.samples.begin() + static_cast<std::ptrdiff_t>(count);
        std::vector<float> out(kept.samples.begin(), last);
        kept.samples.erase(kept.samples.begin(), last);
        kept.taken = end;
        return out;
    }

    void feedInput(const std::string& name, std::vector<float> stereo, std::uint32_t rate) override {
        if (Jack* jack = world_->find(name)) jack->fed = {std::move(stereo), std::max(rate, 1U), world_->now};
    }

    void unplug(const std::string& name) override {
        Jack* jack = world_->find(name);
        if (!jack || !jack->plugged) return;
        jack->plugged = false;
        for (Line* line : linesOf(jack)) line->client().deviceLost();
    }
    void plug(const std::string& name) override {
        Jack* jack = world_->find(name);
        if (!jack || jack->plugged) return;
        jack->plugged = true;
        for (Line* line : linesOf(jack)) {
            line->restart();
            line->client().deviceBack();
        }
    }
    void hang(const std::string& name, bool on) override {
        Jack* jack = world_->find(name);
        if (!jack || jack->hangs == on) return;
        jack->hangs = on;
        for (Line* line : linesOf(jack))
            if (!on) line->restart();
    }
    void setPeriod(std::uint32_t frames) override { world_->options.period = std::max(frames, 1U); }
    void setClockError(const std::string& name, double partsPerMillion) override {
        Jack* jack = world_->find(name);
        if (!jack) return;
        for (Line* line : linesOf(jack)) line->anchor();
        jack->clockError = std::clamp(partsPerMillion, -100'000.0, 100'000.0);
        world_->clocksDiffer = true;
    }

  private:
    static std::unique_ptr<Jack> jackNamed(const std::string& name) {
        auto jack = std::make_unique<Jack>();
        jack->name = name;
        return jack;
    }
    static std::vector<engine::DeviceDescription> describe(const std::vector<std::unique_ptr<Jack>>& jacks) {
        std::vector<engine::DeviceDescription> list;
        for (const auto& jack : jacks)
            if (jack->plugged) list.push_back({jack->name, jack->name, list.empty(), 0});
        return list;
    }
    std::unique_ptr<engine::SoundDevice> open(const std::vector<std::unique_ptr<Jack>>& jacks,
                                              const std::string& id, bool input, std::uint32_t rate,
                                              engine::SoundClient& client) {
        if (rate == 0) return nullptr;
        for (const auto& jack : jacks)
            if (jack->plugged && (id.empty() || jack->name == id))
                return std::make_unique<Line>(world_, jack.get(), input, rate, client);
        return nullptr;
    }
    std::vector<Line*> linesOf(const Jack* jack) const {
        std::vector<Line*> found;
        std::copy_if(world_->lines.begin(), world_->lines.end(), std::back_inserter(found),
                     [&](const Line* line) { return line->jack() == jack; });
        return found;
    }
    /// The device to be called next before time `target` is reached; an input before an output at one moment.
    Line* nextDue(double target) const {
        Line* best = nullptr;
        for (Line* line : world_->lines) {
            if (!line->running()) continue;
            const double due = line->due();
            const double limit = line->input() ? target + 0.5 : target - 0.5;
            if (due > limit) continue;
            const double lead = best ? best->due() - due : 1;
            if (!best || lead > 0.5 || (lead > -0.5 && line->input() && !best->input())) best = line;
        }
        return best;
    }

    std::shared_ptr<World> world_;
};

}  // namespace

std::shared_ptr<OfflineDevices> makeOfflineDevices(OfflineOptions options) {
    return std::make_shared<Offline>(std::move(options));
}

}  // namespace zv
