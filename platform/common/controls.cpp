#include "platform/controls.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <unordered_map>
#include <unordered_set>

namespace zv {
namespace {

std::string lowered(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

/// Made by the first control and never torn down: controls in statics may end after any other static.
struct Registry {
    std::vector<Control*> all;
    std::unordered_set<const Control*> alive;
    std::unordered_map<std::string, std::vector<Control*>> byName;
    std::vector<Control*> changed;
    std::function<void()> arm;
};

Registry& registry() {
    static Registry& r = *new Registry;
    return r;
}

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

std::string joined(const std::vector<std::string>& items) {
    std::string out;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0) out += '|';
        out += items[i];
    }
    return out;
}

using Reader = std::string (*)(const Control&);

std::string flag(bool on) { return on ? "1" : "0"; }

const std::unordered_map<std::string, Reader>& readers() {
    static const std::unordered_map<std::string, Reader> table{
        {"name", [](const Control& c) { return c.name; }},
        {"index", [](const Control& c) { return std::to_string(c.index); }},
        {"visible", [](const Control& c) { return flag(c.visible); }},
        {"enabled", [](const Control& c) { return flag(c.enabled); }},
        {"left", [](const Control& c) { return std::to_string(c.left()); }},
        {"top", [](const Control& c) { return std::to_string(c.top()); }},
        {"width", [](const Control& c) { return std::to_string(c.width()); }},
        {"height", [](const Control& c) { return std::to_string(c.height()); }},
        {"backcolor", [](const Control& c) { return std::to_string(c.backColor()); }},
        {"forecolor", [](const Control& c) { return std::to_string(c.foreColor()); }},
        {"bordercolor", [](const Control& c) { return std::to_string(c.borderColor()); }},
        {"caption", [](const Control& c) { return c.caption(); }},
        {"tooltip", [](const Control& c) { return c.toolTip(); }},
        {"fontname", [](const Control& c) { return c.fontName(); }},
        {"fontsize", [](const Control& c) { return number(c.fontSize()); }},
        {"fontbold", [](const Control& c) { return flag(c.fontBold); }},
        {"fontitalic", [](const Control& c) { return flag(c.fontItalic); }},
        {"value", [](const Control& c) { return std::to_string(c.value()); }},
        {"minimum", [](const Control& c) { return std::to_string(c.minimum()); }},
        {"maximum", [](const Control& c) { return std::to_string(c.maximum()); }},
        {"listindex", [](const Control& c) { return std::to_string(c.listIndex()); }},
        {"items", [](const Control& c) { return joined(c.items()); }},
        {"toprow", [](const Control& c) { return std::to_string(c.topRow()); }},
        {"sorted", [](const Control& c) { return flag(c.sorted); }},
        {"text", [](const Control& c) { return c.text(); }},
    };
    return table;
}

}  // namespace

Control::Control(std::string_view n, ControlKind k, Control* p, int i)
    : name(n), kind(k), parent(p), index(i) {
    Registry& r = registry();
    r.all.push_back(this);
    r.alive.insert(this);
    r.byName[lowered(n)].push_back(this);
    if (parent != nullptr) parent->children_.push_back(this);
}

Control::~Control() {
    Registry& r = registry();
    r.alive.erase(this);
    std::erase(r.all, this);
    std::erase(r.changed, this);
    std::erase(r.byName[lowered(name)], this);
    if (parent != nullptr && r.alive.contains(parent)) std::erase(parent->children_, this);
}

std::string Control::text() const {
    const std::vector<std::string>& rows = items();
    const int row = listIndex();
    return row >= 0 && row < static_cast<int>(rows.size()) ? rows[static_cast<std::size_t>(row)]
                                                           : std::string();
}

void Control::touch() {
    if (changed_) return;
    changed_ = true;
    Registry& r = registry();
    r.changed.push_back(this);
    if (r.changed.size() == 1 && r.arm) r.arm();
}

Control* findControl(std::string_view name, int index) {
    const auto found = registry().byName.find(lowered(name));
    if (found == registry().byName.end()) return nullptr;
    for (Control* c : found->second) {
        if (c->index == index) return c;
    }
    return nullptr;
}

Control* findControl(std::string_view name, int index, const Control& window) {
    const auto found = registry().byName.find(lowered(name));
    if (found == registry().byName.end()) return nullptr;
    for (Control* c : found->second) {
        if (c->index == index && &windowOf(*c) == &window) return c;
    }
    return nullptr;
}

const Control& windowOf(const Control& control) {
    const Control* top = &control;
    while (top->parent != nullptr) top = top->parent;
    return *top;
}

const std::vector<Control*>& allControls() { return registry().all; }

std::vector<Control*> takeChanged() {
    std::vector<Control*> out;
    out.swap(registry().changed);
    for (Control* c : out) c->changed_ = false;
    return out;
}

void onFirstChange(std::function<void()> arm) {
    registry().arm = std::move(arm);
    if (!registry().changed.empty() && registry().arm) registry().arm();
}

std::string propertyText(const Control& control, std::string_view property, bool& known) {
    const auto found = readers().find(lowered(property));
    known = found != readers().end();
    return known ? found->second(control) : std::string();
}

}  // namespace zv
