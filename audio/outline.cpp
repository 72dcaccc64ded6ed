#include "audio/outline.h"

#include <algorithm>
#include <list>
#include <mutex>
#include <utility>

#include "audio/sound_file.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace zv {
namespace {

constexpr std::size_t kKept = 32;
constexpr std::size_t kFramesAtOnce = 1U << 14;

/// The last outlines by file and state of the file, the newest first. [any]
class Kept {
  public:
    Outline find(const std::string& path, const FileState& state) {
        const std::lock_guard lock(mutex_);
        const auto found =
            std::ranges::find_if(all_, [&](const Entry& e) { return e.path == path && e.state == state; });
        if (found == all_.end()) return nullptr;
        all_.splice(all_.begin(), all_, found);
        return found->outline;
    }

    void keep(const std::string& path, const FileState& state, Outline outline) {
        const std::lock_guard lock(mutex_);
        all_.remove_if([&](const Entry& e) { return e.path == path; });
        all_.push_front({path, state, std::move(outline)});
        if (all_.size() > kKept) all_.pop_back();
    }

  private:
    struct Entry {
        std::string path;
        FileState state;
        Outline outline;
    };
    std::mutex mutex_;
    std::list<Entry> all_;
};

Kept& kept() {
    static auto* const all = new Kept;  // a worker that hangs may outlive main()
    return *all;
}

/// What a worker hands over on the way; the interface takes the newest.
struct Way {
    std::mutex mutex;
    Outline newest, whole;

    void put(Outline outline) {
        const std::lock_guard lock(mutex);
        newest = std::move(outline);
    }
    Outline take() {
        const std::lock_guard lock(mutex);
        return std::exchange(newest, nullptr);
    }
};

Outline outlineOf(const std::string& path, Way& way, JobWork& work) {
    const FileState before = fileState(nativePath(path));
    if (Outline known = kept().find(path, before)) return known;
    const std::unique_ptr<engine::Decoder> decoder = OpenSoundFile(path);
    if (!decoder || decoder->format().channels == 0) return nullptr;
    Waveform whole = readWaveform(
        *decoder, work, [&](Waveform part) { way.put(std::make_shared<const Waveform>(std::move(part))); });
    if (work.cancelled()) return nullptr;
    whole.length = whole.frames;
    auto outline = std::make_shared<const Waveform>(std::move(whole));
    // One that was written to meanwhile is outlined anew the next time.
    if (before.exists && fileState(nativePath(path)) == before) kept().keep(path, before, outline);
    return outline;
}

}  // namespace

Job ReadOutline(const std::string& path, std::function<void(const Outline& outline, bool whole)> show) {
    const auto way = std::make_shared<Way>();
    JobOrder order;
    order.name = "modOutline.Read";
    order.lane = JobLane::longer;
    order.work = [way, path](JobWork& work) { way->whole = outlineOf(path, *way, work); };
    order.progressed = [way, show](int, const std::string&) {
        if (const Outline part = way->take()) show(part, false);
    };
    order.done = [way, show] { show(way->whole, true); };
    order.failed = [show](std::exception_ptr) { show(nullptr, true); };
    return startJob(std::move(order));
}

Job ReadSamples(const std::string& path, std::int64_t first, std::int64_t count,
                std::function<void(SampleStretch)> done) {
    return startJob<SampleStretch>(
        "modOutline.Samples",
        [path, first = std::max<std::int64_t>(0, first), count](JobWork& work) {
            SampleStretch stretch;
            const std::unique_ptr<engine::Decoder> decoder = OpenSoundFile(path);
            if (!decoder || decoder->format().channels == 0) return stretch;
            const std::size_t channels = decoder->format().channels;
            const std::size_t right = std::min<std::size_t>(1, channels - 1);
            if (!decoder->seek(static_cast<std::uint64_t>(first))) return stretch;
            stretch.rate = decoder->format().rate;
            stretch.first = first;
            std::vector<float> some(kFramesAtOnce * channels);
            for (auto left = static_cast<std::size_t>(std::max<std::int64_t>(0, count));
                 left > 0 && !work.cancelled();) {
                const std::size_t got =
                    decoder->read(std::span(some).first(std::min(left, kFramesAtOnce) * channels));
                if (got == 0) break;
                for (std::size_t i = 0; i < got; ++i)
                    stretch.frames.push_back({some[i * channels], some[i * channels + right]});
                left -= got;
            }
            return stretch;
        },
        std::move(done));
}

std::optional<std::int64_t> ZeroCrossing(const SampleStretch& stretch, std::int64_t frame) {
    const auto sum = [&](std::int64_t at) {
        const auto& both = stretch.frames[static_cast<std::size_t>(at - stretch.first)];
        return both[0] + both[1];
    };
    const auto crosses = [&](std::int64_t at) {
        return at > stretch.first && at < stretch.end() && (sum(at - 1) < 0) != (sum(at) < 0);
    };
    const auto size = static_cast<std::int64_t>(stretch.frames.size());
    frame = std::clamp(frame, stretch.first, std::max(stretch.first, stretch.end() - 1));
    for (std::int64_t off = 0; off < size; ++off) {
        if (crosses(frame - off)) return frame - off;
        if (crosses(frame + off)) return frame + off;
    }
    return std::nullopt;
}

}  // namespace zv
