#include "engine/sources/paged_sound.h"

#include <algorithm>
#include <cmath>

#include "engine/dsp/level_meter.h"
#include "engine/dsp/mix.h"
#include "engine/realtime/thread_tags.h"

namespace zv::engine {
namespace {

constexpr double kHeadSeconds = 0.3;
constexpr double kAheadSeconds = 0.75;
constexpr std::uint64_t kLeadFrames = 1024;  ///< in front of a position, which filters read before it
constexpr double kWholeSeconds = 10.0;
constexpr std::uint64_t kWholeSamples = 1'200'000;  ///< 4.8 MB

std::uint64_t pagesFor(double seconds, std::uint32_t rate) {
    return static_cast<std::uint64_t>(seconds * rate) / PagedSound::kPage + 1;
}

}  // namespace

PagedSound::PagedSound(std::unique_ptr<Decoder> decoder, std::uint64_t length, const RenderCount& renders)
    : format_(decoder->format()),
      length_(length),
      pageSamples_(std::size_t{kPage} * format_.channels),
      renders_(renders),
      keepWhole_(static_cast<double>(length) <= kWholeSeconds * format_.rate &&
                 length * format_.channels <= kWholeSamples),
      headPages_(pagesFor(kHeadSeconds, format_.rate)),
      aheadPages_(pagesFor(kAheadSeconds, format_.rate)),
      pages_((length + kPage - 1) / kPage),
      decoder_(std::move(decoder)),
      owned_(pages_.size()) {}

PlayRange PagedSound::range() const {
    PlayRange range;
    range.loop = loop_.load(std::memory_order_acquire);
    range.loopStart = loopStart_.load(std::memory_order_acquire);
    range.end = end();
    if (range.loopStart >= range.end) range.loopStart = 0;
    return range;
}

PagedSound::Wanted PagedSound::window(std::uint64_t frame, std::uint64_t pages) const {
    const std::uint64_t first = std::min<std::uint64_t>(frame / kPage, pages_.size());
    return {first, std::min<std::uint64_t>(first + pages, pages_.size())};
}

PagedSound::Wanted PagedSound::headWindow(std::uint64_t frame) const {
    const std::uint64_t lead = std::min(frame, kLeadFrames);
    return window(frame - lead, headPages_ + (lead + kPage - 1) / kPage);
}

PagedSound::Windows PagedSound::windows() const {
    Windows w;
    w.head = headWindow(head_.load(std::memory_order_acquire));
    const PlayRange r = range();
    if (r.loop) w.loop = window(r.loopStart, headPages_);
    w.ahead = window(focus(), sounding() ? aheadPages_ : headPages_);
    return w;
}

template <typename F>
bool PagedSound::eachMissing(F found) const {
    const Windows w = windows();
    const std::uint64_t most = std::max(aheadPages_, headPages_);
    for (std::uint64_t distance = 0; distance < most; ++distance) {
        for (const Wanted* part : {&w.ahead, &w.head, &w.loop}) {
            const std::uint64_t index = part->first + distance;
            if (index < part->last && !page(index) && found(index, distance)) return true;
        }
    }
    return false;
}

int PagedSound::urgency() const {
    int result = -1;
    eachMissing([&](std::uint64_t, std::uint64_t distance) {
        result = static_cast<int>(distance) + (sounding() ? 0 : 100);
        return true;
    });
    if (result >= 0 || !keepWhole_) return result;
    return resident_.load(std::memory_order_relaxed) < pages_.size() ? 1000 : -1;
}

bool PagedSound::readyAt(std::uint64_t frame) const {
    const Wanted w = headWindow(frame);
    for (std::uint64_t index = w.first; index < w.last; ++index)
        if (!page(index)) return false;
    return true;
}

bool PagedSound::service() {
    assertNotAudioThread();
    std::unique_lock lock(mutex_, std::try_to_lock);
    if (!lock) return false;
    clean();
    if (eachMissing([&](std::uint64_t index, std::uint64_t) { return load(index); })) return true;
    return keepWhole_ && load(resident_.load(std::memory_order_relaxed));
}

void PagedSound::ensure(std::uint64_t frame, std::uint64_t frames) {
    assertNotAudioThread();
    const std::uint64_t end = std::min(frame + frames, length_);
    for (std::uint64_t index = frame / kPage; index * kPage < end; ++index) {
        const std::lock_guard lock(mutex_);
        load(index);
    }
}

void PagedSound::tidy() {
    assertNotAudioThread();
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (lock) clean();
}

bool PagedSound::crowded() const {
    // Some pages more than wanted do no harm, and looking through all of them costs.
    constexpr std::uint64_t slack = 6;
    return !keepWhole_ && resident_.load(std::memory_order_relaxed) > 2 * headPages_ + aheadPages_ + slack;
}

void PagedSound::measure(std::uint64_t frame, std::uint64_t count, float gain, float (&peak)[2],
                         double (&power)[2]) const {
    const float size = std::abs(gain);
    readers_.fetch_add(1, std::memory_order_seq_cst);
    while (count > 0 && frame < length_) {
        const std::uint64_t n = std::min<std::uint64_t>({count, kPage - frame % kPage, length_ - frame});
        if (const float* samples = page(frame / kPage)) {
            samples += frame % kPage * format_.channels;
            const dsp::StereoSums sums =
                format_.channels == 1 ? dsp::measureMono(samples, n) : dsp::measureStereo(samples, n);
            peak[0] = std::max(peak[0], sums.peakLeft * size);
            peak[1] = std::max(peak[1], sums.peakRight * size);
            power[0] += static_cast<double>(sums.powerLeft) * size * size;
            power[1] += static_cast<double>(sums.powerRight) * size * size;
        }
        frame += n;
        count -= n;
    }
    readers_.fetch_sub(1, std::memory_order_seq_cst);
}

std::size_t PagedSound::readAt(std::uint64_t frame, std::span<float> out) {
    assertNotAudioThread();
    const std::size_t channels = format_.channels;
    std::size_t done = 0;
    const std::size_t frames = out.size() / channels;
    const std::lock_guard lock(mutex_);
    while (done < frames && frame < length_) {
        const std::uint64_t index = frame / kPage;
        load(index);
        const std::uint64_t offset = frame % kPage;
        const std::size_t n = static_cast<std::size_t>(
            std::min<std::uint64_t>({frames - done, kPage - offset, length_ - frame}));
        std::copy_n(page(index) + offset * channels, n * channels, out.data() + done * channels);
        done += n;
        frame += n;
    }
    return done;
}

bool PagedSound::load(std::uint64_t index) {
    if (index >= pages_.size() || page(index)) return false;
    // A sound that is kept whole is decoded in one go from its beginning: no seek, so nothing depends on one.
    for (std::uint64_t from = keepWhole_ ? resident_.load(std::memory_order_relaxed) : index; from <= index;
         ++from) {
        auto memory = std::make_unique<float[]>(pageSamples_);
        decodeInto(memory.get(), from);
        owned_[from] = std::move(memory);
        pages_[from].store(owned_[from].get(), std::memory_order_seq_cst);
        resident_.fetch_add(1, std::memory_order_relaxed);
    }
    return true;
}

void PagedSound::decodeInto(float* to, std::uint64_t index) {
    const std::uint64_t start = index * kPage;
    try {
        if (decoderAt_ != start && !decoder_->seek(start)) return;
        decoderAt_ = start;
        // What the decoder does not deliver is silence: positions stay true whatever the file holds.
        const std::size_t samples =
            static_cast<std::size_t>(std::min<std::uint64_t>(kPage, length_ - start)) * format_.channels;
        std::size_t got = 0;
        while (got < samples) {
            const std::size_t frames = decoder_->read({to + got, samples - got});
            if (frames == 0) break;
            got += frames * format_.channels;
            decoderAt_ += frames;
        }
        dsp::makeHarmless({to, got});
    } catch (...) {
        decoderAt_ = ~std::uint64_t{0};
    }
    // Kept whole and all there: the decoder is needed no more.
    if (keepWhole_ && resident_.load(std::memory_order_relaxed) + 1 >= pages_.size()) decoder_.reset();
}

void PagedSound::dropUnwanted() {
    const Windows w = windows();
    for (std::uint64_t index = 0; index < owned_.size(); ++index) {
        // The page behind the present one stays: a reader may stand a little behind what it has published.
        if (!owned_[index] || w.holds(index) || w.holds(index + 1)) continue;
        pages_[index].store(nullptr, std::memory_order_seq_cst);
        retired_.push_back({std::move(owned_[index]), renders_.load(std::memory_order_seq_cst)});
        resident_.fetch_sub(1, std::memory_order_relaxed);
    }
}

void PagedSound::clean() {
    if (crowded()) dropUnwanted();
    if (retired_.empty() || readers_.load(std::memory_order_seq_cst) != 0) return;
    const std::uint64_t now = renders_.load(std::memory_order_seq_cst);
    // Even epoch: no render ran when the page was removed, and a later one cannot find it.
    std::erase_if(retired_, [&](const Retired& r) { return r.render % 2 == 0 || r.render != now; });
}

}  // namespace zv::engine
