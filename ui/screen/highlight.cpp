#include "ui/screen/highlight.h"

#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/controls.h"
#include "startup/guard.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/shaded.h"

namespace zv {

namespace {

bool playModeFits(const JingleRecord& j) { return !j.Path.empty() && j.Seq == 0; }

bool filledAndThere(const JingleRecord& j) { return !j.Path.empty() && !j.MissingFile; }

bool anyFits(const JingleRecord&) { return true; }

void highlightAssignable() {
    for (const int i : LiveJingles()) {
        if (Button(i) != nullptr && !Jingle(i).Playing) {
            PaintButton(i, Shaded.ass, GetForeColor(Shaded.ass, "jingle"));
        }
    }
}

/// Paints every live button: those that fit in the option's colour, the others as faces.
void highlight(Colour shaded, bool (*fits)(const JingleRecord&)) {
    for (const int i : LiveJingles()) {
        if (Button(i) == nullptr) {
            continue;
        }
        const JingleRecord& j = Jingle(i);
        const Colour back = fits(j) ? shaded : BtnFaceColor;
        PaintButton(i, back, j.MissingFile ? kMissingColour : GetForeColor(back, "jingle"));
    }
}

}  // namespace

void HighlightArmed() {
    if (OptionCode == "ass") {
        highlightAssignable();
        return;
    }
    const struct {
        const char* code;
        Colour shaded;
        bool (*fits)(const JingleRecord&);
    } options[] = {{"lp", Shaded.lp, anyFits},        {"sq", Shaded.sq, anyFits},
                   {"ar", Shaded.ar, playModeFits},   {"tc", Shaded.tc, playModeFits},
                   {"ps", Shaded.ps, playModeFits},   {"ns", Shaded.ns, playModeFits},
                   {"co", Shaded.co, filledAndThere}, {"fx", Shaded.fx, filledAndThere},
                   {"ta", Shaded.ta, filledAndThere}};
    for (const auto& option : options) {
        if (OptionCode == option.code) {
            highlight(option.shaded, option.fits);
        }
    }
}

void ResetJingles(int except) {
    guarded("modClick.ResetJingles", [&] {
        SelectorsOn = false;
        for (const int i : LiveJingles()) {
            if (i == except || Button(i) == nullptr || Jingle(i).Playing) {
                continue;
            }
            Colour back = 0;
            Colour fore = 0;
            RestColours(i, back, fore);
            PaintButton(i, back, fore);
        }
    });
}

}  // namespace zv
