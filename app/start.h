/// The start-up sequence and its mirror, the closing path. The one file that calls every room. [control]
#pragma once

#include "startup/command_line.h"

namespace zv {

/// Brings the program up: audio library, data files, settings, language, windows, devices, and last the
/// palette and the hot jingles. A step that fails is reported and the next goes on. False: the program cannot
/// run (no audio library, or one of another version; a second program on the folder that the presenter
/// refused); what was shown is gone and the process should end. Needs: the toolkit is up,
/// EnterProgramFolder() has been called.
bool Main(const CommandLine& commandLine);

/// How long closing waits for the work of jobs.
inline constexpr int kJobsPatienceMs = 1000;

/// The mirror: sound, windows, the log's last line, and what was asked for at the end (shutdown). The
/// settings have been saved by Form_QueryUnload before. Called once; the main window's onClose does it.
void Form_Unload();

/// The system asks the program to end: the settings are saved, then the same as Form_Unload, without a question.
void EndAsked();

}  // namespace zv
