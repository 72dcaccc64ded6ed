// What the program finds in its folder when it starts: another program, settings without sense, no right to
// write.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "show.h"

namespace zv::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kPressSounds =
    "at 0 expect PaletteIndex Test\n"
    "at 100 down 0\n"
    "at 300 expect J(0).State 1\n"
    "at 300 expect lblPosSecU.visible 1\n"
    "at 400 up 0\n"
    "at 1000 end\n";

/// Every file of a folder and its bytes; not the folders in it.
std::map<std::string, std::string> filesOf(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.is_regular_file()) files[entry.path().filename().string()] = contents(entry.path());
    return files;
}

void expectSound(const Show& show) {
    const Heard main = show.heard();
    EXPECT_EQ(peak(main, 0, 90), 0);
    EXPECT_GT(peak(main, 150, 350), 0.1F);
}

TEST(Start, ASecondProgramOnTheFolderAsksAndIsRefusedOrAllowed) {
    Show show;
    show.tone();
    show.passes(kPressSounds);
    const auto before = filesOf(show.home());
    ASSERT_TRUE(before.contains(".zentrova.lock"));

    const int lock = ::open((show.home() / ".zentrova.lock").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX | LOCK_NB), 0) << "the first run has let go";
    // Nobody answers: that is a no.
    EXPECT_EQ(show.perform(kPressSounds), 1);
    EXPECT_NE(show.messages().find("the program did not start"), std::string::npos) << show.messages();
    EXPECT_NE(show.result("events.log").find("already running on this folder"), std::string::npos)
        << show.result("events.log");
    EXPECT_EQ(filesOf(show.home()), before) << "the refused program has written";

    show.passes(kPressSounds, "--answer yes");
    expectSound(show);
    ::close(lock);
    show.passes(kPressSounds);  // whoever held the lock is gone
    EXPECT_EQ(show.result("events.log").find("already running"), std::string::npos);
}

const char* const kSettingKeys[] = {
#define ZV_BYTE(name, ...) #name,
#define ZV_WORD ZV_BYTE
#define ZV_WHOLE ZV_BYTE
#define ZV_COLOUR ZV_BYTE
#define ZV_TEXT ZV_BYTE
#include "startup/settings_list.inc"
};

TEST(Start, WithNonsenseInEveryKeyTheWindowWorks) {
    const struct {
        const char* value;
        bool audible;  ///< 0 is a choice, no output
    } kinds[] = {{"\xC3\xBCnsinn", true}, {"-1", true},    {"99999999999999999999", true},
                 {"32767", true},         {"1e308", true}, {"0", false},
                 {"[;=\\", true}};
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.value);
        Show show;
        show.tone();
        std::string text = "[Settings]\r\n";
        for (const char* key : kSettingKeys) text += std::string(key) + "=" + kind.value + "\r\n";
        show.write("zv.ini", text);
        show.passes(
            "at 0 answer cancel\nat 0 expect PaletteIndex Test\nat 0 expect b_Jingle(0).visible 1\n"
            "at 100 down 0\nat 300 expect J(0).State 1\nat 300 expect BASS_ChannelIsActive(0) 1\n"
            "at 400 up 0\nat 500 shot window.png\nat 500 end\n");
        EXPECT_GT(fs::file_size(show.out() / "window.png"), 5000U);
        const Heard main = show.heard(), aux = show.heard("aux.wav");
        EXPECT_EQ(std::max(peak(main, 150, 350), peak(aux, 150, 350)) > 0.1F, kind.audible);
        EXPECT_EQ(show.contentsOf("palette.ini"), kPalette);
    }
}

/// Starts the program and kills it at the `last` thing that happens to a file of its folder; false when it ended before.
bool killedAt(const Show& show, int last) {
    const std::string home = show.home().string(),
                      script = (show.home().parent_path() / "script.txt").string();
    const int watch = ::inotify_init1(IN_CLOEXEC);
    ::inotify_add_watch(watch, home.c_str(), IN_CREATE | IN_MODIFY | IN_MOVED_TO | IN_DELETE);
    const pid_t program = ::fork();
    if (program == 0)
        ::_exit(::execl((binDir() + "/rehearse").c_str(), "rehearse", script.c_str(), "--home", home.c_str(),
                        "--out", show.out().c_str(), "--no-sound", nullptr));
    int status = 0;
    pollfd waits{watch, POLLIN, 0};
    for (int seen = 0; ::waitpid(program, &status, WNOHANG) == 0;) {
        alignas(inotify_event) char event[sizeof(inotify_event) + 256];  // what comes at once counts once
        if (::poll(&waits, 1, 5) <= 0 || ::read(watch, event, sizeof event) <= 0) continue;
        if (++seen >= last) ::kill(program, SIGKILL);
    }
    ::close(watch);
    return WIFSIGNALED(status);
}

TEST(Start, KilledAtAnyFileItWritesItLosesNothingAndStartsAgain) {
    Show show;
    show.tone();
    show.set("VolumeAux=37\r\nVolume=40\r\n");
    const std::string settings = show.contentsOf("zv.ini");
    std::ofstream(show.home().parent_path() / "script.txt")
        << "at 0 key F2\nat 10 set frmMixer.SlideVolDevice(0) 41\nat 20 click frmMixer.btOk\nat 30 end\n";
    int last = 1;
    for (; killedAt(show, last); last += 1 + last / 2) {
        EXPECT_EQ(show.contentsOf("palette.ini"), kPalette) << last;
        for (const char* key : {"VolumeAux=37\r\n", "\nVolume=4", "PaletteIndex=Test\r\n"})
            EXPECT_NE(show.contentsOf("zv.ini").find(key), std::string::npos) << last << key;
        show.write("zv.ini", settings);
    }
    EXPECT_GT(last, 10);
    EXPECT_NE(show.contentsOf("zv.ini").find("Volume=41\r\n"), std::string::npos);
    show.passes(kPressSounds);
    expectSound(show);
}

/// Nothing can be written below it, not even by the superuser.
class ReadOnly {
  public:
    explicit ReadOnly(fs::path at) : at_(std::move(at)) {
        bound_ = ::mount(at_.c_str(), at_.c_str(), nullptr, MS_BIND, nullptr) == 0;
        sealed_ =
            bound_ && ::mount(nullptr, at_.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }
    ~ReadOnly() {
        if (bound_) ::umount2(at_.c_str(), MNT_DETACH);
    }
    bool sealed() const { return sealed_; }

  private:
    fs::path at_;
    bool bound_ = false, sealed_ = false;
};

TEST(Start, AFolderThatCannotBeWrittenIsToldAndPlays) {
    for (const bool startedBefore : {true, false}) {
        SCOPED_TRACE(startedBefore ? "with all its files" : "with the user's files only");
        Show show;
        show.tone();
        if (startedBefore) show.passes(kPressSounds);
        const auto before = filesOf(show.home());
        const ReadOnly folder(show.home());
        if (!folder.sealed()) GTEST_SKIP() << "a folder cannot be made read-only here";
        show.passes(kPressSounds);
        const std::string events = show.result("events.log");
        const std::size_t box = events.find("Nothing will be saved");
        ASSERT_NE(box, std::string::npos) << events;
        EXPECT_NE(events.substr(box, events.find('\n', box) - box).find(show.home().string()),
                  std::string::npos)
            << "the folder is named";
        EXPECT_EQ(events.find("\treport\t"), std::string::npos) << events;
        expectSound(show);
        EXPECT_EQ(filesOf(show.home()), before);
    }
}

}  // namespace
}  // namespace zv::test
