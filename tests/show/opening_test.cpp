// From keys to channels: what a file makes of its slot, also one that is missing, empty, cut or no sound at
// all.

#include "startup/settings/editor_settings.h"
#include "tests/show/show.h"

namespace zv::test {
namespace {

class Opening : public ShowTest {
  protected:
    void openFile(const std::string& name, const std::string& more = {}) {
        openPalette(iniLine("Path_0", name) + more);
    }
};

TEST_F(Opening, FilesThatCannotPlayShowItAndDisturbNothing) {
    writeWav(path("good.wav"), level(44100));
    const std::string good = read("good.wav");
    struct File {
        const char* name;
        std::string bytes;
        bool plays, missing, unplayable;
        int error;
    };
    const std::vector<File> files{
        {"good.wav", good, true, false, false, BASS_OK},
        {"module_named.mp3", good, true, false, false, BASS_OK},  // a wave file under another name
        {"cut.wav", good.substr(0, 20000), true, false, false, BASS_OK},
        {"empty.wav", "", false, false, true, BASS_ERROR_FILEFORM},
        {"header_only.wav", good.substr(0, 44), false, false, true, BASS_ERROR_FILEFORM},
        {"text.mp3", std::string(5000, 'x'), false, false, true, BASS_ERROR_FILEFORM},
        {"broken.it", "IMPM" + std::string(300, '\xFF'), false, false, true, BASS_ERROR_FILEFORM},
    };
    std::vector<std::string> told;
    audioUpcalls.slotFailed = [&](int) { told.push_back("failed"); };
    audioUpcalls.slotLoaded = [&](int) { told.push_back("loaded"); };
    audioUpcalls.fileMissing = [&](int) { told.push_back("missing"); };
    audioUpcalls.feedback = [&](int, Feedback what) {
        if (what == Feedback::loaded) told.push_back("loaded light");
        if (what == Feedback::failed) told.push_back("failed light");
    };
    // One jingle sounds all the while.
    openJingle(level(framesOf(3000)), iniLine("Loop_5", "1"), 5);
    clPlay(5, -1);
    pass(50);
    for (const File& file : files) {
        SCOPED_TRACE(file.name);
        told.clear();
        write(file.name, file.bytes);
        openFile(file.name, iniLine("Volm_0", "30") + iniLine("Loop_0", "1"));
        EXPECT_EQ(jingle().Kind == SlotKind::stream, file.plays);
        EXPECT_EQ(jingle().MissingFile, file.missing);
        EXPECT_EQ(jingle().Unplayable, file.unplayable);
        EXPECT_EQ(jingle().BassErr, file.error);
        EXPECT_EQ(jingle().hPlay != 0, file.plays);
        EXPECT_EQ(jingle().Volm, file.plays ? 30 : 100);
        EXPECT_EQ(jingle().Loop, file.plays ? 1 : 0);
        EXPECT_EQ(told, file.plays ? (std::vector<std::string>{"loaded light", "loaded"})
                                   : (std::vector<std::string>{"failed", "failed light"}));
        clPlay(0, -1);
        pass(20);
        clPlay(0, -1);
        EXPECT_TRUE(sounds(5));
    }
    told.clear();
    openFile("gone.wav");
    EXPECT_TRUE(jingle().MissingFile);
    EXPECT_FALSE(jingle().Unplayable);
    EXPECT_EQ(jingle().BassErr, BASS_ERROR_FILEOPEN);
    EXPECT_EQ(told, (std::vector<std::string>{"missing", "failed", "failed light"}));
    const Heard sound = heard();
    for (std::size_t frame = 441; frame < sound.frames(); ++frame) ASSERT_GE(sound.at(frame), 0.49F) << frame;
    EXPECT_EQ(reports, std::vector<std::string>());
}

TEST_F(Opening, ATrackerModuleOpensAsOne) {
    // The smallest of its kind: four channels, one pattern, one sample.
    std::string module(20, '\0');
    module.replace(0, 4, "tune");
    for (int i = 0; i < 31; ++i) {
        std::string sample(30, '\0');
        if (i == 0) sample[23] = 32, sample[25] = 64;  // 64 bytes, full volume
        module += sample;
    }
    module += '\1';
    module += '\x7F';
    module += std::string(128, '\0') + "M.K.";
    std::string pattern(1024, '\0');
    pattern[0] = 0x01, pattern[1] = static_cast<char>(0xAC), pattern[2] = 0x10;
    module += pattern;
    for (int i = 0; i < 64; ++i) module += static_cast<char>(i < 32 ? 100 : -100);
    write("tune.mod", module);
    openFile("tune.mod");
    EXPECT_EQ(jingle().Kind, SlotKind::stream);
    EXPECT_GT(jingle().Duration, 1);
    heard();
    clPlay(0, -1);
    pass(100);
    EXPECT_LT(heard().firstSound(), framesOf(100));
}

TEST_F(Opening, ComputedFields) {
    writeWav(path("mono.wav"), level(24000), 24000, 1);  // 48000 samples of one channel: two seconds
    writeWav(path("stereo.wav"), level(88200));
    struct Row {
        const char* name;
        std::string file, lines;
        double duration, endOffset, loopOut;
        int freq;
    };
    const std::vector<Row> rows{
        {"plain", "stereo.wav", "", 2, 0, 352800, 44100},
        {"mono of another rate", "mono.wav", "", 2, 0, 96000, 24000},
        {"cue", "stereo.wav", "CueStart_0=88200\r\n", 1.5, 0, 352800, 44100},
        {"stop", "stereo.wav", "StopPos_0=176400\r\n", 1, 176400, 352800, 44100},
        {"the fade counts to the part that is cut", "stereo.wav", "StopPos_0=176400\r\nFadeOut_0=500\r\n",
         0.5, 264600, 352800, 44100},
        {"never below zero", "stereo.wav", "StopPos_0=176400\r\nFadeOut_0=5000\r\n", 0, 1058400, 352800,
         44100},
        {"stop behind the end", "stereo.wav", "StopPos_0=999999999\r\n", 2, 0, 352800, 44100},
        {"cue behind the end", "stereo.wav", "CueStart_0=999999999\r\n", 2, 0, 352800, 44100},
        {"loop end of its own", "stereo.wav", "LoopOut_0=400\r\n", 2, 0, 400, 44100},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        openFile(row.file, row.lines);
        EXPECT_DOUBLE_EQ(jingle().Duration, row.duration);
        EXPECT_DOUBLE_EQ(jingle().EndOffset, row.endOffset);
        EXPECT_DOUBLE_EQ(jingle().LoopOut, row.loopOut);
        EXPECT_EQ(jingle().Freq, row.freq);
        EXPECT_EQ(jingle().FXV, "0,0,0,0,0,0,0,0,0," + std::to_string(row.freq) + ",0");
    }
}

TEST_F(Opening, LongJinglesDuckUnlessToldOtherwise) {
    writeWav(path("long.wav"), std::vector<std::int16_t>(8000 * 121), 8000, 1);
    struct Row {
        const char* name;
        std::string lines;
        std::vector<int> autoDuck;  ///< at one opening after the other
    };
    const std::vector<Row> rows{
        {"no key", "", {1, 1}},
        {"chosen", "AutoDuck_0=2\r\n", {2, 2}},
        {"ducks", "AutoDuck_0=1\r\n", {1, 1}},
        {"written as zero", "AutoDuck_0=0\r\n", {0, 0}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        openPalette("");
        for (const int expected : row.autoDuck) {
            openFile("long.wav", row.lines);
            EXPECT_EQ(jingle().AutoDuck, expected);
            EXPECT_EQ(jingle().NoTrigDuck, expected == 1 ? 1 : 0);
        }
    }
}

TEST_F(Opening, AChannelThatSoundsIsNeverTakenAway) {
    openJingle(level(framesOf(5000)), iniLine("Volm_0", "90"));
    clPlay(0, -1);
    pass(100);
    const std::uint32_t channel = jingle().hPlay;
    heard();
    writeWav(path("other.wav"), level(1000));
    for (const auto& [name, opening] : std::vector<std::pair<const char*, std::function<void()>>>{
             {"another palette", [&] { openPalette("Path_0=other.wav\r\n", "Evening"); }},
             {"an empty one", [&] { openPalette("", "Night"); }},
             {"none",
              [&] {
                  openNames(0, "", false);
                  openStreams(0);
              }},
             {"its slot alone", [&] { openStreams(0); }}}) {
        SCOPED_TRACE(name);
        opening();
        EXPECT_TRUE(jingle().PlayingOtherPal);
        EXPECT_EQ(jingle().hPlay, channel);
        EXPECT_EQ(jingle().Volm, 90);
        pass(100);
    }
    const Heard sound = heard();
    for (std::size_t frame = 0; frame < sound.frames(); ++frame) ASSERT_NEAR(sound.at(frame), 0.45F, 1e-4F);
    clPlay(0, -1);
    EXPECT_FALSE(sounds()) << "it is stopped like any other";
}

TEST_F(Opening, SlotsWithoutAButtonStayEmpty) {
    writeWav(path("a.wav"), level(1000));
    JExists[0] = 0;
    openFile("a.wav");
    EXPECT_EQ(jingle().Path, "");
    EXPECT_EQ(jingle().Kind, SlotKind::nothing);
    for (const int index : {-1, 120, 4711}) {
        openNames(index, kPalette, false);
        openStreams(index);
    }
    EXPECT_EQ(reports, std::vector<std::string>());
}

TEST_F(Opening, EffectsAreOnFromTheStart) {
    const std::vector<std::int16_t> file = sine(framesOf(3000), 1000, 0.25);
    struct Row {
        const char* name;
        std::string lines;
        double dB;       ///< of the 1000 Hz band against the file
        double seconds;  ///< how long it sounds
    };
    const std::vector<Row> rows{
        {"neutral", "", 0, 3},
        {"short vector", "FXV_0=0,0\r\n", 0, 3},
        {"the slider's sign is turned", "FXV_0=0,0,0,-6,0,0,0,0,0,44100,0\r\n", 6, 3},
        {"two and a half octaves wide", "FXV_0=0,0,0,0,-6,0,0,0,0,44100,0\r\n", 3, 3},
        {"cut", "FXV_0=0,0,0,6,0,0,0,0,0,44100,0\r\n", -6, 3},
        {"tempo", "FXV_0=0,0,0,0,0,0,0,0,25,44100,0\r\n", 0, 2.4},
        {"rate", "FXV_0=0,0,0,0,0,0,0,0,0,66150,0\r\n", 0, 2},
        {"pitch keeps the length", "FXV_0=0,0,0,0,0,0,0,0,0,44100,5\r\n", 0, 3},
        {"volume", "Volm_0=25\r\n", -12.04, 3},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        openJingle(file, row.lines);
        clPlay(0, -1);
        pass(4000);
        const Heard sound = heard();
        const double loudest = sound.loudest(framesOf(500), framesOf(1500));
        EXPECT_NEAR(20 * std::log10(loudest / 0.25), row.dB, 0.3);
        EXPECT_NEAR(static_cast<double>(sound.end(1e-4F)) / kRate, row.seconds, 0.03);
    }
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

}  // namespace
}  // namespace zv::test
