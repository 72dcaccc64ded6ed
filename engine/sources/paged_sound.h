/// The decoded sound of a file, in pages of frames. Workers decode the pages that may be wanted next. The
/// audio side reads the pages that are in memory and never waits for one. It follows loop and end itself, frame
/// by frame, so that a change holds from the next wrap on.
///
/// A short sound is decoded whole and stays. Of a long one stay the head of the position last set, the head
/// of the loop's start, and what lies ahead of the present position, also past the end of a loop.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "engine/ports.h"
#include "engine/realtime/frame_reader.h"

namespace zv::engine {

/// Render epoch: raised by one at the beginning and at the end of every render, odd while one runs. A page
/// removed in one epoch is freed once no render of that epoch runs.
using RenderCount = std::atomic<std::uint64_t>;

class PagedSound final : public FrameReader {
  public:
    static constexpr std::uint32_t kPage = 4096;  ///< frames

    /// `keepWhole`: stays in memory once decoded.
    PagedSound(std::unique_ptr<Decoder> decoder, std::uint64_t length, const RenderCount& renders);

    const SoundFormat& format() const { return format_; }
    std::uint64_t length() const { return length_; }

    // ---- where it ends or wraps, as the caller sets it and the audio side reads it [any]
    void setLoop(bool on) { loop_.store(on, std::memory_order_release); }
    void setLoopStart(std::uint64_t frame) { loopStart_.store(frame, std::memory_order_release); }
    void setEnd(std::uint64_t frame) { end_.store(frame, std::memory_order_release); }
    /// The frame after the last, of that. [any]
    std::uint64_t end() const { return std::min(end_.load(std::memory_order_acquire), length_); }
    PlayRange range() const override;

    // ---- what will be wanted [any]
    /// The position that was set: its head stays ready.
    void setHead(std::uint64_t frame) { head_.store(frame, std::memory_order_release); }
    /// Where the audio side stands, and whether it moves.
    void setFocus(std::uint64_t frame) { focus_.store(frame, std::memory_order_release); }
    std::uint64_t focus() const { return focus_.load(std::memory_order_acquire); }
    void setSounding(bool on) { sounding_.store(on, std::memory_order_release); }
    bool sounding() const { return sounding_.load(std::memory_order_acquire); }

    /// Page `index`, or null when it is not there. [audio]
    const float* page(std::uint64_t index) const {
        return index < pages_.size() ? pages_[index].load(std::memory_order_seq_cst) : nullptr;
    }

    /// Whether the sound around `frame` is in memory: what a stretcher reads to begin there. Never waits. [any]
    bool readyAt(std::uint64_t frame) const;

    /// How soon a page is missing: 0 at once .. higher later; -1 when nothing is missing. [worker]
    int urgency() const;
    /// Loads the most wanted page that is missing and drops what is no longer wanted; false when nothing was
    /// to be done or another thread is at it. [worker]
    bool service();
    /// Loads `frames` frames from `frame` on now. [worker] [control]
    void ensure(std::uint64_t frame, std::uint64_t frames);
    /// Copies from `frame` on, loading what is missing. [worker] [control]
    std::size_t readAt(std::uint64_t frame, std::span<float> out) override;
    /// Takes pages away that are no longer wanted, when there are many. [worker] [control]
    void tidy();
    /// Peaks and sums of squares of both sides of `count` mono or stereo frames from `frame` on, times `gain`,
    /// raised into the four values; pages that are not there count as silence. Never waits. [any but audio]
    void measure(std::uint64_t frame, std::uint64_t count, float gain, float (&peak)[2],
                 double (&power)[2]) const;

  private:
    struct Wanted {
        std::uint64_t first = 0, last = 0;  // pages
        bool holds(std::uint64_t index) const { return index >= first && index < last; }
    };
    struct Windows {
        Wanted ahead, loop, head;
        bool holds(std::uint64_t i) const { return ahead.holds(i) || loop.holds(i) || head.holds(i); }
    };
    struct Retired {
        std::unique_ptr<float[]> page;
        std::uint64_t render;
    };

    Windows windows() const;
    Wanted window(std::uint64_t frame, std::uint64_t pages) const;
    Wanted headWindow(std::uint64_t frame) const;
    /// Calls `found(page, distance)` for missing pages in the order of their need until it returns true.
    template <typename F>
    bool eachMissing(F found) const;
    bool crowded() const;
    bool load(std::uint64_t index);
    void decodeInto(float* to, std::uint64_t index);
    void dropUnwanted();
    /// Takes pages away where there are many, and frees those that no render sees any more.
    void clean();

    const SoundFormat format_;
    const std::uint64_t length_;
    const std::size_t pageSamples_;
    const RenderCount& renders_;
    bool keepWhole_;
    std::uint64_t headPages_, aheadPages_;

    std::atomic<bool> loop_{false}, sounding_{false};
    std::atomic<std::uint64_t> loopStart_{0}, end_{~std::uint64_t{0}}, head_{0}, focus_{0};
    std::atomic<std::size_t> resident_{0};
    mutable std::atomic<int> readers_{
        0};  ///< threads that measure peaks: removed pages are kept until none does
    std::vector<std::atomic<float*>> pages_;

    std::mutex mutex_;  // of everything below: the decoder belongs to one thread at a time
    std::unique_ptr<Decoder> decoder_;
    std::uint64_t decoderAt_ = 0;
    std::vector<std::unique_ptr<float[]>> owned_;  // by page
    std::vector<Retired> retired_;
};

}  // namespace zv::engine
