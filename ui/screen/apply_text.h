/// The language's texts on the controls of this room. [control]
#pragma once

#include <string>

namespace zv {

/// Gives the text of a language key to the control it belongs to; keys of other windows do nothing.
void ApplyText(const std::string& window, const std::string& key, const std::string& text);

}  // namespace zv
