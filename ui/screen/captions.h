/// The texts on the buttons: from a path to a caption, with the duration above it. [control]
#pragma once

#include <string>
#include <string_view>

namespace zv {

/// The caption of a path; empty for an empty path and for a bare drive.
std::string btCaption(const std::string& path);
/// The tool tip of a button that failed to open: caption, the language's text, the error, a line each.
std::string MakeBJingName(const std::string& error, const std::string& path);
/// The text of a button from its record: with the duration above it when JDispDuration is 1. A slot that
/// failed to open shows MakeBJingName. Empty for an empty slot.
std::string ButtonText(int index);
/// Captions of all live buttons anew, with or without the duration.
void RewriteJingle();

/// Seconds as minutes, colon, two digits of seconds, point, one decimal; empty for an empty text.
std::string seconds2msd(std::string_view value);
std::string seconds2msd(double seconds);

}  // namespace zv
