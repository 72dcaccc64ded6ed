/// A small window of records for the tests of the shell, painted off screen, with a clock that the test sets.
#pragma once

#include <QImage>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/controls.h"
#include "platform/desktop.h"
#include "platform/qt/view/shell.h"
#include "platform/qt/view/view.h"

namespace zv::test {

void setNow(std::int64_t ms);

inline constexpr int twips(int pixels) { return pixels * kTwipsPerPixel; }

inline void place(Control& c, int x, int y, int w, int h) {
    c.left = twips(x);
    c.top = twips(y);
    c.width = twips(w);
    c.height = twips(h);
}

/// One jingle button with the parts that the logic gives it.
struct Family {
    Family(Control& block, int index, int x, int y, int w = 200, int h = 76);
    Control button, bar, lp, box;
};

/// A window with a button family, a display, a list and some keys; told down in `log` what reached the
/// handlers.
struct Stage {
    explicit Stage(Colour back = 0x202020);
    ~Stage();

    /// Lets the handlers of a control write its name and the event into the log.
    void listen(Control& c);
    /// The log since the last call, joined by blanks.
    std::string told();
    /// What the window shows now.
    QImage picture();
    QColor pixel(int x, int y);

    Control window{"frmStage", ControlKind::window};
    Control block{"fraBlock", ControlKind::frame, &window};
    std::vector<std::unique_ptr<Family>> families;
    Control key{"btKey", ControlKind::button, &window};
    Control list{"lstRows", ControlKind::listBox, &window};
    Control text{"txtName", ControlKind::textBox, &window};
    Control slide{"SlideVol", ControlKind::slider, &window};
    Control tick{"ckTick", ControlKind::checkBox, &window};
    Control label{"lblText", ControlKind::label, &window};
    Control display{"picDisp", ControlKind::panel, &window};
    Control digit{"lblPosSecU", ControlKind::label, &display};
    Control meter{"VuL", ControlKind::meter, &window};

  private:
    std::vector<std::string> log_;
};

}  // namespace zv::test
