// Palettes "A", "B" and "C" of three jingles each, Audio_Sample\A0.wav and on; A is open.
#pragma once

#include <string>

#include <map>
#include <random>
#include "audio/open_palette.h"
#include "model/held_palette.h"
#include "model/history.h"
#include "model/palette_files.h"
#include "model/pending_removals.h"
#include "startup/helpers.h"
#include "startup/stores.h"
#include "tests/ui/window_test.h"
#include "ui/edit/move.h"
#include "ui/edit/palette_list.h"
#include "ui/edit/palette_steps.h"
#include "ui/edit/remove.h"
#include "ui/edit/rename.h"
#include "ui/edit/save_dialogue.h"
#include "ui/edit/unsaved.h"
#include "ui/windows/rename_window.h"

namespace zv::test {

/// What a palette file may hold of a jingle, keys with values; those at their defaults are left out.
using Fields = std::map<std::string, std::string>;
Fields fieldsOf(const PersistedJingle& jingle);

class KeepingTest : public WindowTest {
  protected:
    KeepingTest();
    ~KeepingTest() override;

    static std::string line(const std::string& slot, const std::string& name);
    /// The names of a section's jingles with their slots: "0:A0 1:A1".
    static std::string jingles(const std::string& section, cImpulse& store = PaletteStore);
    static std::string hot() { return jingles(kHotSection, HotStore); }
    static std::string value(const std::string& section, const std::string& key);
    static void pick(const std::string& palette);
    /// Something was edited; the mark is clicked.
    static void save();
    /// Names the palette: mode 0 saves under the name, 2 renames.
    static void name(const std::string& text, int mode);
    /// Names and reasons of the history's entries, newest first.
    static std::string history();
};

}  // namespace zv::test
