#include "startup/command_line.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "platform/paths.h"
#include "startup/datafiles.h"
#include "startup/helpers.h"
#include "startup/stores.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

constexpr const char* kTraceSwitch = "-t";  // anywhere in the command line, in either case

/// What a new user finds: the sample palettes, the sounds they name, and the settings that show them best.
struct Seed {
    const char* shipped;
    const char* name;
};
constexpr Seed kSeeds[] = {{"palette.ini", "palette.ini"},
                           {"HotJingles.ini", "HotJingles.ini"},
                           {"Audio_Sample", "Audio_Sample"},
                           {"Time_Announce.wav", "Time_Announce.wav"},
                           {"first_start.ini", "zv.ini"}};

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

std::string absolute(const std::string& folder) {
    std::error_code error;
    const fs::path path = fs::absolute(fs::path(folder), error).lexically_normal();
    return error ? folder : path.string();
}

bool writable(const fs::path& folder) {
    const fs::path probe = folder / ".zentrova.probe";
    if (!replaceFile(probe, "")) return false;
    std::error_code error;
    fs::remove(probe, error);
    return true;
}

std::string userDataFolder() {
    std::string base = environment("XDG_DATA_HOME");
    if (base.empty() || !fs::path(base).is_absolute()) {
        const std::string home = environment("HOME");
        base = (home.empty() ? std::string("/tmp") : home) + "/.local/share";
    }
    return base + "/zentrova";
}

bool explicitFolder(const CommandLine& commandLine) {
    return !commandLine.home.empty() || !environment("ZENTROVA_HOME").empty();
}

void seed(const fs::path& home, const fs::path& shipped) {
    for (const Seed& seed : kSeeds) {
        std::error_code error;
        fs::copy(shipped / seed.shipped, home / seed.name,
                 fs::copy_options::recursive | fs::copy_options::skip_existing, error);
    }
}

}  // namespace

std::string UsageLine() { return "usage: zentrova [-t] [--home FOLDER]"; }

CommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
    CommandLine out;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& a = arguments[i];
        if (a == "--home") {
            if (i + 1 >= arguments.size() || arguments[i + 1].empty()) {
                out.error = "--home needs a folder; " + UsageLine();
                return out;
            }
            out.home = arguments[++i];
        } else if (a.starts_with("--home=") && a.size() > 7) {
            out.home = a.substr(7);
        } else if (SameText(a, kTraceSwitch)) {
            // Found below, with any other place where the switch stands.
        } else if (a == "--help" || a == "-h") {
            out.help = true;
        } else {
            out.error = "unknown option " + a + "; " + UsageLine();
            return out;
        }
        out.trace = out.trace || LowerCase(arguments[i]).find(kTraceSwitch) != std::string::npos;
    }
    return out;
}

std::string ChooseProgramFolder(const CommandLine& commandLine, const std::string& executableFolder) {
    if (!commandLine.home.empty()) return absolute(commandLine.home);
    const std::string fromEnvironment = environment("ZENTROVA_HOME");
    if (!fromEnvironment.empty()) return absolute(fromEnvironment);
    std::error_code error;
    if (fs::exists(fs::path(executableFolder) / "zv.ini", error) && writable(executableFolder)) {
        return absolute(executableFolder);
    }
    return userDataFolder();
}

bool EnterProgramFolder(const CommandLine& commandLine, const std::string& executableFolder) {
    const std::string folder = ChooseProgramFolder(commandLine, executableFolder);
    std::error_code error;
    fs::create_directories(folder, error);
    setProgramFolder(folder);
    setShippedFolder(absolute(executableFolder));
    SetStorePaths();
    fs::current_path(folder, error);
    if (!fs::is_directory(folder, error) || !ProgramFolderWritable()) return false;
    const bool usersFolder = !explicitFolder(commandLine) && absolute(executableFolder) != folder;
    if (usersFolder && !fs::exists(fs::path(folder) / "zv.ini", error)) seed(folder, shippedFolder());
    return true;
}

bool ProgramFolderWritable() { return writable(fs::path(programFolder())); }

}  // namespace zv
