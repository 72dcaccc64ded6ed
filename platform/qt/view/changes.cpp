#include "platform/qt/view/changes.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <algorithm>
#include <vector>

#include "platform/clock.h"
#include "platform/qt/view/painted.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

std::uint64_t opened = 0;

void showChange(Control& record) {
    if (RecordView* view = viewOf(record)) {
        view->refresh();
        if (record.kind == ControlKind::window) windowUpcalls.changed(record);
        return;
    }
    // Painted by a record above, or made after its window was.
    for (Control* c = record.parent; c != nullptr; c = c->parent) {
        RecordView* view = viewOf(*c);
        if (view == nullptr) continue;
        if (view->paintsChildren()) {
            view->partChanged(record);
        } else {
            makeChildren(*c, &view->widget);
        }
        return;
    }
}

}  // namespace

void flushChanged() {
    if (QCoreApplication::instance() == nullptr) return;
    // Showing a record changes no record, so one pass is enough; a handler that a widget calls back comes
    // again by its own change.
    const AskedTogether painting;
    std::vector<Control*> forms;  // a record of each form that changed
    for (Control* record : takeChanged()) {
        showChange(*record);
        const auto same = [&](const Control* c) { return c->parent == record->parent; };
        if (inForm(*record) && std::ranges::none_of(forms, same)) forms.push_back(record);
    }
    for (const Control* record : forms) windowUpcalls.formChanged(*record);
    windowUpcalls.advance(monotonicMs());
}

void deliverEvents() {
    if (QCoreApplication::instance() == nullptr) return;
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
}

void noteOpened() { ++opened; }

std::uint64_t openedSoFar() { return opened; }

}  // namespace zv::shell
