/// The start-up trace ("-t"), the splash's steps and bar, and the reasons of closing. [control]
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zv {

extern std::string TraceText;
extern std::int64_t TraceLast, TraceTotal;  ///< ms

/// Begins the trace: now is the time of the last step.
void StartTrace();
/// Adds "seconds.mmm : step" for the time since the last step.
void FillTraceLog(std::string_view step);
/// Writes Trace_start.log with the trace and the total, replacing an older one.
void WriteTraceStart();

inline constexpr int SplashWidth = 4215;  ///< twips of the whole bar
extern double SplashValue;                ///< percent
void SetProgress(double percent);
void AddProgress(double percent);
/// The text of lblStep.
void SplashStep(const std::string& text);

/// The reason of closing as the log has it, by its code 0 to 5; empty for another code.
std::string UnloadReasonText(int code);

/// "\Trace_start.log" of the program folder.
std::string TraceFile();

}  // namespace zv
