// Nothing is lost: the whole program is killed at random moments, while it starts, saves palettes and settings, ends. What
// the steps of a presenter make of the files is held against a model in tests/ui/keeping_chance_test.cpp.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

#include <chrono>
#include <thread>

#include "show.h"

namespace zv::test {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Lines = std::map<std::string, std::string>;  ///< "[Section]key" and its value

constexpr int kSlots = 12, kHotSlots = 6;
constexpr int kEdits = 20;                   // of a session
constexpr int kKills = 10;                   // ZV_KILLS asks for another number
constexpr int kTwips = 15, kNarrower = 200;  // the window stays so many pixels less high than wide

/// The files' paths after so many edits: edit g puts the sound t<g>.wav somewhere.
Lines pathsAfter(int edits) {
    Lines paths;
    const auto put = [&](bool hot, int slot, int g) {
        paths[(hot ? "[HotJingles]Path_" : "[Test]Path_") + std::to_string(slot)] =
            "Audio_Sample\\t" + std::to_string(g) + ".wav";
    };
    for (int slot = 0; slot < kSlots; ++slot) put(false, slot, 0);
    for (int slot = 0; slot < kHotSlots; ++slot) put(true, slot, 0);
    for (int g = 1; g <= edits; ++g) put(g % 4 == 0, g % 4 == 0 ? g / 4 % kHotSlots : g * 7 % kSlots, g);
    return paths;
}

/// The number of the newest edit among the paths.
int newest(const Lines& paths) {
    int most = 0;
    for (const auto& [key, value] : paths)
        most = std::max(most, std::atoi(value.c_str() + value.find("\\t") + 2));
    return most;
}

std::string textOf(const Lines& lines, const std::string& section) {
    std::string text = section + "\r\n";
    for (const auto& [key, value] : lines)
        if (key.starts_with(section)) text += key.substr(section.size()) + "=" + value + "\r\n";
    return text;
}

class Studio : public Show {
  public:
    Studio() {
        tone("t0.wav", 0.05);
        write("palette.ini", textOf(pathsAfter(0), "[Test]"));
        write("HotJingles.ini", textOf(pathsAfter(0), "[HotJingles]"));
        set("AutoSave=1\r\nWinState=0\r\nWinWidth=12000\r\nWinHeight=9000\r\n");
    }

    /// Makes edits `from` + 1 and on in a process of its own; closing changes the settings.
    pid_t begin(int from, std::mt19937& random) {
        const fs::path file = home().parent_path() / "session.txt";
        std::ofstream script(file, std::ios::binary);
        const auto width = 801 + random() % 49;  // the whole window fits the screen
        script << "at 0 resize " << width << " " << width - kNarrower << "\n";
        int ms = 0;
        for (int g = from + 1; g <= from + kEdits; ++g, ms += 100) {
            std::error_code exists;
            fs::create_hard_link(sound("t0.wav"), sound("t" + std::to_string(g) + ".wav"), exists);
            script << "at " << ms << " drop "
                   << (g % 4 == 0 ? "H" + std::to_string(g / 4 % kHotSlots) : std::to_string(g * 7 % kSlots))
                   << " Audio_Sample/t" << g << ".wav\n";
        }
        script << "at " << ms + 1500 << " click ckTab(" << random() % 2 * 3 << ")\nat " << ms + 1600
               << " end\n";
        script.close();
        const pid_t child = ::fork();
        if (child != 0) return child;
        const int nowhere = ::open("/dev/null", O_WRONLY);
        ::dup2(nowhere, STDOUT_FILENO);
        ::dup2(nowhere, STDERR_FILENO);
        const std::string program = test::binDir() + "/rehearse";
        ::execl(program.c_str(), "rehearse", file.c_str(), "--home", home().c_str(), "--out", out().c_str(),
                "--no-sound", nullptr);
        ::_exit(127);
    }

    /// Every line of a file is a section, a key with its value or blank, and the last one has its end.
    Lines whole(const std::string& name) const {
        Lines lines;
        const std::string text = contentsOf(name);
        EXPECT_TRUE(text.empty() || text.ends_with('\n')) << name << " is cut";
        std::istringstream all(text);
        std::string section;
        for (std::string line; std::getline(all, line);) {
            if (line.ends_with('\r')) line.pop_back();
            const std::size_t equals = line.find('=');
            if (line.starts_with('[') && line.ends_with(']'))
                section = line;
            else if (!line.empty() && !section.empty() && equals != std::string::npos && equals > 0)
                lines[section + line.substr(0, equals)] = line.substr(equals + 1);
            else
                EXPECT_EQ(line, "") << name << " holds half a line";
        }
        return lines;
    }

    /// Looks at every file; returns how many edits the palette and the hot jingles hold.
    int look() {
        Lines paths = whole("palette.ini"), hot = whole("HotJingles.ini");
        paths.insert(hot.begin(), hot.end());
        const int edits = newest(paths);
        EXPECT_EQ(paths, pathsAfter(edits));
        for (int k = 1; k <= 5; ++k) {
            Lines backup = whole("palette_backup" + std::to_string(k) + ".ini");
            if (backup.empty()) continue;
            hot = pathsAfter(newest(backup));
            std::erase_if(hot, [](const auto& line) { return line.first.starts_with("[Hot"); });
            EXPECT_EQ(backup, hot) << k;
        }
        for (const char* name : {"account.ini", "DISPpresets.ini", "VUpresets.ini", "FXpresets.ini"})
            whole(name);
        const Lines zv = whole("zv.ini");
        EXPECT_GE(zv.size(), settings_) << "a setting is lost";
        settings_ = zv.size();
        EXPECT_EQ(std::stoi(zv.at("[Settings]WinWidth")) - std::stoi(zv.at("[Settings]WinHeight")),
                  kNarrower * kTwips)
            << "half of the settings are saved";
        return edits;
    }

  private:
    std::size_t settings_ = 0;
};

TEST(Kill, AtAnyMomentCostsNothingThatWasSaved) {
    Studio studio;
    const char* asked = std::getenv("ZV_KILLS");
    const int kills = asked == nullptr ? kKills : std::atoi(asked);
    std::mt19937 random(7);
    int status = 0, killed = 0, inTheMiddle = 0;
    const auto before = Clock::now();
    ::waitpid(studio.begin(0, random), &status, 0);
    auto lasts = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - before).count();
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << studio.result("events.log");
    int edits = studio.look();
    ASSERT_EQ(edits, kEdits);
    for (int kill = 1; kill <= kills && !::testing::Test::HasFailure(); ++kill) {
        SCOPED_TRACE("kill " + std::to_string(kill));
        const pid_t child = studio.begin(edits, random);
        std::this_thread::sleep_for(
            std::chrono::microseconds(lasts / 4 + static_cast<std::int64_t>(random()) % (lasts * 9 / 10)));
        ::kill(child, SIGKILL);
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0) << studio.result("events.log");
        killed += WIFSIGNALED(status) ? 1 : 0;
        const int now = studio.look();
        // Sessions take as long as the machine has time: the next kill comes earlier or later accordingly.
        lasts = !WIFSIGNALED(status) ? lasts * 2 / 3 : now == edits ? lasts * 5 / 4 : lasts;
        EXPECT_GE(now, edits) << "an edit that was saved is lost";
        EXPECT_LE(now, edits + kEdits);
        inTheMiddle += now > edits && now < edits + kEdits ? 1 : 0;
        edits = now;
    }
    Lines paths = pathsAfter(edits);
    studio.passes("at 500 expect J(0).Path " + paths["[Test]Path_0"] + "\nat 500 expect J(96).Path " +
                      paths["[HotJingles]Path_0"] +
                      "\nat 500 down 0\nat 530 expect J(0).State 1\nat 600 up 0\nat 1000 end\n",
                  "--no-sound");
    EXPECT_GT(killed, kills / 4) << "the kills did meet sessions at work";
    EXPECT_GT(inTheMiddle, 0);
    std::printf("%d kills, %d of %d in the middle of edits, %d edits\n", kills, inTheMiddle, killed, edits);
}

}  // namespace
}  // namespace zv::test
