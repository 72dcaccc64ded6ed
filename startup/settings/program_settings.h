/// The program itself: start, end, updates, account, language. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

inline constexpr const char* kEnglish = "English";
inline constexpr const char* kFrench = "Français";

/// A field for every line of program.inc, each with its default.
struct ProgramSettings {
#include "startup/settings/program.inc"
};

extern ProgramSettings programSettings;

}  // namespace zv
