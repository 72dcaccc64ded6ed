/// Controls tied to keys of the settings: one line a control says which setting it shows, and it loads, saves, greys
/// and brings back the default by itself. [control]
///
///     bound.bind(ckVolInLink, "VolInLink");
///     bound.bind(SlideFadeInSpeed, "FadeInSpeed", {.step = 10, .shown = &lblFadeInSpeedVal, .unit = " ms"});
///     bound.bind(cmbAutoDuckMode, "AutoDuckMode", {.changed = modeChanged});
///     bound.greyUnless(SlideFadeInAdvance, [] { return duckSettings.AutoDuckMode <= kDuckByTime; });
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/controls.h"
#include "startup/settings_table.h"

namespace zv {

struct BindOptions {
    int step = 1;                        ///< the setting is the control's value times this
    Control* shown = nullptr;            ///< a label that shows the setting's number
    std::string unit = {};               ///< behind it: " %", " ms"
    std::function<void()> changed = {};  ///< after the setting has the new value
};

class BoundControls {
  public:
    /// What the control's kind says is tied: value of a slider, number or check box; row of a list or combo box; the
    /// option of an array whose index the setting holds; text of a text box; colour of a field. A slider or number
    /// gets the setting's limits, where it has some, and its default for the double click.
    /// Throws std::logic_error for a key that is no setting.
    void bind(Control& control, std::string_view key, BindOptions options = {});
    /// The control, bound or not, is enabled while the condition holds; asked after each load and change.
    void greyUnless(Control& control, std::function<bool()> condition);
    /// The controls show what the settings hold. Nothing is told as changed.
    void load();
    /// All settings that are bound take their defaults, as if the user had set them.
    void restore();

  private:
    struct Bound {
        Control* control;
        const SettingKey* key;
        BindOptions options;
    };
    void show(const Bound& bound) const;
    void take(const Bound& bound);
    void set(const Bound& bound, const std::string& text);
    void grey() const;

    std::vector<Bound> bound_;
    std::vector<std::pair<Control*, std::function<bool()>>> conditions_;
};

}  // namespace zv
