/// The command line and the choice of the folder that holds all of the program's files. [control]
#pragma once

#include <string>
#include <vector>

namespace zv {

struct CommandLine {
    bool trace = false;  ///< "-t": write Trace_start.log
    bool help = false;   ///< "--help"
    std::string home;    ///< "--home FOLDER"; empty when not given
    std::string error;   ///< not empty: the line to print before ending with kUsageStatus
};

inline constexpr int kUsageStatus = 2;

/// The arguments behind the program's name.
CommandLine ParseCommandLine(const std::vector<std::string>& arguments);
/// "usage: zentrova [-t] [--home FOLDER]"
std::string UsageLine();

/// The folder of the running program; `argv0`, its name as it was called, where the system does not tell.
std::string ExecutableFolder(const char* argv0);

/// The program folder: `home` or ZENTROVA_HOME when given; the executable's own folder when it can be written
/// and holds zv.ini; else the user's data folder. Relative ones become absolute.
std::string ChooseProgramFolder(const CommandLine& commandLine, const std::string& executableFolder);

/// Makes the folder, sets programFolder() and shippedFolder() and the current directory, and, when it is the
/// user's data folder and has never been used (no zv.ini), copies the sample palettes and sounds that ship
/// beside the program; nothing that is there is overwritten. False when the folder cannot be made or written.
bool EnterProgramFolder(const CommandLine& commandLine, const std::string& executableFolder);

}  // namespace zv
