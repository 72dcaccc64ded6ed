/// Windows that are forms: what stands in them, in reading order, as a description over control records. The
/// shell lays it out for any language, scale and screen with the toolkit's own layouts and writes the places
/// back into the records. ui/windows/form_window.h makes the records of texts and opens the window. [control]
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/controls.h"

namespace zv {

/// A text of a form: a key of the language, or a record that the window's logic writes itself.
struct FormText {
    std::string key;
    Control* record = nullptr;  ///< made from the key, under its name, where none is given

    FormText() = default;
    FormText(const char* k) : key(k) {}   // NOLINT(google-explicit-constructor): a description reads better
    FormText(Control& r) : record(&r) {}  // NOLINT(google-explicit-constructor)
    bool empty() const { return key.empty() && record == nullptr; }
};

/// What a key does for its window.
enum class KeyRole : std::uint8_t {
    plain,
    accept,   ///< filled in the accent colour; Enter presses it
    cancel,   ///< Escape and the window's close press it
    destroy,  ///< outlined in red; never what Enter presses
    play,     ///< in the playing colour
};

inline constexpr int kRestOfRow = -1;  ///< a cell as wide as there is room

struct FormCell {
    Control* control = nullptr;
    FormText tip = {};   ///< tool tip: what it does, its default, its shortcut
    int width = 0;       ///< pixels at 100 %; 0: what it needs
    FormText unit = {};  ///< stands behind it: "ms", "%", or a slider's value
    KeyRole role = KeyRole::plain;
    /// Labels that follow without a gap: one figure in parts, in the dress of a value.
    std::vector<Control*> joined = {};
};

struct FormRow {
    FormText label = {};
    std::vector<FormCell> cells = {};
    int height = 0;      ///< pixels at 100 %; 0: of one line
    bool grows = false;  ///< takes the height that is left: lists, texts, canvases
};

struct FormCard {
    FormText title = {};
    std::vector<FormRow> rows = {};
    bool bare = false;  ///< without border and ground
    int share = 1;      ///< of the width, beside other cards
    int gap = 10;       ///< between rows, pixels
    /// The rows stand side by side as columns: a slider's value above it, the slider upright, its label below.
    bool upright = false;
};

/// Cards side by side; below each other where the screen is too narrow.
using FormBlock = std::vector<FormCard>;

struct FormPage {
    FormText name = {};  ///< in the list or the headers of pages
    std::vector<FormBlock> blocks = {};
};

struct FormHeader {
    FormText title = {};
    FormText line = {};   ///< facts, below the title
    FormText right = {};  ///< a figure at the right, large
};

struct Form {
    FormHeader header = {};
    std::vector<FormBlock> blocks = {};  ///< above the pages
    /// Chooses the page: `tabs` (headers above), or a `listBox` at the left side. Its items are the names of the pages.
    Control* pager = nullptr;
    Control* search = nullptr;  ///< text box above a list of pages
    std::vector<FormPage> pages = {};
    FormText note = {};                              ///< in the foot: "Every change acts at once."
    std::vector<FormCell> keysLeft = {}, keys = {};  ///< of the foot; the last one stands at the lower right
    int width = 0, height = 0;                       ///< wished, pixels at 100 %; 0: what it needs
    bool modal = false;  ///< the main window takes nothing but STOP and plain presses of jingles meanwhile
    bool evenCards =
        false;  ///< cards beside each other are equally wide, their labels in one column over all blocks
    bool borderless = false;
    bool card = false;  ///< a question: stands inside another window (embedForm) and takes its keyboard
};

/// Every cell of a form, in reading order.
std::vector<const FormCell*> cellsOf(const Form& form);

/// Builds the window at the first call, gives it the size that it needs, at most that many pixels, and writes
/// the places of its controls into their records. What does not fit scrolls.
void layOutForm(Control& window, int mostWidth, int mostHeight);
/// Lets a form that is a card stand in `host`; its place counts from there.
void embedForm(Control& card, Control& host);
/// Scrolls what did not fit, down by that many twips.
void scrollForm(Control& window, int twips);

}  // namespace zv
