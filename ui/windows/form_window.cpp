#include "ui/windows/form_window.h"

#include <algorithm>
#include <utility>

#include "model/actions.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/window_settings.h"
#include "ui/records/main_window.h"
#include "ui/windows/form_place.h"

namespace zv {

namespace {

std::vector<FormWindow*>& forms() {
    static auto* all = new std::vector<FormWindow*>;  // forms in statics may end after any other static
    return *all;
}

/// Enter belongs to these while they have the keyboard.
bool takesEnter(const Control& control) {
    switch (control.kind) {
        case ControlKind::button:
        case ControlKind::toggle:
        case ControlKind::checkBox:
        case ControlKind::option:
        case ControlKind::colourField:
            return true;
        case ControlKind::textBox:
            return control.height() >= kManyLines * kTwipsPerPixel;
        default:
            return false;
    }
}

bool takesFocus(const Control& control) {
    switch (control.kind) {
        case ControlKind::label:
        case ControlKind::symbol:
        case ControlKind::frame:
        case ControlKind::progress:
        case ControlKind::meter:
        case ControlKind::shape:
        case ControlKind::picture:
            return false;
        default:
            return control.visible && control.enabled;
    }
}

}  // namespace

FormWindow::FormWindow(std::string_view name, std::string_view titleKey)
    : window(name, ControlKind::window), titleKey_(titleKey) {
    window.visible = false;
    window.onKeyDown = [this](KeyEvent& e) { guarded(window.name + ".Form_KeyDown", [&] { keyDown(e); }); };
    window.onClose = [this] { guarded(window.name + ".Form_Unload", [&] { cancel(); }); };
    forms().push_back(this);
}

FormWindow::~FormWindow() { std::erase(forms(), this); }

Control& FormWindow::control(std::string_view name, ControlKind kind, std::string_view captionKey,
                             int index) {
    controls_.push_back(std::make_unique<Control>(name, kind, &window, index));
    Control& made = *controls_.back();
    if (!captionKey.empty()) texts_.push_back({&made, std::string(captionKey), false});
    return made;
}

void FormWindow::takeText(FormText& text, bool tip, Control* of) {
    if (text.key.empty()) return;
    if (of == nullptr && text.record == nullptr) text.record = &control(text.key, ControlKind::label);
    texts_.push_back({of != nullptr ? of : text.record, text.key, tip});
}

void FormWindow::takeCells(std::vector<FormCell>& cells) {
    for (FormCell& cell : cells) {
        if (cell.control != nullptr) takeText(cell.tip, true, cell.control);
        takeText(cell.unit, false);
    }
}

void FormWindow::takeBlocks(std::vector<FormBlock>& blocks) {
    for (FormBlock& block : blocks) {
        for (FormCard& card : block) {
            takeText(card.title, false);
            for (FormRow& row : card.rows) {
                takeText(row.label, false);
                takeCells(row.cells);
            }
        }
    }
}

void FormWindow::describe(Form form) {
    takeText(form.header.title, false);
    takeText(form.header.line, false);
    takeText(form.header.right, false);
    takeBlocks(form.blocks);
    for (FormPage& page : form.pages) takeBlocks(page.blocks);
    takeText(form.note, false);
    takeCells(form.keysLeft);
    takeCells(form.keys);
    window.form = std::make_shared<const Form>(std::move(form));
}

void FormWindow::fillTexts() {
    if (!titleKey_.empty()) window.caption = Ln(titleKey_);
    for (const Text& text : texts_) {
        std::string words = LnBox(text.key);
        if (words.empty()) words = text.key;
        if (text.tip) {
            text.record->toolTip = words;
        } else {
            text.record->caption = words;
        }
    }
    if (onTexts) onTexts();
    const Form& form = *window.form;
    if (form.pager == nullptr) return;
    std::vector<std::string> names;
    for (const FormPage& page : form.pages)
        names.push_back(page.name.record != nullptr ? page.name.record->caption() : LnBox(page.name.key));
    form.pager->items = names;
    if (form.pager->listIndex() < 0) form.pager->listIndex = 0;
}

void FormWindow::open(Control* focus) {
    const bool before = std::exchange(shown_, true);
    const Form& form = *window.form;
    if (!waiting_ && (form.modal || form.card)) {
        waiting_.emplace(form.card ? Waiting::For::answer : Waiting::For::window, &window,
                         [this] { guarded(window.name + ".Form_Unload", [&] { cancel(); }); });
    }
    window.backColor = frmMain().window.backColor();
    fillTexts();
    const WindowRoom room = RoomOverGrid();
    layOutForm(window, room.width, room.height);
    if (onPlace) {
        onPlace();
    } else if (!std::exchange(placed_, true) || (alwaysCentred && !before)) {
        PlaceOverGrid(window);
    } else if (!before) {
        HoldOnScreen(window);
    }
    showWindow(window);
    setAlwaysOnTop(window, windowSettings.AlwaysOnTop == 1);
    if (focus == nullptr) {
        const auto cells = cellsOf(*window.form);
        const auto first = std::ranges::find_if(
            cells, [](const FormCell* c) { return c->control != nullptr && takesFocus(*c->control); });
        if (first != cells.end()) focus = (*first)->control;
    }
    if (focus != nullptr) setFocus(*focus);
}

void FormWindow::refit() {
    if (!isOpen()) return;
    hideWindow(window);  // the shell fits windows before it shows them
    const WindowRoom room = RoomOverGrid();
    layOutForm(window, room.width, room.height);
    PlaceOverGrid(window);
    showWindow(window);
}

void FormWindow::close() {
    if (!std::exchange(shown_, false)) return;
    waiting_.reset();
    hideWindow(window);
    setFocus(frmMain().window);
    if (onClosed) onClosed();
}

void FormWindow::cancel() {
    if (!pressRole(KeyRole::cancel)) close();
}

bool FormWindow::pressRole(KeyRole role) {
    for (const FormCell* cell : cellsOf(*window.form)) {
        if (cell->role != role || cell->control == nullptr || !cell->control->visible) continue;
        if (!cell->control->enabled || !cell->control->onClick) return true;  // it cannot be now
        const auto press = cell->control->onClick;
        press();
        return true;
    }
    return false;
}

void FormWindow::keyDown(KeyEvent& event) {
    if (event.key == Key::escape) {
        event.consumed = true;
        if (event.repeat) return;
        if (perform) perform(Action::stopAll, 0, 0);
        const bool learning = MIDILearnActive;  // STOP rests until that ends
        cancel();
        if (learning && perform) perform(Action::stopAll, 0, 0);
        return;
    }
    if (event.key == Key::enter && event.shift == 0) {
        const Control* focused = focusedControl();
        if (focused == nullptr || !takesEnter(*focused)) {
            event.consumed = true;
            // What is being typed into a number counts before the window acts.
            for (const FormCell* cell : cellsOf(*window.form)) {
                if (cell->role == KeyRole::accept && cell->control != nullptr) setFocus(*cell->control);
            }
            if (!event.repeat) pressRole(KeyRole::accept);
            return;
        }
    }
    if (onKey) onKey(event);
}

void CloseForms() {
    for (FormWindow* form : forms()) form->close();
}

}  // namespace zv
