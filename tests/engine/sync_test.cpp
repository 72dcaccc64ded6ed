// Syncs: on the right frame, once, never late; what they command acts a period later at most.

#include <future>

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

struct Fired {
    int count = 0;
    QWORD position = 0;
    DWORD channel = 0;
    std::thread::id thread;
    float slideMs = -1;
};

void note(HSYNC, DWORD channel, DWORD, void* user) {
    auto& fired = *static_cast<Fired*>(user);
    ++fired.count;
    fired.channel = channel;
    fired.position = BASS_ChannelGetPosition(channel, BASS_POS_BYTE);
    fired.thread = std::this_thread::get_id();
    if (fired.slideMs >= 0)
        BASS_ChannelSlideAttribute(channel, BASS_ATTRIB_VOL, -1, static_cast<DWORD>(fired.slideMs));
}

class Syncs : public Show {
  protected:
    Topology studio;
    DWORD source = file("one");
    DWORD jingle = studio.jingle(source);
    Fired fired;

    HSYNC at(std::uint64_t frame, DWORD type = BASS_SYNC_POS | BASS_SYNC_ONETIME) {
        return BASS_ChannelSetSync(jingle, type, frame * 4, note, &fired);
    }
};

TEST_F(Syncs, AFadeOrderedThereBeginsAPeriodLaterAtMost) {
    fired.slideMs = 100;
    pull(4410);
    take();
    BASS_ChannelPlay(jingle, false);
    at(1000);
    const std::vector<float> sound = pullAndTake(44100);
    EXPECT_EQ(fired.count, 1);
    EXPECT_EQ(fired.channel, jingle);
    EXPECT_NE(fired.thread, std::this_thread::get_id());
    std::size_t fade = 0;
    while (sound[fade * 2] == 1) ++fade;
    EXPECT_GE(fade, 1000U);
    EXPECT_LE(fade, 1000U + 441);
    std::size_t end = fade;
    while (sound[end * 2] > 0) ++end;
    EXPECT_NEAR(static_cast<double>(end - fade), 4410, 1);
    EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_STOPPED);
}

TEST_F(Syncs, WhatWasRemovedHasGoneFromTheAudioSideToo) {
    // A program sets its stop position anew at every press, and removes the old one.
    for (int press = 0; press < 3; ++press) {
        const HSYNC old = at(100000 + static_cast<std::uint64_t>(press));
        pull(441);
        EXPECT_TRUE(press == 2 || BASS_ChannelRemoveSync(jingle, old));
    }
    const SyncNode* kept = Engine::instance().find(jingle)->audio.syncs;
    ASSERT_TRUE(kept);
    EXPECT_TRUE(kept->frame == 100002 && !kept->next);
}

/// Who frees or removes may throw away what the procedure uses.
TEST_F(Syncs, FreeingAndRemovingWaitForAProcedureThatRuns) {
    struct Gate {
        std::atomic<bool> inside{false}, open{false};
    };
    const auto wait = [](HSYNC, DWORD, DWORD, void* user) {
        auto& gate = *static_cast<Gate*>(user);
        gate.inside = true;
        while (!gate.open) std::this_thread::yield();
    };
    for (const bool frees : {false, true}) {
        Gate gate;
        const DWORD other = studio.jingle(file("one"));
        const HSYNC sync = BASS_ChannelSetSync(other, BASS_SYNC_POS, 100 * 4, wait, &gate);
        BASS_ChannelPlay(other, false);
        auto pulling = std::async(std::launch::async, [&] { pull(882); });
        while (!gate.inside) std::this_thread::yield();
        EXPECT_EQ(BASS_ChannelIsActive(other), BASS_ACTIVE_PLAYING) << "nobody else waits";
        auto gone = std::async(std::launch::async, [&] {
            return frees ? BASS_StreamFree(other) : BASS_ChannelRemoveSync(other, sync);
        });
        EXPECT_EQ(gone.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout) << frees;
        gate.open = true;
        EXPECT_TRUE(gone.get());
        pulling.get();
    }
}

}  // namespace
}  // namespace zv::engine::test
