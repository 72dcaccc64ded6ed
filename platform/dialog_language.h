/// The language of what the desktop's own dialogs say (file and folder dialogs). [control]
#pragma once

#include <functional>
#include <string>

namespace zv {

/// Two letters, "de"; asked each time a dialog opens. Empty: English.
inline std::function<std::string()> dialogLanguage;

}  // namespace zv
