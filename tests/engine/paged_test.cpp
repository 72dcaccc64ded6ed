// Which pages of a decoded file are in memory, in which order they come, and what is read from them.
#include <sstream>

#include <gtest/gtest.h>

#include "engine/sources/paged_sound.h"
#include "tests/engine/made_sounds.h"

namespace zv::engine::test {
namespace {

constexpr std::uint64_t kPage = PagedSound::kPage;

/// A ramp in pages, with an account of every page that came.
struct Pages {
    explicit Pages(std::uint64_t pages, std::uint64_t more = 0, std::uint32_t channels = 2)
        : length(pages * kPage + more),
          sound(std::make_unique<MadeDecoder>(
                    Made{.format = {44100, channels, 16}, .length = length, .sample = ramp}, &seeks),
                length, renders) {}
    bool there(std::uint64_t page) const { return sound.page(page) != nullptr; }
    /// What is in memory: "0-4 8".
    std::string held() const {
        std::ostringstream out;
        for (std::uint64_t page = 0; page <= length / kPage; ++page) {
            if (!there(page) || (page > 0 && there(page - 1))) continue;
            std::uint64_t last = page;
            while (there(last + 1)) ++last;
            out << (out.tellp() > 0 ? " " : "") << page;
            if (last > page) out << '-' << last;
        }
        return out.str();
    }
    /// Serves all that is wanted: "urgency: pages in their order = what is in memory then".
    std::string serve() {
        std::ostringstream out;
        out << sound.urgency() << ':';
        for (std::vector<bool> before;;) {
            before.clear();
            for (std::uint64_t page = 0; page <= length / kPage; ++page) before.push_back(there(page));
            if (!sound.service()) break;
            for (std::uint64_t page = 0; page <= length / kPage; ++page)
                if (there(page) && !before[page]) out << ' ' << page;
        }
        out << " = " << held();
        return out.str();
    }
    void at(std::uint64_t page) { sound.setFocus(page * kPage + 7); }

    std::uint64_t length;
    int seeks = 0;
    RenderCount renders{0};
    PagedSound sound;
};

TEST(Paged, WhatIsWantedComesInTheOrderOfItsNeed) {
    Pages p(216);
    p.sound.ensure(0, 17640);
    EXPECT_EQ(p.held(), "0-4") << "the first 0.4 s";
    EXPECT_EQ(p.serve(), "-1: = 0-4") << "0.3 s from the position are there";
    p.sound.setHead(100 * kPage + 10);
    EXPECT_FALSE(p.sound.readyAt(100 * kPage + 10));
    EXPECT_EQ(p.serve(), "100: 99 100 101 102 103 = 0-4 99-103")
        << "the head, and what filters read before it";
    EXPECT_TRUE(p.sound.readyAt(100 * kPage + 10));
    EXPECT_TRUE(p.sound.readyAt(100 * kPage + 1023));
    EXPECT_FALSE(p.sound.readyAt(100 * kPage + 1024)) << "a page short";
    p.at(100);
    p.sound.setSounding(true);
    EXPECT_EQ(p.serve(), "4: 104 105 106 107 108 = 0-4 99-108") << "0.75 s ahead";
    p.at(103);
    EXPECT_EQ(p.serve(), "6: 109 110 111 = 0-4 99-111");
    // The loop's start is wanted as soon as it may be wrapped to. With more than enough in memory, what nobody wants
    // goes, but for the page behind the present one.
    p.sound.setLoopStart(50 * kPage);
    EXPECT_EQ(p.sound.urgency(), -1);
    p.sound.setLoop(true);
    p.at(105);
    EXPECT_EQ(p.serve(), "0: 50 51 52 53 112 113 = 50-53 99-113");
    p.at(150);
    EXPECT_EQ(p.serve(), "0: 150 151 152 153 154 155 156 157 158 = 50-53 99-103 150-158");
    p.sound.setSounding(false);
    p.sound.setLoop(false);
    p.sound.ensure(200 * kPage, 16 * kPage);
    p.sound.tidy();
    EXPECT_EQ(p.held(), "99-103 150-153");
    p.at(214);
    EXPECT_EQ(p.serve(), "100: 214 215 = 99-103 150-153 214-215") << "no more than there is";
    EXPECT_EQ(p.seeks, 6) << "none within pages in a row";
}

TEST(Paged, AShortSoundIsDecodedInOneGo) {
    Pages p(20, 100);
    p.sound.ensure(10 * kPage, 1);
    EXPECT_EQ(p.held(), "0-10") << "from its beginning, whatever is asked for";
    EXPECT_EQ(p.serve(), "1000: 11 12 13 14 15 16 17 18 19 20 = 0-20");
    EXPECT_EQ(p.seeks, 0);
    p.at(3);
    p.sound.tidy();
    EXPECT_EQ(p.serve(), "-1: = 0-20");
    const auto used = std::make_shared<int>();
    PagedSound whole(std::make_unique<MadeDecoder>(
                         Made{.length = 2 * kPage, .sample = [used](auto f, auto c) { return ramp(f, c); }}),
                     2 * kPage, p.renders);
    whole.ensure(0, 2 * kPage);
    EXPECT_EQ(used.use_count(), 1) << "its decoder is needed no more";
    // Longer than 10 s, or with more samples than 1.2 millions, it is not short.
    EXPECT_EQ(Pages(107).sound.urgency(), 100);
    EXPECT_EQ(Pages(108).serve(), "100: 0 1 2 3 = 0-3");
    EXPECT_EQ(Pages(90, 0, 4).serve(), "100: 0 1 2 3 = 0-3");
}

TEST(Paged, ReadsAndMeasuresAcrossPages) {
    for (const std::uint32_t channels : {1U, 2U}) {
        Pages p(200, 10, channels);
        const auto read = [&](std::uint64_t from, std::size_t frames) {
            std::vector<float> out(frames * channels);
            const std::size_t got = p.sound.readAt(from, out);
            for (std::size_t i = 0; i < got * channels; ++i)
                EXPECT_EQ(out[i], ramp(from + i / channels, static_cast<std::uint32_t>(i % channels)))
                    << from << ' ' << i;
            return got;
        };
        EXPECT_EQ(read(5 * kPage - 3, 3 * kPage), 3 * kPage);
        EXPECT_EQ(read(200 * kPage, 100), 10U);
        EXPECT_EQ(read(200 * kPage + 10, 1), 0U);
        EXPECT_EQ(p.held(), "4-7 200");
        // Three frames, then a page that is not there.
        float peak[2]{};
        double power[2]{};
        p.sound.measure(8 * kPage - 3, 9, -2, peak, power);
        double sum[2]{};
        for (std::uint64_t f = 8 * kPage - 3; f < 8 * kPage; ++f)
            for (std::uint32_t side = 0; side < 2; ++side)
                sum[side] += std::pow(2 * ramp(f, side % channels), 2);
        for (std::uint32_t side = 0; side < 2; ++side) {
            EXPECT_FLOAT_EQ(peak[side], 2 * ramp(8 * kPage - 1, side % channels));
            EXPECT_NEAR(power[side], sum[side], 1e-6 * sum[side]);
        }
        p.sound.measure(200 * kPage + 9, 100, 1, peak, power);
        EXPECT_EQ(peak[0], ramp(200 * kPage + 9, 0)) << "nothing behind the end";
        const PlayRange none{.end = p.length};
        EXPECT_EQ(p.sound.range(), none);
        p.sound.setEnd(50);
        p.sound.setLoopStart(50);
        EXPECT_EQ(p.sound.range(), PlayRange{.end = 50}) << "a loop from its end is one from the start";
        p.sound.setLoopStart(49);
        EXPECT_EQ(p.sound.range().loopStart, 49U);
    }
}

/// Gives less than it promised, or fails at a certain page.
struct Damaged final : Decoder {
    std::uint64_t at = 0, ends, fails;
    Damaged(std::uint64_t end, std::uint64_t fail) : ends(end), fails(fail) {}
    SoundFormat format() const override { return {44100, 1, 16}; }
    std::optional<std::uint64_t> length() const override { return 200 * kPage; }
    std::size_t read(std::span<float> out) override {
        if (at == fails) throw 1;
        const std::size_t n = std::min<std::size_t>({out.size(), 1000, ends - std::min(at, ends)});
        for (std::size_t i = 0; i < n; ++i) out[i] = ramp(at++, 0);
        return n;
    }
    bool seek(std::uint64_t frame) override { return frame != 30 * kPage && (at = frame, true); }
    bool ended() const override { return at >= ends; }
};

TEST(Paged, WhatADecoderDoesNotDeliverIsSilence) {
    RenderCount renders{0};
    PagedSound sound(std::make_unique<Damaged>(3 * kPage + 5, kPage), 200 * kPage, renders);
    std::vector<float> out(kPage);
    const auto heard = [&](std::uint64_t frame) {
        return sound.readAt(frame, {out.data(), 1}) == 1 ? frameOf(out[0]) : -1;
    };
    EXPECT_EQ(heard(7), 7);
    EXPECT_EQ(heard(kPage + 7), 0) << "it failed there";
    EXPECT_EQ(heard(2 * kPage + 7), 2 * kPage + 7) << "and goes on at the right place";
    EXPECT_EQ(heard(3 * kPage + 4), 3 * kPage + 4);
    EXPECT_EQ(heard(3 * kPage + 5), 0) << "it ended early";
    EXPECT_EQ(heard(4 * kPage), 0);
    EXPECT_EQ(heard(30 * kPage), 0) << "it could not be moved";
    EXPECT_EQ(heard(2 * kPage), 2 * kPage);
}

}  // namespace
}  // namespace zv::engine::test
