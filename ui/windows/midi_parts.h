/// What the learn windows have in common. [control]
#pragma once

#include <array>
#include <string>
#include <vector>

#include "midi/learn.h"
#include "platform/controls.h"
#include "ui/windows/form_window.h"

namespace zv {

inline constexpr int kLampPixels = 22, kCodePixels = 110, kBoxPixels = 56;

/// Paints a canvas in the colour of a light.
void ShowLamp(Control& lamp, LearnLight light);
/// "903C7F" as "90 3C 7F"; the text for no code stays.
std::string SpacedCode(const std::string& code);
/// The monitor: what came in, scrolled to the end.
void ShowMonitor(Control& list, const std::vector<std::string>& messages);
/// Runs `handler` guarded under the window's name and `procedure`.
void OnClick(Control& button, const char* procedure, std::function<void()> handler);

/// OK of each window: stores, and names the former owner of the codes.
void AcceptLearn();

/// The three boxes of a message, their typing wired: digits only, two of them, brought into range when another
/// box is taken.
class MessageBoxes {
  public:
    MessageBoxes(FormWindow& form, const char* name, int row);
    void show(const MessageRow& row);
    std::vector<FormCell> cells() const;
    void setVisible(bool on);

  private:
    std::array<Control*, kMessageBoxes> boxes_{};
};

}  // namespace zv
