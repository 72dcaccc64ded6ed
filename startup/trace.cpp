#include "startup/trace.h"

#include <array>
#include <cmath>
#include <cstdio>

#include "platform/clock.h"
#include "platform/paths.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv {

std::string TraceText;
std::int64_t TraceLast = 0, TraceTotal = 0;
double SplashValue = 0;

namespace {

constexpr std::array kReasons{
    "0 : The user chose the Close command from the Control menu on the form.",
    "1 : The Unload statement is invoked from code.",
    "2 : The current Microsoft Windows operating environment session is ending.",
    "3 : The Microsoft Windows Task Manager is closing the application.",
    "4 : An MDI child form is closing because the MDI form is closing.",
    "5 : A form is closing because its owner is closing.",
};

std::string seconds(std::int64_t ms) {
    char text[32];
    std::snprintf(text, sizeof text, "%lld.%03lld", static_cast<long long>(ms / 1000),
                  static_cast<long long>(ms % 1000));
    return text;
}

}  // namespace

void StartTrace() {
    TraceText.clear();
    TraceTotal = 0;
    TraceLast = monotonicMs();
}

void FillTraceLog(std::string_view step) {
    const std::int64_t now = monotonicMs();
    const std::int64_t elapsed = now - TraceLast;
    TraceLast = now;
    TraceTotal += elapsed;
    TraceText.append(seconds(elapsed)).append(" : ").append(step).append("\r\n");
}

std::string TraceFile() { return InProgramFolder("Trace_start.log"); }

void WriteTraceStart() {
    replaceFile(nativePath(TraceFile()),
                TraceText + "Software loaded in " + seconds(TraceTotal) + " seconds\r\n", Flush::later);
}

void SetProgress(double percent) {
    SplashValue = percent;
    callUp(startupUpcalls.splashBar, static_cast<int>(std::lround(SplashWidth * SplashValue * 0.01)));
}

void AddProgress(double percent) { SetProgress(SplashValue + percent); }

void SplashStep(const std::string& text) { callUp(startupUpcalls.splashStep, text); }

std::string UnloadReasonText(int code) {
    return code >= 0 && code < static_cast<int>(kReasons.size()) ? kReasons[static_cast<std::size_t>(code)]
                                                                 : "";
}

}  // namespace zv
