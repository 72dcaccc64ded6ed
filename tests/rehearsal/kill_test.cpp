// Nothing is lost: the whole program is killed at random moments of busy sessions.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

#include <charconv>
#include <chrono>
#include <thread>

#include "show.h"

namespace zv::test {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Section = std::map<std::string, std::string>;
using Ini = std::map<std::string, Section>;

constexpr int kSlots = 12, kHotSlots = 6;
constexpr int kEdits = 20;                   // of a session
constexpr int kKills = 10;                   // ZV_KILLS asks for another number
constexpr int kStartEvery = 10;              // kills between two starts that are looked at closely
constexpr int kTwips = 15, kNarrower = 200;  // the window stays so many pixels less high than wide

int numberFrom(const char* variable, int otherwise) {
    const char* text = std::getenv(variable);
    return text == nullptr ? otherwise : std::atoi(text);
}

// ---- what the edits make of the files: edit g puts the sound t<g>.wav somewhere ----

bool isHot(int g) { return g % 4 == 0; }
const char* paletteOf(int g) { return g / 5 % 2 == 0 ? "Test" : "Other"; }
int slotOf(int g) { return isHot(g) ? g / 4 % kHotSlots : g * 7 % kSlots; }
std::string soundOf(int g) { return "Audio_Sample\\t" + std::to_string(g) + ".wav"; }

struct State {
    std::map<std::string, std::map<int, int>> slots;  ///< section, slot, the edit whose sound is there
};

State stateAfter(int edits) {
    State state;
    for (const char* palette : {"Test", "Other", "Keep"})
        for (int slot = 0; slot < kSlots; ++slot) state.slots[palette][slot] = 0;
    for (int slot = 0; slot < kHotSlots; ++slot) state.slots["HotJingles"][slot] = 0;
    for (int g = 1; g <= edits; ++g) state.slots[isHot(g) ? "HotJingles" : paletteOf(g)][slotOf(g)] = g;
    return state;
}

/// Every line is a section, a key with its value, a comment or blank, and the last one has its end.
Ini whole(const fs::path& file) {
    Ini ini;
    const std::string text = contents(file);
    EXPECT_TRUE(text.empty() || text.ends_with('\n')) << file << " is cut";
    std::istringstream lines(text);
    std::string section;
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with('\r')) line.pop_back();
        if (line.empty() || line[0] == ';') continue;
        if (line[0] == '[' && line.back() == ']') {
            section = line.substr(1, line.size() - 2);
            EXPECT_TRUE(ini.try_emplace(section).second) << file << " has twice " << line;
            continue;
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos || equals == 0 || section.empty()) {
            ADD_FAILURE() << file << " holds half a line: " << line;
            continue;
        }
        ini[section][line.substr(0, equals)] = line.substr(equals + 1);
    }
    return ini;
}

/// The edits that stand in the slots of a section; -1 for what no edit has put there.
std::map<int, int> slotsOf(const Section& section) {
    std::map<int, int> slots;
    for (const auto& [key, value] : section) {
        if (!key.starts_with("Path_")) {
            EXPECT_EQ(value, key.starts_with("Loop_") ? "1" : "") << key;  // the one option that is set
            continue;
        }
        const int g = std::atoi(value.c_str() + value.find('t', value.find('\\')) + 1);
        slots[std::atoi(key.c_str() + 5)] = value == soundOf(g) ? g : -1;
    }
    return slots;
}

int newest(const std::map<int, int>& slots) {
    int most = 0;
    for (const auto& [slot, g] : slots) most = std::max(most, g);
    return most;
}

std::string textOf(const State& state) {
    std::string text = "[Keep]\r\n";
    const auto section = [&](const char* name) {
        std::string lines;
        for (const auto& [slot, g] : state.slots.at(name))
            lines += "Path_" + std::to_string(slot) + "=" + soundOf(g) + "\r\n";
        return lines;
    };
    return text + section("Keep") + "[Other]\r\n" + section("Other") + "[Test]\r\n" + section("Test");
}

class Studio : public Show {
  public:
    Studio() {
        tone("t0.wav", 0.05);
        const State state = stateAfter(0);
        write("palette.ini", textOf(state));
        std::string hot = "[HotJingles]\r\n";
        for (const auto& [slot, g] : state.slots.at("HotJingles"))
            hot += "Path_" + std::to_string(slot) + "=" + soundOf(g) + "\r\n";
        write("HotJingles.ini", hot);
        write("zv.ini", contents(home() / "zv.ini") +
                            "AutoSave=1\r\nWinState=0\r\nWinWidth=12000\r\nWinHeight=9000\r\n");
    }

    /// Edits `from` + 1 and on, palettes changed on the way, a palette saved under another name, the settings
    /// changed by closing.
    std::string session(int from, std::mt19937& random) {
        std::ostringstream script;
        const auto width = 801 + random() % 49;  // the whole window fits the screen
        script << "at 0 resize " << width << " " << width - kNarrower
               << "\nat 0 key T\nat 0 click ckTab(0)\n";
        int ms = 0;
        std::string current;
        for (int g = from + 1; g <= from + kEdits; ++g) {
            std::error_code exists;
            fs::create_hard_link(home() / "Audio_Sample/t0.wav",
                                 home() / ("Audio_Sample/t" + std::to_string(g) + ".wav"), exists);
            if (current != paletteOf(g)) {
                current = paletteOf(g);
                script << "at " << ms << " pick " << current << "\n";
                ms += 400;
            }
            script << "at " << ms << " drop " << (isHot(g) ? "H" : "") << slotOf(g) << " Audio_Sample/t" << g
                   << ".wav\n";
            ms += 100;
            if (random() % 3 == 0) {
                script << "at " << ms << " rclick b_Jingle(" << random() % kSlots << ")\n";
                script << "at " << ms + 10 << " menu mnuLoop\n";
                ms += 110;
            }
            if (random() % 8 == 0) {
                script << "at " << ms << " click btSave\nat " << ms + 50 << " set txtSave Extra\nat "
                       << ms + 100 << " key Enter\n";
                ms += 300;
                current.clear();
            }
        }
        script << "at " << ms + 1500 << " click ckTab(" << random() % 2 * 3 << ")\nat " << ms + 1600
               << " end\n";
        return script.str();
    }

    pid_t begin(const std::string& script) {
        const fs::path file = home().parent_path() / "session.txt";
        std::ofstream(file, std::ios::binary) << script;
        const pid_t child = ::fork();
        if (child != 0) return child;
        const int nowhere = ::open("/dev/null", O_WRONLY);
        ::dup2(nowhere, STDOUT_FILENO);
        ::dup2(nowhere, STDERR_FILENO);
        const std::string program = test::binDir() + "/rehearse";
        ::execl(program.c_str(), "rehearse", file.c_str(), "--home", home().c_str(), "--out",
                (home().parent_path() / "killed").c_str(), "--no-sound", nullptr);
        ::_exit(127);
    }

    /// Looks at every file; returns how many edits the palettes and hot jingles hold.
    int look() {
        for (const auto& entry : fs::directory_iterator(home()))
            if (entry.path().extension() == ".ini" && entry.path().filename() != "language.ini")
                whole(entry.path());
        const Ini palettes = whole(home() / "palette.ini"), hot = whole(home() / "HotJingles.ini");
        const Ini zv = whole(home() / "zv.ini");
        int edits = palettesAre(palettes, "palette.ini");
        EXPECT_TRUE(hot.contains("HotJingles"));
        if (!hot.contains("HotJingles")) return edits;
        const auto hotSlots = slotsOf(hot.at("HotJingles"));
        edits = std::max(edits, newest(hotSlots));
        const State state = stateAfter(edits);
        EXPECT_EQ(hotSlots, state.slots.at("HotJingles")) << "after edit " << edits;
        for (const char* palette : {"Test", "Other"})
            EXPECT_EQ(slotsOf(palettes.at(palette)), state.slots.at(palette)) << "after edit " << edits;
        for (int k = 1; k <= 5; ++k) {
            const std::string name = "palette_backup" + std::to_string(k) + ".ini";
            if (fs::exists(home() / name)) palettesAre(whole(home() / name), name);
        }
        const Section& settings = zv.at("Settings");
        EXPECT_GE(settings.size(), settingsSeen_) << "a setting is lost";
        settingsSeen_ = settings.size();
        EXPECT_EQ(std::stoi(settings.at("WinWidth")) - std::stoi(settings.at("WinHeight")),
                  kNarrower * kTwips)
            << "half of the settings are saved";
        widths_[settings.at("WinWidth")] = true;
        return edits;
    }

    /// How many different settings have been seen.
    std::size_t settingsSaved() const { return widths_.size(); }

  private:
    int palettesAre(const Ini& ini, const std::string& file) {
        int edits = 0;
        for (const char* palette : {"Keep", "Other", "Test"}) {
            EXPECT_TRUE(ini.contains(palette)) << file << " has lost " << palette;
            if (!ini.contains(palette)) return 0;
            edits = std::max(edits, newest(slotsOf(ini.at(palette))));
        }
        const State state = stateAfter(edits);
        for (const char* palette : {"Keep", "Other", "Test"})
            EXPECT_EQ(slotsOf(ini.at(palette)), state.slots.at(palette)) << file << " after edit " << edits;
        if (ini.contains("Extra")) {
            const auto slots = slotsOf(ini.at("Extra"));
            const State then = stateAfter(newest(slots));
            EXPECT_TRUE(slots == then.slots.at("Test") || slots == then.slots.at("Other")) << file;
        }
        return edits;
    }

    std::size_t settingsSeen_ = 0;
    std::map<std::string, bool> widths_;
};

TEST(Kill, AtAnyMomentCostsNothingThatWasSaved) {
    Studio studio;
    const int kills = numberFrom("ZV_KILLS", kKills);
    std::mt19937 random(static_cast<unsigned>(numberFrom("ZV_SEED", 7)));
    int edits = 0;
    int status = 0;
    const auto before = Clock::now();
    ::waitpid(studio.begin(studio.session(edits, random)), &status, 0);
    auto lasts = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - before).count();
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
        << contents(studio.home().parent_path() / "killed/events.log");
    edits = studio.look();
    ASSERT_EQ(edits, kEdits);
    int inTheMiddle = 0, killed = 0;
    for (int kill = 1; kill <= kills && !::testing::Test::HasFailure(); ++kill) {
        SCOPED_TRACE("kill " + std::to_string(kill));
        const pid_t child = studio.begin(studio.session(edits, random));
        std::this_thread::sleep_for(
            std::chrono::microseconds(lasts / 4 + static_cast<std::int64_t>(random()) % (lasts * 9 / 10)));
        ::kill(child, SIGKILL);
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0)
            << "a session after a kill failed: "
            << contents(studio.home().parent_path() / "killed/events.log");
        killed += WIFSIGNALED(status) ? 1 : 0;
        const int now = studio.look();
        // Sessions take as long as the machine has time: the next kill comes earlier or later accordingly.
        if (!WIFSIGNALED(status))
            lasts = lasts * 2 / 3;
        else if (now == edits)
            lasts = lasts * 5 / 4;
        EXPECT_GE(now, edits) << "an edit that was saved is lost";
        EXPECT_LE(now, edits + kEdits);
        inTheMiddle += now > edits && now < edits + kEdits ? 1 : 0;
        edits = now;
        if (kill % kStartEvery == 0) {
            const State state = stateAfter(edits);
            EXPECT_EQ(
                studio.perform("at 0 click ckTab(0)\nat 0 pick Test\nat 500 expect J(0).Path " +
                                   soundOf(state.slots.at("Test").at(0)) + "\nat 500 expect J(96).Path " +
                                   soundOf(state.slots.at("HotJingles").at(0)) +
                                   "\nat 500 down 0\nat 530 expect J(0).State 1\nat 600 up 0\nat 1000 end\n",
                               "--no-sound"),
                0)
                << studio.messages() << studio.result("events.log");
        }
    }
    // The kills did meet sessions at work.
    EXPECT_GT(killed, kills / 4);
    EXPECT_GT(inTheMiddle, 0);
    EXPECT_GT(studio.settingsSaved(), kills > kKills ? 1U : 0U);
    std::printf("%d kills, %d of %d in the middle of edits, %d edits, %zu saves of the settings\n", kills,
                inTheMiddle, killed, edits, studio.settingsSaved());
}

}  // namespace
}  // namespace zv::test
