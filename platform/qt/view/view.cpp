#include "platform/qt/view/view.h"

#include <unordered_map>

#include "platform/qt/view/theme.h"

namespace zv::shell {
namespace {

/// Never torn down: widgets may outlive the order of other statics.
std::unordered_map<const Control*, RecordView*>& views() {
    static auto* map = new std::unordered_map<const Control*, RecordView*>;
    return *map;
}

std::unordered_map<const QObject*, RecordView*>& byWidget() {
    static auto* map = new std::unordered_map<const QObject*, RecordView*>;
    return *map;
}

bool isField(ControlKind kind) {
    return kind == ControlKind::listBox || kind == ControlKind::comboBox || kind == ControlKind::textBox ||
           kind == ControlKind::slider || kind == ControlKind::number || kind == ControlKind::canvas ||
           kind == ControlKind::tabs;
}

}  // namespace

RecordView::RecordView(Control& r, QWidget& w) : record(r), widget(w) {
    views()[&r] = this;
    byWidget()[&w] = this;
    w.setObjectName(textOf(r.name));
}

RecordView::~RecordView() {
    views().erase(&record);
    byWidget().erase(&widget);
}

void RecordView::refresh() {
    if (record.kind != ControlKind::window && !inForm(record)) {
        const QRect place = placeOf(record);
        if (widget.geometry() != place) widget.setGeometry(place);
    }
    if (widget.isEnabled() != record.enabled()) widget.setEnabled(record.enabled);
    apply();
    if (isField(record.kind)) {
        const QString name = fieldName(record);
        if (widget.accessibleName() != name) widget.setAccessibleName(name);
    }
    const QString tip = record.toolTip().empty() ? fallbackTip() : textOf(record.toolTip);
    if (widget.toolTip() != tip) widget.setToolTip(tip);
    if (record.kind != ControlKind::window && widget.isHidden() == record.visible()) {
        widget.setVisible(record.visible);
    }
}

void RecordView::press() {
    if (record.onClick) {
        call(record.onClick);
        return;
    }
    const MouseEvent middle{MouseButton::left, 0, record.width / 2, record.height / 2};
    call(record.onMouseDown, middle);
    call(record.onMouseUp, middle);
}

bool inForm(const Control& record) {
    const Control* top = &record;
    while (top->parent != nullptr) top = top->parent;
    return top != &record && top->form != nullptr;
}

RecordView* viewOf(const Control& record) {
    const auto found = views().find(&record);
    return found == views().end() ? nullptr : found->second;
}

Control* recordOf(const QObject* widget) {
    for (; widget != nullptr; widget = widget->parent()) {
        const auto found = byWidget().find(widget);
        if (found != byWidget().end()) return &found->second->record;
    }
    return nullptr;
}

QWidget* widgetOf(const Control& record) {
    for (const Control* c = &record; c != nullptr; c = c->parent) {
        if (RecordView* view = viewOf(*c))
            return c == &record || view->paintsChildren() ? &view->widget : nullptr;
    }
    return nullptr;
}

void makeView(Control& record, QWidget* parent) {
    switch (record.kind) {
        case ControlKind::window:
            return;
        case ControlKind::jingle:
            makeJingleView(record, parent);
            break;
        case ControlKind::panel:
            makePanelView(record, parent);
            break;
        case ControlKind::meter:
            makeMeterView(record, parent);
            break;
        case ControlKind::button:
        case ControlKind::toggle:
        case ControlKind::checkBox:
        case ControlKind::option:
            makeButtonView(record, parent);
            break;
        case ControlKind::comboBox:
            record.segmented ? makeChoiceView(record, parent) : makeFieldView(record, parent);
            break;
        case ControlKind::tabs:
            makeChoiceView(record, parent);
            break;
        case ControlKind::listBox:
        case ControlKind::textBox:
        case ControlKind::slider:
            makeFieldView(record, parent);
            break;
        case ControlKind::number:
            makeNumberView(record, parent);
            break;
        case ControlKind::canvas:
            makeCanvasView(record, parent);
            break;
        case ControlKind::frame:
        case ControlKind::label:
        case ControlKind::symbol:
        case ControlKind::progress:
        case ControlKind::shape:
        case ControlKind::colourField:
        case ControlKind::picture:
            makePlainView(record, parent);
            break;
    }
    RecordView* view = viewOf(record);
    if (view == nullptr) return;
    view->refresh();
    if (!view->paintsChildren()) makeChildren(record, &view->widget);
}

void makeChildren(Control& record, QWidget* parent) {
    for (Control* child : record.children()) {
        if (viewOf(*child) == nullptr) makeView(*child, parent);
    }
}

QRect placeOf(const Control& record) {
    return {px(record.left), px(record.top), std::max(0, px(record.width)), std::max(0, px(record.height))};
}

QRect placeIn(const Control& record, const Control& top) {
    QRect place = placeOf(record);
    for (const Control* c = record.parent; c != nullptr && c != &top; c = c->parent) {
        place.translate(px(c->left), px(c->top));
    }
    return place;
}

bool visibleIn(const Control& record, const Control& top) {
    for (const Control* c = &record; c != nullptr && c != &top; c = c->parent) {
        if (!c->visible()) return false;
    }
    return true;
}

void call(const std::function<void()>& handler) {
    if (!handler) return;
    // A copy: the handler may replace itself. Handlers report their own failures; nothing may pass the
    // toolkit.
    const auto keep = handler;
    try {
        keep();
    } catch (...) {
        return;
    }
}

void call(const std::function<void(const MouseEvent&)>& handler, const MouseEvent& event) {
    if (!handler) return;
    call([keep = handler, event] { keep(event); });
}

}  // namespace zv::shell
