/// The jingle editor: its page, the limits of its effects, the target of loudness. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of editor.inc, each with its default.
struct EditorSettings {
#include "startup/settings/editor.inc"
};

extern EditorSettings editorSettings;

}  // namespace zv
