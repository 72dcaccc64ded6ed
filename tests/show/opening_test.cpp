// From keys to channels: what a file makes of its slot, also one that is missing, empty, cut or no sound.

#include <random>

#include "audio/sounding.h"
#include "platform/decoders.h"
#include "platform/rehearsal/virtual_jobs.h"
#include "startup/settings/editor_settings.h"
#include "tests/show/show.h"
#include "tests/support/ear.h"

namespace zv::test {
namespace {

class Opening : public ShowTest {
  protected:
    void openFile(const std::string& name, const std::string& more = {}) {
        openPalette(iniLine("Path_0", name) + more);
    }
};

TEST_F(Opening, FilesBecomeRecordsAndDisturbNothing) {
    writeWav(path("good.wav"), level(88200));
    const std::string good = read("good.wav");
    writeWav(path("mono.wav"), level(24000), 24000, 1);  // 48000 samples of one channel: two seconds
    writeWav(path("long.wav"), std::vector<std::int16_t>(8000UL * 121), 8000, 1);
    writeWav(path("edge.wav"), std::vector<std::int16_t>(8000UL * 120), 8000, 1);
    write("named.mp3", good);  // under another name
    write("cut.wav", good.substr(0, 40044));
    write("empty.wav", "");
    write("header_only.wav", good.substr(0, 44));
    write("text.mp3", std::string(5000, 'x'));
    write("broken.it", "IMPM" + std::string(300, '\xFF'));
    write("notes.txt", good);
    JingleForeColor = 0x123456;
    std::string told;
    for (const auto& [upcall, word] : {std::pair(&AudioUpcalls::slotFailed, "failed "),
                                       {&AudioUpcalls::slotLoaded, "loaded "},
                                       {&AudioUpcalls::fileMissing, "missing "},
                                       {&AudioUpcalls::slotReset, "reset "},
                                       {&AudioUpcalls::namesRead, "names "},
                                       {&AudioUpcalls::slotOpened, "opened "}})
        audioUpcalls.*upcall = [&told, name = word](int i) { told += i == 0 ? name : ""; };
    audioUpcalls.feedback = [&told](int i, Feedback what) {
        if (i != 0) return;
        told += what == Feedback::empty ? "dark " : what == Feedback::loaded ? "lit " : "red ";
    };
    struct File {
        std::string name, keys, becomes;
    };
    const File files[] = {
        // clang-format off
        {"good.wav", "", "Path=good.wav LoopOut=352800 FXV=0,0,0,0,0,0,0,0,0,44100,0 Duration=2 Freq=44100 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"named.mp3", "Volm=30 Loop=1", "Path=named.mp3 Volm=30 Loop=1 LoopOut=352800 FXV=0,0,0,0,0,0,0,0,0,44100,0 Duration=2 Freq=44100 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"cut.wav", "", "Path=cut.wav LoopOut=40000 FXV=0,0,0,0,0,0,0,0,0,44100,0 Duration=0.2267573696 Freq=44100 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"mono.wav", "", "Path=mono.wav LoopOut=96000 FXV=0,0,0,0,0,0,0,0,0,24000,0 Duration=2 Freq=24000 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"good.wav", "CueStart=500 LoopOut=100 Seq=1", "Path=good.wav Seq=1 LoopOut=17640 CueStart=88200 FXV=0,0,0,0,0,0,0,0,0,44100,0 Duration=1.5 Freq=44100 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"good.wav", "CueStart=9000", "Path=good.wav LoopOut=352800 CueStart=1587600 FXV=0,0,0,0,0,0,0,0,0,44100,0 Duration=2 Freq=44100 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"good.wav", "StopPos=1000", "Path=good.wav LoopOut=352800 StopPos=176400 FXV=0,0,0,0,0,0,0,0,0,44100,0 Duration=1 EndOffset=176400 Freq=44100 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"good.wav", "StopPos=1000 FadeOut=500 LogFadeOut=1", "Path=good.wav LoopOut=352800 FadeOut=500 LogFadeOut=1 StopPos=176400 FXV=0,0,0,0,0,0,0,0,0,44100,0 Duration=0.5 EndOffset=264600 FadeAttrib=16777218 Freq=44100 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"good.wav", "StopPos=1000 FadeOut=5000", "Path=good.wav LoopOut=352800 FadeOut=5000 StopPos=176400 FXV=0,0,0,0,0,0,0,0,0,44100,0 EndOffset=1058400 Freq=44100 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"good.wav", "StopPos=9000", "Path=good.wav LoopOut=352800 StopPos=1587600 FXV=0,0,0,0,0,0,0,0,0,44100,0 Duration=2 Freq=44100 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"good.wav", "NoTrigDuck=1 NoAutomix=1 PlayMod=4 BTNCol=102030 LoopFadeOut=1", "Path=good.wav NoAutomix=1 NoTrigDuck=1 LoopOut=352800 LoopFadeOut=1 BTNCol=102030 PlayMod=4 FXV=0,0,0,0,0,0,0,0,0,44100,0 BackRGB=3153936 ForeRGB=16777215 Duration=2 Freq=44100 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"long.wav", "", "Path=long.wav AutoDuck=1 NoTrigDuck=1 LoopOut=1936000 FXV=0,0,0,0,0,0,0,0,0,8000,0 Duration=121 Freq=8000 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"edge.wav", "", "Path=edge.wav LoopOut=1920000 FXV=0,0,0,0,0,0,0,0,0,8000,0 Duration=120 Freq=8000 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"long.wav", "AutoDuck=0", "Path=long.wav AutoDuckKey=0 LoopOut=1936000 FXV=0,0,0,0,0,0,0,0,0,8000,0 Duration=121 Freq=8000 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"long.wav", "AutoDuck=2", "Path=long.wav AutoDuck=2 AutoDuckKey=2 LoopOut=1936000 FXV=0,0,0,0,0,0,0,0,0,8000,0 Duration=121 Freq=8000 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"good.wav", "AutoDuck=1", "Path=good.wav AutoDuck=1 AutoDuckKey=1 NoTrigDuck=1 LoopOut=352800 FXV=0,0,0,0,0,0,0,0,0,44100,0 Duration=2 Freq=44100 Kind=1 hPlay=open hSrc=open | names lit loaded opened "},
        {"empty.wav", "Volm=30 Loop=1", "Path=empty.wav KeepsStored=1 StoredVolm=30 StoredLoop=1 Unplayable=1 BassErr=41 | names failed red opened "},
        {"header_only.wav", "", "Path=header_only.wav KeepsStored=1 Unplayable=1 BassErr=41 | names failed red opened "},
        {"text.mp3", "Seq=1", "Path=text.mp3 KeepsStored=1 StoredSeq=1 Unplayable=1 BassErr=41 | names failed red opened "},
        {"broken.it", "", "Path=broken.it KeepsStored=1 Unplayable=1 BassErr=41 | names failed red opened "},
        {"gone.wav", "Volm=30 AutoDuck=1 FXV=1", "Path=gone.wav AutoDuck=1 AutoDuckKey=1 FXV=1 KeepsStored=1 StoredVolm=30 MissingFile=1 BassErr=2 | names missing failed red opened "},
        {"notes.txt", "Volm=30", " | dark reset reset opened "},
        {"", "", " | dark reset reset opened "},
    };
    openJingle(level(framesOf(3000)), iniLine("Loop_5", "1"), 5);
    clPlay(5, -1);
    pass(10);
    heard();
    std::mt19937 chance(1);
    for (int n = 0; n < 60; ++n) {
        // Each once in an emptied slot, then in any order one after another.
        const bool once = n < static_cast<int>(std::size(files));
        const File& file = files[once ? static_cast<unsigned>(n) : chance() % std::size(files)];
        SCOPED_TRACE(file.name + " " + file.keys);
        const DWORD former = jingle().hPlay;
        if (once) openPalette("");
        told.clear();
        openPalette(paletteLines("Path=" + file.name + " " + file.keys, 0));
        if (!jingle().KeepsStored)  // what they hold then counts for nothing
            jingle().StoredVolm = 100, jingle().StoredLoop = jingle().StoredSeq = 0;
        EXPECT_EQ(wholeRecord(jingle()) + " | " + told, file.becomes);
        EXPECT_EQ(BASS_ChannelGetLength(former, BASS_POS_BYTE), BASS_NO_POSITION) << "it is not freed";
        clPlay(0, -1);
        EXPECT_EQ(Sounds(0), jingle().hPlay != 0);
        BASS_ChannelStop(jingle().hPlay);
        pass(10);
    }
    const Heard sound = heard();
    for (std::size_t frame = 0; frame < sound.frames(); ++frame) ASSERT_GE(sound.at(frame), 0.49F) << frame;
    JingleForeColor = 0;
    EXPECT_EQ(reports, std::vector<std::string>());
}

TEST_F(Opening, ATrackerModuleOpensAsOne) {
    // The smallest of its kind: four channels, one pattern, one sample.
    std::string module(1084 + 1024, '\0');
    module.replace(0, 4, "tune").replace(1080, 4, "M.K.");
    module[20 + 23] = 32, module[20 + 25] = 64;  // 64 bytes, full volume
    module[950] = 1, module[951] = 0x7F;
    module[1084] = 0x01, module[1085] = static_cast<char>(0xAC), module[1086] = 0x10;
    module += std::string(32, 100) + std::string(32, -100);
    write("tune.mod", module);
    openFile("tune.mod");
    EXPECT_EQ(jingle().Kind, SlotKind::stream);
    EXPECT_GT(jingle().Duration, 1);
    heard();
    clPlay(0, -1);
    pass(100);
    EXPECT_LT(heard().firstSound(), framesOf(100));
}

TEST_F(Opening, FewerThanSevenBandsAreReportedAndTheRestStillWorks) {
    editorSettings.EQBands = "60,150,400";
    openJingle(level(framesOf(500)), iniLine("Volm_0", "50"));
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_NE(reports[0].find("modClick.openStreams"), std::string::npos) << reports[0];
    clPlay(0, -1);
    pass(100);
    EXPECT_NEAR(heard().at(framesOf(50)), 0.25, 1e-4);
}

/// Files of a disk that takes 300 ms to answer.
struct SlowDisk : engine::DecoderSource {
    std::shared_ptr<engine::DecoderSource> disk = soundDecoders;
    std::unique_ptr<engine::Decoder> openFile(const std::string& path, int& error) override {
        waitInJob(300);
        return disk->openFile(path, error);
    }
    std::unique_ptr<engine::Decoder> openModule(const std::string& path, int& error) override {
        return disk->openModule(path, error);
    }
    std::unique_ptr<engine::Decoder> openUrl(const std::string&, std::uint32_t, int&) override { return nullptr; }
};

TEST_F(Opening, APressWaitsForADiskThatTakesLong) {
    FreeBASS();
    engine::engineControl()->install({std::make_shared<SlowDisk>(), devices});
    SetupMixers();
    writeWav(path("a.wav"), tones("a500"));
    write("b.wav", "no sound");
    std::string told;
    audioUpcalls.slotWaits = [&](int i) { told += "waits" + std::to_string(i) + " "; };
    audioUpcalls.pressReady = [&](int i, int velocity) {
        told += "ready" + std::to_string(i) + ":" + std::to_string(velocity) + " ";
        clPlay(i, velocity);
    };
    const std::string pressed = "waits0 waits0 waits1 ";
    const std::pair<void (*)(), std::string> ways[] = {{[] {}, pressed + "ready0:64 "},
                                                       {[] { clTouchStop(0); }, pressed},
                                                       {[] { evStop(); }, pressed},
                                                       {[] { FreeJingle(0); }, pressed}};
    for (const auto& [meanwhile, expected] : ways) {
        openPalette("Path_0=a.wav\r\nPath_1=b.wav\r\n");
        EXPECT_TRUE(SlotOpening(0) && SlotOpening(1));
        clPlay(0, 64), clPlay(0, 100), clPlay(1, -1);
        pass(100);
        meanwhile();
        pass(900);
        EXPECT_EQ(told, expected);
        EXPECT_FALSE(SlotOpening(0) || SlotOpening(1));
        EXPECT_EQ(whatIsHeard(heard()), expected == pressed ? "" : "a300-800@-6.0");
        told.clear();
    }
    const std::string failed = "no: Can't play jingle stream from the main button palette";
    EXPECT_EQ(marks, (std::vector<std::string>{"hide", failed, "hide", failed, "hide", "hide", failed}));
}

}  // namespace
}  // namespace zv::test
