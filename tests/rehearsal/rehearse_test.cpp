// The rehearsal itself: what its arguments may be, the sound files it writes, and that it is the same each time. What its
// verbs do: tests/rehearsal/shows.

#include <fstream>

#include "show.h"

namespace zv::test {
namespace {

void copySamplePalettes(const Show& show) {
    const std::string data = test::sourceDir() + "/data";
    for (const char* name : {"palette.ini", "HotJingles.ini", "Audio_Sample"})
        std::filesystem::copy(
            data + "/" + name, show.home() / name,
            std::filesystem::copy_options::recursive | std::filesystem::copy_options::skip_existing);
}

TEST(Rehearse, DoesNothingWhereScriptOrArgumentsAreBad) {
    Show show;
    const auto before = show.contentsOf("zv.ini");
    EXPECT_EQ(show.perform("at 0 click\nat 20 press 400\nat 30 end\n"), 2);
    for (const char* told :
         {"script.txt:1: the control is missing\n", "script.txt:2: button 400 is not in 0 to 119\n"})
        EXPECT_NE(show.messages().find(told), std::string::npos) << show.messages();
    for (const char* bad : {"--faster", "second.txt", "--outputs 3", "--outputs", "--seed x", "--seed",
                            "--seed 1x", "--midi", "--answer"}) {
        EXPECT_EQ(show.perform("at 0 end\n", bad), 2) << bad;
        EXPECT_EQ(show.messages().find("usage: rehearse"), 0U) << bad;
    }
    EXPECT_EQ(show.perform("at 0 end\n", "--out /proc/nowhere"), 2);
    EXPECT_EQ(show.messages(), "/proc/nowhere: cannot be written\n");
    EXPECT_EQ(show.contentsOf("zv.ini"), before);
    EXPECT_EQ(
        std::system((binDir() + "/rehearse /nowhere.txt --home /tmp --out /tmp 2> /dev/null").c_str()) >> 8,
        2);
}

TEST(Rehearse, WithoutItsLibraryTheProgramSaysSoAndDoesNotStart) {
    Show show;
    const std::filesystem::path bin = show.home().parent_path() / "bin";
    std::filesystem::create_directories(bin);
    std::filesystem::copy_file(binDir() + "/rehearse", bin / "rehearse");
    for (const char* told : {" does not exist!", "BASS version 2.4 was not loaded"}) {
        EXPECT_EQ(show.perform("at 0 end\n", {}, (bin / "rehearse").string()), 1);
        const std::string events = show.result("events.log");
        EXPECT_NE(events.find(told), std::string::npos) << events;
        // Then one that is no library.
        const std::size_t name = events.find("The file ") + 9;
        std::ofstream(bin / events.substr(name, events.find(" does not") - name)) << "no library";
    }
}

TEST(Rehearse, WritesWhatAnyProgramReads) {
    Show show;
    show.set("MixerFreq=48000\r\n");
    // Float, stereo, the rate, and sizes that fit the file, also of an output that the program never opens.
    using namespace std::string_view_literals;
    for (const char* settings : {"", "DeviceAux=0\r\n"}) {
        show.set(settings);
        show.passes("at 3000 end\n");
        for (const char* file : {"main.wav", "aux.wav"}) {
            const std::string wav = show.result(file);
            EXPECT_EQ(wav.size(), 58 + 3 * 48000 * 8);
            EXPECT_EQ(wav.substr(0, 58),
                      "RIFF\x32\x94\x11\0WAVEfmt \x12\0\0\0\3\0\2\0\x80\xBB\0\0\0\xDC\5\0\x08\0\x20\0\0\0"
                      "fact\4\0\0\0\x80\x32\2\0data\0\x94\x11\0"sv);
        }
    }
}

TEST(Rehearse, GivesTheSameBytesEachTime) {
    const char* const files[] = {"main.wav", "aux.wav", "midi.log", "events.log", "state.json", "window.png"};
    std::string first[std::size(files)];
    for (int round = 0; round < 2; ++round) {
        Show show;
        copySamplePalettes(show);
        // Seed 0 takes that of the arguments.
        show.passes("at 0 random 60 " + std::string(round == 0 ? "9" : "0") +
                        "\nat 4000 shot window.png\nat 4000 end\n",
                    "--seed 9");
        EXPECT_GT(peak(show.heard(), 0, 4000), 0.1F) << "chance has pressed something";
        for (std::size_t i = 0; i < std::size(files); ++i) {
            std::string text = show.result(files[i]);
            EXPECT_TRUE(!text.empty() || std::string(files[i]) == "midi.log") << files[i];
            // The folder has another name each time.
            for (std::size_t at; (at = text.find(show.home().string())) != std::string::npos;)
                text.replace(at, show.home().string().size(), "HOME");
            if (round == 0) first[i] = text;
            EXPECT_TRUE(text == first[i]) << files[i] << " differs in round " << round;
        }
    }
}

TEST(Rehearse, PerformsTheFirstShow) {
    Show show;
    std::filesystem::remove(show.home() / "zv.ini");
    copySamplePalettes(show);
    show.passes(contents(test::sourceDir() + "/data/rehearsals/first-show.txt"));
}

}  // namespace
}  // namespace zv::test
