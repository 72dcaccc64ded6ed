/// A window that is a form: described once over its records (platform/forms.h), opened with its texts in the
/// user's language, over the grid, with the conduct that all windows share:
///   Enter presses the accept key, Escape the cancel key; Escape stops the sound as well;
///   the window comes back where it was left; a new one never covers the counter or STOP.
///
/// A window with such a form:
///     struct BellWindow {
///         FormWindow form{"frmBell", "blTitle"};
///         Control& SlideVol = form.control("SlideVol", ControlKind::slider);
///         Control& btOK = form.control("btOK", ControlKind::button, "blbtOK");
///         BellWindow() {
///             form.describe({.blocks = {{{.title = "blSound",
///                                         .rows = {{.label = "blVolume", .cells = {{&SlideVol, "blVolumeTip"}}}}}}},
///                            .keys = {{.control = &btOK, .tip = "blbtOKTip", .role = KeyRole::accept}}});
///         }
///     };
/// [control]
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/controls.h"
#include "platform/forms.h"
#include "platform/waiting.h"

namespace zv {

class FormWindow {
  public:
    /// `titleKey` is the language's key of the window's title; empty: the logic sets the caption.
    FormWindow(std::string_view name, std::string_view titleKey = {});
    ~FormWindow();
    FormWindow(const FormWindow&) = delete;
    FormWindow& operator=(const FormWindow&) = delete;

    Control window;

    /// A record of this window, which lives as long as it does. `captionKey` is its text's key.
    Control& control(std::string_view name, ControlKind kind, std::string_view captionKey = {},
                     int index = -1);
    /// Says once what stands in the window; makes the records of its texts.
    void describe(Form form);
    /// Shows it, or brings it to the front; `focus` takes the keyboard, else the first field.
    void open(Control* focus = nullptr);
    /// Hides it and gives the keyboard back to the main window.
    void close();
    /// Gives the open window the size that its contents now need.
    void refit();
    bool isOpen() const { return window.form != nullptr && shown_; }
    /// All texts anew, in the language of the settings.
    void fillTexts();

    std::function<void(KeyEvent&)> onKey;  ///< keys that Enter, Escape and the focused control leave
    std::function<void()> onClosed;
    std::function<void()> onTexts;  ///< after all texts were set, for those that are no key of the language
    std::function<void()> onPlace;  ///< says where a card stands; others stand over the grid
    bool alwaysCentred = false;     ///< opens in the middle each time instead of where it was left

  private:
    struct Text {
        Control* record;
        std::string key;
        bool tip;
    };
    void takeText(FormText& text, bool tip, Control* of = nullptr);
    void takeBlocks(std::vector<FormBlock>& blocks);
    void takeCells(std::vector<FormCell>& cells);
    void keyDown(KeyEvent& event);
    bool pressRole(KeyRole role);

    void cancel();

    std::string titleKey_;
    std::vector<std::unique_ptr<Control>> controls_;
    std::vector<Text> texts_;
    bool shown_ = false, placed_ = false;
    std::optional<Waiting> waiting_;  ///< while a modal one is open
};

/// Closes all of them, when the program ends.
void CloseForms();

}  // namespace zv
