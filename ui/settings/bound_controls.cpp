#include "ui/settings/bound_controls.h"

#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "startup/guard.h"
#include "startup/settings_file.h"

namespace zv {

namespace {

int numberOf(const SettingKey& key) { return std::atoi(SettingText(key).c_str()); }

bool isText(const SettingKey& key) { return key.type == SettingType::text; }

/// Row of a text setting in the control's list, -1 when it is not there.
int rowOf(const Control& control, const std::string& text) {
    const std::vector<std::string>& items = control.items();
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i] == text) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

}  // namespace

void BoundControls::bind(Control& control, std::string_view key, BindOptions options) {
    const SettingKey* setting = FindSetting(key);
    if (setting == nullptr) {
        throw std::logic_error("no such setting: " + std::string(key));
    }
    const bool measures = control.kind == ControlKind::slider || control.kind == ControlKind::number;
    if (measures) {
        if (setting->rules.outside != Outside::asIs && setting->rules.high != kNoLimit) {
            control.minimum = setting->rules.low / options.step;
            control.maximum = setting->rules.high / options.step;
        }
        control.standard = std::atoi(SettingDefault(*setting).c_str()) / options.step;
    }
    const std::size_t at = bound_.size();
    bound_.push_back({&control, setting, std::move(options)});
    control.onChange = [this, at] {
        guarded(bound_[at].control->name + "_Change", [&] { take(bound_[at]); });
    };
}

void BoundControls::greyUnless(Control& control, std::function<bool()> condition) {
    conditions_.emplace_back(&control, std::move(condition));
}

void BoundControls::grey() const {
    for (const auto& [control, condition] : conditions_) {
        control->enabled = condition();
    }
}

void BoundControls::show(const Bound& bound) const {
    Control& c = *bound.control;
    const SettingKey& key = *bound.key;
    switch (c.kind) {
        case ControlKind::checkBox:
        case ControlKind::toggle:
            c.value = numberOf(key) != 0 ? 1 : 0;
            break;
        case ControlKind::option:
            c.value = numberOf(key) == c.index ? 1 : 0;
            break;
        case ControlKind::slider:
        case ControlKind::number:
            c.value = numberOf(key) / bound.options.step;
            break;
        case ControlKind::comboBox:
        case ControlKind::listBox:
        case ControlKind::tabs:
            c.listIndex = isText(key) ? rowOf(c, SettingText(key)) : numberOf(key);
            break;
        case ControlKind::colourField:
            c.backColor = numberOf(key);
            break;
        default:
            c.caption = SettingText(key);
            break;
    }
    if (bound.options.shown != nullptr) {
        bound.options.shown->caption = SettingText(key) + bound.options.unit;
    }
}

void BoundControls::take(const Bound& bound) {
    const Control& c = *bound.control;
    switch (c.kind) {
        case ControlKind::option:
            set(bound, std::to_string(c.index));
            break;
        case ControlKind::checkBox:
        case ControlKind::toggle:
            set(bound, c.value() != 0 ? "1" : "0");
            break;
        case ControlKind::slider:
        case ControlKind::number:
            set(bound, std::to_string(c.value() * bound.options.step));
            break;
        case ControlKind::comboBox:
        case ControlKind::listBox:
        case ControlKind::tabs:
            set(bound, isText(*bound.key) ? c.text() : std::to_string(c.listIndex()));
            break;
        case ControlKind::colourField:
            set(bound, std::to_string(c.backColor()));
            break;
        default:
            set(bound, c.caption());
            break;
    }
}

void BoundControls::set(const Bound& bound, const std::string& text) {
    SetSetting(*bound.key, text);
    if (!bound.key->rules.savedAtExit) {
        WriteSetting(bound.key->key, SettingText(*bound.key));
    }
    // Another control may show the same setting; what is being typed stays as it is typed.
    for (const Bound& other : bound_) {
        const bool same = other.key == bound.key;
        if (same && !(other.control == bound.control && other.control->kind == ControlKind::textBox)) {
            show(other);
        }
    }
    grey();
    if (bound.options.changed) {
        bound.options.changed();
    }
}

void BoundControls::load() {
    for (const Bound& bound : bound_) {
        show(bound);
    }
    grey();
}

void BoundControls::restore() {
    for (std::size_t i = 0; i < bound_.size(); ++i) {
        set(bound_[i], SettingDefault(*bound_[i].key));
    }
}

}  // namespace zv
