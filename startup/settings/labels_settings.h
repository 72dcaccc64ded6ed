/// The words on a jingle button. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

inline constexpr const char* kSplashFont = "MS Sans Serif";

/// A field for every line of labels.inc, each with its default.
struct LabelSettings {
#include "startup/settings/labels.inc"
};

extern LabelSettings labelSettings;

/// Text before and after the word "duration" in JDispDurationEncap; both empty without the word.
std::string JDurationPrefix();
std::string JDurationSuffix();

}  // namespace zv
