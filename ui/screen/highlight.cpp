#include "ui/screen/highlight.h"

#include <array>

#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/controls.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/shaded.h"

namespace zv {

namespace {

/// Holds what an option is armed for.
struct Armable {
    const char* code;
    const char* text;  ///< key of what the display calls it
    Colour shaded;
    bool (*fits)(const JingleRecord&);
    bool (*has)(const JingleRecord&);
};

bool hasNone(const JingleRecord&) { return false; }

template <PlayMode mode>
bool hasMode(const JingleRecord& j) {
    return j.PlayMod == mode;
}

bool playModeFits(const JingleRecord& j) { return !j.Path.empty() && j.Seq == 0; }

bool filledAndThere(const JingleRecord& j) { return !j.Path.empty() && !j.MissingFile; }

bool anyFits(const JingleRecord&) { return true; }

std::array<Armable, 10> armables() {
    return {{{"ass", "mckAssign", Shaded.ass, anyFits, hasNone},
             {"lp", "mmnuLoop", Shaded.lp, anyFits, [](const JingleRecord& j) { return j.Loop != 0; }},
             {"sq", "mmnuSeq", Shaded.sq, anyFits, [](const JingleRecord& j) { return j.Seq != 0; }},
             {"ar", "mckAutoRepI", Shaded.ar, playModeFits, hasMode<PlayMode::autoRepeat>},
             {"tc", "mckTouchI", Shaded.tc, playModeFits, hasMode<PlayMode::touch>},
             {"ps", "mckPlayStopI", Shaded.ps, playModeFits, hasMode<PlayMode::playStop>},
             {"ns", "mckNoStopI", Shaded.ns, playModeFits, hasMode<PlayMode::noStop>},
             {"co", "mckColorI", Shaded.co, filledAndThere, hasNone},
             {"fx", "mckFXI", Shaded.fx, filledAndThere, hasNone},
             {"ta", "mTabCt1", Shaded.ta, filledAndThere, hasNone}}};
}

/// Paints a button that does not sound: in the colour of the option where it can go, else as a face.
/// The border tells the shell to show the colour as a frame; a button that has the option already shows it filled.
void highlight(int index, const Armable& option) {
    JingleButton* b = Button(index);
    const JingleRecord& j = Jingle(index);
    if (b == nullptr || j.Playing) {
        return;
    }
    const bool fits = option.fits(j);
    const Colour back = fits ? option.shaded : BtnFaceColor;
    PaintButton(index, back, j.MissingFile ? kMissingColour : GetForeColor(back, "jingle"));
    constexpr int kDeeper = -60;
    b->b_Jingle.borderColor = !fits ? kNoColour : option.has(j) ? ShadeColor(back, kDeeper) : back;
}

}  // namespace

void HighlightArmed() {
    for (const int i : LiveJingles()) {
        HighlightArmed(i);
    }
}

void HighlightArmed(int index) {
    for (const Armable& option : armables()) {
        if (OptionCode == option.code) {
            highlight(index, option);
        }
    }
}

void PaintAtRest(int index) {
    const JingleRecord& j = Jingle(index);
    if (ColorPickerOpen || j.Playing || j.PlayingOtherPal) {
        return;
    }
    const auto [back, fore] = RestColours(index);
    PaintButton(index, back, fore);
    if (SelectorsOn) {
        HighlightArmed(index);
    }
}

std::string ArmedText() {
    if (!SelectorsOn) {
        return {};
    }
    for (const Armable& option : armables()) {
        if (OptionCode == option.code) {
            return Ln(option.text) + ": " + Ln("mChooseButton");
        }
    }
    return {};
}

void ResetJingles(int except) {
    guarded("modClick.ResetJingles", [&] {
        SelectorsOn = false;
        for (int i = 0; i < kJingles; ++i) {  // a hidden one may come back with a larger grid
            if (i == except || Button(i) == nullptr || Jingle(i).Playing) {
                continue;
            }
            Button(i)->b_Jingle.borderColor = kNoColour;
            const auto [back, fore] = RestColours(i);
            PaintButton(i, back, fore);
        }
    });
}

}  // namespace zv
