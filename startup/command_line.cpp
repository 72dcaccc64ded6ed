#include "startup/command_line.h"

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

std::string absolute(const std::string& folder) {
    std::error_code error;
    const fs::path path = fs::absolute(pathFromUtf8(folder), error).lexically_normal();
    return error ? folder : utf8FromPath(path);
}

bool writable(const fs::path& folder) {
    const fs::path probe = folder / ".zentrova.probe";
    if (!replaceFile(probe, "")) return false;
    std::error_code error;
    fs::remove(probe, error);
    return true;
}

bool explicitFolder(const CommandLine& commandLine) {
    return !commandLine.home.empty() || !environmentVariable("ZENTROVA_HOME").empty();
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

std::string ExecutableFolder(const char* argv0) {
    fs::path self = executableFile();
    if (self.empty()) self = fs::absolute(argv0);
    return utf8FromPath(self.parent_path());
}

std::string ChooseProgramFolder(const CommandLine& commandLine, const std::string& executableFolder) {
    if (!commandLine.home.empty()) return absolute(commandLine.home);
    const std::string fromEnvironment = environmentVariable("ZENTROVA_HOME");
    if (!fromEnvironment.empty()) return absolute(fromEnvironment);
    std::error_code error;
    if (fs::exists(pathFromUtf8(executableFolder) / "zv.ini", error) && writable(executableFolder)) {
        return absolute(executableFolder);
    }
    return utf8FromPath(userDataFolder() / "zentrova");
}

bool EnterProgramFolder(const CommandLine& commandLine, const std::string& executableFolder) {
    const std::string folder = ChooseProgramFolder(commandLine, executableFolder);
    const fs::path native = pathFromUtf8(folder);
    std::error_code error;
    fs::create_directories(native, error);
    setProgramFolder(folder);
    setShippedFolder(absolute(executableFolder));
    SetStorePaths();
    fs::current_path(native, error);
    if (!fs::is_directory(native, error) || !ProgramFolderWritable()) return false;
    const bool usersFolder = !explicitFolder(commandLine) && absolute(executableFolder) != folder;
    if (usersFolder && !fs::exists(native / "zv.ini", error)) seed(native, pathFromUtf8(shippedFolder()));
    return true;
}

bool ProgramFolderWritable() { return writable(pathFromUtf8(programFolder())); }

}  // namespace zv
