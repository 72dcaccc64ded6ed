// The time announcer and its jingle; and that the same settings sound the same however they came to a channel.
#include "audio/announcer.h"

#include "audio/bring_slot.h"
#include "audio/time_jingle.h"
#include "platform/clock.h"
#include "startup/settings/announcer_settings.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/clock_settings.h"
#include "startup/settings/devices_settings.h"
#include "tests/show/show.h"
#include "tests/support/ear.h"

namespace zv::test {
namespace {

class Announcer : public ShowTest {
  protected:
    Announcer() {
        write("language.ini", "[English]\r\nmLoadTAError=no voice\r\nmLoadJingError=no jingle\r\n");
        writeWav(path("voice.wav"), tones("a2500"));
        writeWav(path("jingle.wav"), tones("c300 d900"));
        writeWav(path("bed.wav"), tones("g9000"));
        announcerSettings.TimeAnnouncer = "voice.wav";
        announcerSettings.TimeAnnMin = 59;
        announcerSettings.TimeAnnSec = 55;
        announcerSettings.TimeAnnDel = 1;
        automixSettings.AutoMixTime = 500;
        audioUpcalls.announcerChanged = [this] { told += "changed "; };
        audioUpcalls.announcementFailed = [this] { told += "failed "; };
    }
    ~Announcer() override { DisarmAnnouncer(); }
    std::string told;
};

TEST_F(Announcer, IsHeardWithItsJingle) {
    // Armed at 0, a bed from 0, the announcement at 500, the jingle at 1500: what is heard until 5000, and the seconds
    // left of the jingle at 1600.
    struct Row {
        const char* name;
        std::string keys;
        const char* heard;
        double left;
        bool voiceMixes = false, jingleMixes = false, oneDevice = false;
    };
    const Row rows[] = {
        {"plain", "", "g0- a500-3000 c1500-1800 d1800-2700", 1.1},
        {"its own volume, start and end", "Volm=50 CueStart=100 StopPos=600 FadeOut=200",
         "g0- a500-3000 c1500-1700@-6.0 d1700-2000~2190@-6.0", 0.2},
        {"a logarithmic fade", "StopPos=600 FadeOut=200 LogFadeOut=1",
         "g0- a500-3000 c1500-1800 d1800-2100~2230", 0.3},
        {"loops", "Loop=1", "g0- a500-3000 c1500-1800 d1800-2700 c2700-3000 d3000-3900 c3900-4200 d4200-",
         1.1},
        {"the announcement takes the bed down", "", "g0-500~990 a500-3000 c1500-1800 d1800-2700", 1.1, true},
        {"the jingle takes both down", "", "g0-1500~1990 a500-1500~1990 c1500-1800 d1800-2700", 1.1, false,
         true},
        {"straight on one device", "Volm=50 CueStart=100 StopPos=600 FadeOut=200",
         "g0-1500~1990 a500-1500~1990 c1500-1700@-6.0 d1700-2000~2190@-6.0", 0.2, false, true, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        FreeBASS();
        deviceSettings.DeviceSingle = row.oneDevice ? 1 : 0;
        row.oneDevice ? bassini(0) : SetupMixers();
        openPalette("Path_1=bed.wav\r\n" + paletteLines("Path=jingle.wav " + row.keys, 0));
        ArmAnnouncer();
        ChooseTimeJingle(0);
        for (const StreamHandle channel : {hTmAnVoice, StreamHandle{hTmAn}, StreamHandle{jingle(1).hPlay}}) {
            float buffer = 1;
            EXPECT_TRUE(BASS_ChannelGetAttribute(channel, BASS_ATTRIB_BUFFER, &buffer) && buffer == 0);
        }
        TmAnnAM = row.voiceMixes, TmJingleAM = row.jingleMixes;
        heard();
        clPlay(1, -1);
        std::string states;
        const auto watch = [&] {
            const bool changed = WatchAnnouncer();
            for (const bool one : {changed, TmAnRunning, TmAnVoicePlaying, TmAnJinglePlaying,
                                   AnnouncementSounds(), TimeJingleSounds()})
                states += one ? '1' : '0';
            states += ' ';
        };
        watch();
        pass(500);
        AnnounceAt(58, 55), AnnounceAt(59, 54);
        AnnounceAt(59, 55);
        watch();
        pass(1000);
        AnnounceAt(TmJingleMin, TmJingleSec);
        pass(100);
        EXPECT_NEAR(TimeJingleLeft(), row.left, 1e-9);
        watch();
        pass(3400);
        watch();
        EXPECT_EQ(states,
                  row.keys == "Loop=1" ? "000000 111010 101111 101101 " : "000000 111010 101111 100000 ");
        EXPECT_EQ(whatIsHeard(heard()), row.heard);
        for (const StreamHandle channel : {hTmAnVoice, StreamHandle{hTmAn}})
            EXPECT_TRUE(TimeJingleSounds() || BASS_ChannelGetPosition(channel, BASS_POS_BYTE) == 0);
        // An hour later, and once more within the second: from its beginning, at full level.
        AnnounceAt(59, 55);
        pass(700);
        AnnounceAt(59, 55);
        pass(2600);
        EXPECT_EQ(levelsOf(heard(), 'a', {100, 600, 3100, 3250}), "0.0 0.0 0.0 -");
        PlayTimeJingle();
        pass(200);
        EXPECT_EQ(levelsOf(heard(), 'c', {100}), row.keys.find("Volm=50") == 0 ? "-6.0" : "0.0");
        evStop();
        TmAnVoicePlaying = TmAnJinglePlaying = true;
        DisarmAnnouncer();
        EXPECT_TRUE(hTmAn == 0 && hTmAnSrc == 0 && hTmAnVoice == 0 && TmAnPath.empty() &&
                    TmJingleDuration == 0 && TmAnLen == 0);
        EXPECT_FALSE(TmAnnOn || TmAnVoicePlaying || TmAnJinglePlaying || TmAnRunning || TmAnnAM ||
                     TmJingleAM);
    }
    FreeBASS();
    deviceSettings.DeviceSingle = 0;
    SetupMixers();
}

TEST_F(Announcer, TellsWhatItCannotPlayAndReckonsItsMoments) {
    const auto moment = [](int delay) {
        announcerSettings.TimeAnnDel = delay;
        DTChange();
        return std::to_string(TmJingleMin) + ":" + std::to_string(TmJingleSec) + " " +
               std::to_string(announcerSettings.TimeAnnDel);
    };
    EXPECT_EQ(moment(4), "59:59 4");
    EXPECT_EQ(moment(5), "0:0 5");
    EXPECT_EQ(moment(70), "1:5 70");
    openPalette("Path_0=jingle.wav\r\nPath_2=gone.wav\r\n");
    told.clear();
    ArmAnnouncer();
    EXPECT_EQ(told, "changed ");
    EXPECT_EQ(announcerSettings.TimeAnnDel, 2) << "no longer than the announcement";
    EXPECT_EQ(moment(70), "59:57 2");
    ChooseTimeJingle(0);
    EXPECT_EQ(told, "changed changed changed ");
    EXPECT_DOUBLE_EQ(TmJingleDuration, 1.2);
    const StreamHandle voice = hTmAnVoice, sound = hTmAn;
    ArmAnnouncer();
    EXPECT_FALSE(BASS_StreamFree(voice) || BASS_StreamFree(sound)) << "those of before are freed";
    BASS_StreamFree(hTmAnVoice), BASS_StreamFree(hTmAn);
    AnnounceAt(59, 55), AnnounceAt(59, 57);
    told.clear();
    ChooseTimeJingle(2), ChooseTimeJingle(3);
    EXPECT_EQ(TmAnPath, "jingle.wav") << "neither a missing file nor an empty slot is taken";
    EXPECT_EQ(told, "");
    jingle(0).Path = "lost.wav";  // gone since it was opened
    ChooseTimeJingle(0);
    EXPECT_EQ(TmAnPath, "");
    EXPECT_EQ(TmJingleDuration, 0);
    EXPECT_EQ(told, "changed changed ");
    announcerSettings.TimeAnnouncer = "gone.wav";
    ArmAnnouncer();
    EXPECT_FALSE(TmAnnOn);
    EXPECT_EQ(marks, (std::vector<std::string>{"hide", "no: Can't play time announce stream 1",
                                               "no: Can't play time announce stream 2", "no: no jingle",
                                               "no: no voice"}));
    EXPECT_EQ(told, "changed changed changed failed ");
}

TEST_F(Announcer, TellsItsNextMoment) {
    for (const auto& [format, hour, second, text] :
         std::vector<std::tuple<const char*, int, int, std::string>>{{"HH:MM", 10, 55, "10:59:55"},
                                                                     {"HH:MM", 10, 56, "11:59:55"},
                                                                     {"HH:MM", 23, 56, "00:59:55"},
                                                                     {"AM", 0, 54, "12:59:55 AM"},
                                                                     {"AM", 11, 54, "11:59:55 AM"},
                                                                     {"PM", 11, 56, "12:59:55 PM"},
                                                                     {"AM", 12, 56, "01:59:55 PM"}}) {
        clockSettings.TimeFormat = format;
        EXPECT_EQ(NextAnnouncement({2026, 1, 1, 4, hour, 59, second, 0}), text) << hour << ':' << second;
    }
}

TEST_F(Announcer, TheSameKeysSoundTheSame) {
    // As a palette opens them, as an edit brings them to an open file, as the time jingle takes them.
    writeWav(path("noise.wav"), noise(framesOf(1500)));
    for (const char* keys : {"Volm=70", "FXV=3,-4,5,-6,7,-8,9,0,0,44100,0", "FXV=0,0,0,0,0,0,0,700,0,44100,0",
                             "FXV=0,0,0,0,0,0,0,0,25,44100,0", "FXV=0,0,0,0,0,0,0,0,0,48000,0",
                             "FXV=0,0,0,0,0,0,0,0,0,44100,4", "CueStart=200 StopPos=900 FadeOut=300",
                             "StopPos=700 FadeOut=300 LogFadeOut=1", "Loop=1", "CueStart=9000"}) {
        SCOPED_TRACE(keys);
        openPalette(paletteLines(std::string("Path=noise.wav ") + keys, 0) +
                    "Path_1=noise.wav\r\nVolm_1=30\r\nFXV_1=1,1,1,1,1,1,1,100,5,40000,1\r\n");
        BringSlot(1, *SlotContent(0));
        EXPECT_EQ(wholeRecord(jingle(1)), wholeRecord(jingle(0)));
        ChooseTimeJingle(0);
        pass(300);
        std::vector<float> sounds[3];
        for (int way = 0; way < 3; ++way) {
            heard();
            way == 2 ? PlayTimeJingle() : clPlay(way, -1);
            pass(2500);
            sounds[way] = heard().stereo;
            evStop();
            BASS_ChannelStop(hTmAn);
            pass(100);
        }
        ASSERT_GT(Heard{sounds[0]}.loudest(0, kRate), 0.01F);
        for (const int way : {1, 2}) {
            float differs = 0;
            for (std::size_t i = 0; i < sounds[0].size(); ++i)
                differs = std::max(differs, std::abs(sounds[0][i] - sounds[way][i]));
            EXPECT_LT(differs, 0.01F) << way;  // a conversion begins in another phase
        }
    }
    EXPECT_EQ(reports, std::vector<std::string>());
}

}  // namespace
}  // namespace zv::test
