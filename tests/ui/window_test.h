// The main window over the studio: records, timers and sound as in the program, without a widget.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <algorithm>
#include "audio/open_palette.h"
#include "audio/play.h"
#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/clock.h"
#include "startup/stores.h"
#include "tests/support/desktop.h"
#include "tests/support/ear.h"
#include "tests/support/studio.h"
#include "ui/edit/options.h"
#include "ui/edit/palette_list.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"

namespace zv::test {

class WindowTest : public StudioTest {
  protected:
    WindowTest();
    ~WindowTest() override;

    /// Gives the window an inner size in pixels and lays it out.
    void resize(int widthPixels, int heightPixels);
    /// A sound on a slot, opened as a palette's is. `keys` are further keys of it ("Loop=1").
    void load(int index, int ms, const std::string& keys = {});
    void load(int index, const std::vector<std::int16_t>& samples, const std::string& keys = {});
    /// Writes a palette of one jingle a slot in `slots`.
    void writePalette(const std::string& name, int slots);
    void press(int index);
    void release(int index);
    /// After each tick of the display all that is shown is held against records, settings and sound, unless a test takes
    /// a record or a control in its own hands.
    bool ticksChecked = true;
    Control& button(int index) { return Button(index)->b_Jingle; }
};

/// Names of the timers that run for a while and stop, those that run now.
std::string runningTimers();

inline JingleRecord& rec(int index) { return J[static_cast<std::size_t>(index)]; }

}  // namespace zv::test
