#include "platform/qt/view/windows.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QResizeEvent>
#include <QScreen>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>
#include <vector>

#include "platform/desktop.h"
#include "platform/forms.h"
#include "platform/qt/view/changes.h"
#include "platform/qt/view/form_view.h"
#include "platform/qt/view/native.h"
#include "platform/qt/view/style.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"
#include "platform/waiting.h"

namespace zv::shell {
namespace {

std::vector<Control*>& shownWindows() {
    static auto* windows = new std::vector<Control*>;  // the one in front last
    return *windows;
}

int lockDepth = 0;
constexpr double kCardRadius = 6;
constexpr int kMostWidgets = 10000;  ///< more than any window has

/// A window of the program. Its size follows its record and the record follows the user's resizing.
class WindowWidget final : public QWidget, public RecordView {
  public:
    explicit WindowWidget(Control& r) : QWidget(nullptr), RecordView(r, static_cast<QWidget&>(*this)) {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setFocusPolicy(Qt::ClickFocus);
        if (r.name == "frmSplash") setWindowFlags(Qt::SplashScreen);
        if (r.form != nullptr && r.form->borderless) setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
        if (isCard()) setAttribute(Qt::WA_OpaquePaintEvent, false);
        resize(px(r.width), px(r.height));
    }

    /// Shown for the first time where its record says; one that fills a whole screen is maximised, so that
    /// its frame and the desktop's bars keep their place.
    void showFirst() {
        wasShown = true;
        const QRect wanted(px(record.left), px(record.top), width(), height());
        if (isCard()) return move(wanted.topLeft());
        const QScreen* screen = QGuiApplication::screenAt(wanted.center());
        const bool fills = screen != nullptr && wanted.contains(screen->geometry());
        if (fills && QGuiApplication::platformName() != QLatin1String("offscreen")) {
            setWindowState(Qt::WindowMaximized);
        } else if (wanted.topLeft() != QPoint()) {
            move(wanted.topLeft());
        }
    }

    void apply() override {
        setWindowTitle(captionOf(record.caption));
        const QSize wanted(px(record.width), px(record.height));
        if (!following_ && wanted != size() && !wanted.isEmpty()) resize(wanted);
        const QPoint place(px(record.left), px(record.top));
        if (!following_ && wasShown && place != pos()) move(place);
        if (record.backColor() != themed_ || !hasTheme_) {
            themed_ = record.backColor;
            hasTheme_ = true;
            const Theme theme = themeFor(record);
            if (!shownWindows().empty() && shownWindows().back() == &record) {
                setProgramTheme(theme);
                QApplication::setPalette(paletteOf(theme));
            }
            setPalette(paletteOf(theme));
            restyle(record);
            update();
        }
    }

    void closeEvent(QCloseEvent* e) override {
        // A window that the program closes is hidden through its record; this is the user's or the session's
        // doing.
        if (const Waiting* waiting = waitingNow();
            waiting != nullptr && waiting->what == Waiting::For::answer && waiting->window != &record) {
            e->ignore();
            if (refusedMeanwhile) call(refusedMeanwhile);
            return;
        }
        if (!askClose(0)) e->ignore();
    }

    /// The layout of a window that is described; null for others.
    FormView* form = nullptr;

    bool wasShown = false;  ///< only then does the record's visibility count

    bool isCard() const { return record.form != nullptr && record.form->card; }

    bool askClose(int reason) {
        if (record.onQueryClose) {
            bool may = true;
            call([&] { may = record.onQueryClose(reason); });
            if (!may) return false;
        }
        call(record.onClose);
        return true;
    }

  protected:
    void paintEvent(QPaintEvent* e) override {
        QPainter p(this);
        const Theme theme = themeFor(record);
        if (isCard()) {
            drawFace(p, rect(), theme.dark ? theme.panel : theme.field, theme.accent, kCardRadius);
        } else {
            p.fillRect(e->rect(), theme.ground);
        }
    }

    /// Tab goes round inside a card: what lies behind it waits.
    bool focusNextPrevChild(bool next) override {
        if (!isCard()) return QWidget::focusNextPrevChild(next);
        QWidget* const from = QApplication::focusWidget();
        QWidget* w = from != nullptr ? from : this;
        for (int turns = 0; turns < kMostWidgets; ++turns) {
            w = next ? w->nextInFocusChain() : w->previousInFocusChain();
            const bool stops = (w->focusPolicy() & Qt::TabFocus) != 0 && w->isEnabled() && w->isVisible();
            if (!stops || !isAncestorOf(w)) continue;
            w->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
        return true;
    }

    void resizeEvent(QResizeEvent* e) override {
        const int w = e->size().width() * kTwipsPerPixel;
        const int h = e->size().height() * kTwipsPerPixel;
        if (w == record.width() && h == record.height()) return;
        following_ = true;
        record.width = w;
        record.height = h;
        following_ = false;
        call(record.onResize);
    }

    void moveEvent(QMoveEvent*) override {
        if (!wasShown || isMinimized()) return;
        following_ = true;
        record.left = pos().x() * kTwipsPerPixel;
        record.top = pos().y() * kTwipsPerPixel;
        following_ = false;
    }

  private:
    void restyle(Control& from) {
        for (Control* child : from.children()) {
            if (RecordView* view = viewOf(*child)) {
                view->themeChanged();
                view->widget.update();
                restyle(*child);
            }
        }
    }

    Colour themed_ = 0;
    bool hasTheme_ = false;
    bool following_ = false;  ///< the record learns from the window, not the other way round
};

WindowWidget* windowWidget(const Control& window) {
    RecordView* view = viewOf(window);
    return view != nullptr && window.kind == ControlKind::window ? static_cast<WindowWidget*>(view) : nullptr;
}

void advanceBelow(const Control& record, std::int64_t now) {
    for (Control* child : record.children()) {
        const bool meter = child->kind == ControlKind::meter;
        if (!meter && (child->kind != ControlKind::frame || !child->visible())) continue;
        RecordView* view = viewOf(*child);
        if (view == nullptr) continue;
        if (meter) {
            view->advance(now);
        } else {
            advanceBelow(*child, now);
        }
    }
}

}  // namespace

RecordView* makeWindowView(Control& record) {
    auto* made = new WindowWidget(record);
    relayEvents(*made, *made);
    relayWindowKeys(*made);
    return made;
}

void windowChanged(Control& window) {
    WindowWidget* w = windowWidget(window);
    if (w == nullptr) return;
    if (!window.visible() && w->isVisible()) {
        hideWindow(window);
    } else if (window.visible() && w->isHidden() && w->wasShown) {
        showWindow(window);
    }
}

void advanceViews(std::int64_t now) {
    for (const Control* window : shownWindows()) advanceBelow(*window, now);
}

Control* activeWindow() {
    if (Control* c = recordOf(QApplication::activeWindow())) return c;
    return shownWindows().empty() ? nullptr : shownWindows().back();
}

void dropWindow(Control& window) {
    std::erase(shownWindows(), &window);
    delete windowWidget(window);
}

void dropAllWindows() {
    while (!shownWindows().empty()) dropWindow(*shownWindows().back());
    for (Control* c : allControls()) {
        if (c->kind == ControlKind::window) dropWindow(*c);
    }
}

void formChanged(const Control& record) {
    const Control* top = &record;
    while (top->parent != nullptr) top = top->parent;
    if (WindowWidget* w = windowWidget(*top); w != nullptr && w->form != nullptr) w->form->refresh();
}

std::vector<Control*> openWindows() { return shownWindows(); }

bool closeWindow(Control& window) {
    WindowWidget* w = windowWidget(window);
    return w != nullptr && w->isVisible() && w->close();
}

bool resizeWindow(Control& window, int widthPixels, int heightPixels) {
    WindowWidget* w = windowWidget(window);
    if (w == nullptr || !w->isVisible()) return false;
    w->resize(widthPixels, heightPixels);
    deliverEvents();
    return true;
}

}  // namespace zv::shell

namespace zv {

using namespace shell;

namespace {

WindowWidget* builtWindow(Control& window) {
    WindowWidget* w = windowWidget(window);
    if (w != nullptr || window.kind != ControlKind::window) return w;
    w = static_cast<WindowWidget*>(makeWindowView(window));
    if (lockDepth > 0) w->setUpdatesEnabled(false);
    w->refresh();
    if (window.form != nullptr) w->form = new FormView(window, *w);
    makeChildren(window, w);
    return w;
}

}  // namespace

void showWindow(Control& window) {
    WindowWidget* w = builtWindow(window);
    if (w == nullptr) return;
    std::erase(shownWindows(), &window);
    shownWindows().push_back(&window);
    window.visible = true;
    if (!w->wasShown) w->showFirst();
    setProgramTheme(themeFor(window));
    QApplication::setPalette(paletteOf(themeFor(window)));
    flushChanged();
    if (!w->isVisible()) noteOpened();
    // A question is seen even where the window around it is not to be painted for a moment.
    if (w->isCard() && lockDepth > 0) w->window()->setUpdatesEnabled(true);
    w->show();
    w->raise();
    w->activateWindow();
}

void hideWindow(Control& window) {
    std::erase(shownWindows(), &window);
    window.visible = false;
    if (WindowWidget* w = windowWidget(window)) w->hide();
}

void layOutForm(Control& window, int mostWidth, int mostHeight) {
    if (window.form == nullptr) return;
    WindowWidget* w = builtWindow(window);
    flushChanged();
    const QSize size = w->isVisible() ? w->size() : w->form->fit({mostWidth, mostHeight});
    window.width = size.width() * kTwipsPerPixel;
    window.height = size.height() * kTwipsPerPixel;
    w->form->writeBack();
}

void embedForm(Control& card, Control& host) {
    WindowWidget* inner = builtWindow(card);
    WindowWidget* outer = builtWindow(host);
    if (inner->parentWidget() != outer) inner->setParent(outer);
}

void scrollForm(Control& window, int twips) {
    if (WindowWidget* w = windowWidget(window); w != nullptr && w->form != nullptr)
        w->form->scrollBy(px(twips));
}

void lockUpdates() {
    if (++lockDepth != 1) return;
    for (Control* c : allControls()) {
        if (c->kind == ControlKind::window) {
            if (WindowWidget* w = windowWidget(*c)) w->setUpdatesEnabled(false);
        }
    }
}

void unlockUpdates() {
    if (lockDepth == 0 || --lockDepth > 0) return;
    flushChanged();
    for (Control* c : allControls()) {
        if (c->kind == ControlKind::window) {
            if (WindowWidget* w = windowWidget(*c)) w->setUpdatesEnabled(true);
        }
    }
}

void setFocus(Control& control) {
    flushChanged();
    if (QWidget* w = widgetOf(control)) w->setFocus(Qt::OtherFocusReason);
}

void selectAllText(Control& textBox) {
    flushChanged();
    QWidget* w = widgetOf(textBox);
    if (auto* line = qobject_cast<QLineEdit*>(w)) line->selectAll();
    if (auto* text = qobject_cast<QPlainTextEdit*>(w)) text->selectAll();
    if (auto* combo = qobject_cast<QComboBox*>(w); combo != nullptr && combo->isEditable())
        combo->lineEdit()->selectAll();
}

Control* focusedControl() {
    if (QWidget* w = QApplication::focusWidget()) return recordOf(w);
    if (const Control* window = activeWindow()) {
        if (RecordView* view = viewOf(*window)) {
            if (QWidget* w = view->widget.focusWidget()) return recordOf(w);
        }
    }
    return nullptr;
}

void setAlwaysOnTop(Control& window, bool on) {
    WindowWidget* w = builtWindow(window);
    if (w == nullptr || w->isCard() || w->windowFlags().testFlag(Qt::WindowStaysOnTopHint) == on) return;
    const bool shown = w->isVisible();
    w->setWindowFlag(Qt::WindowStaysOnTopHint, on);
    if (shown) w->show();
}

void setFullScreen(Control& window, bool on) {
    WindowWidget* w = builtWindow(window);
    if (w == nullptr || w->isFullScreen() == on) return;
    if (on) {
        w->showFullScreen();
    } else {
        w->showNormal();
    }
}

void setMinimumSize(Control& window, int widthPixels, int heightPixels) {
    if (WindowWidget* w = builtWindow(window)) w->setMinimumSize(widthPixels, heightPixels);
}

bool isMinimised(const Control& window) {
    const WindowWidget* w = windowWidget(window);
    return w != nullptr && w->isMinimized();
}

bool grabWindow(Control& window, const std::string& file) {
    WindowWidget* w = builtWindow(window);
    if (w == nullptr) return false;
    flushChanged();
    const bool locked = !w->updatesEnabled();
    if (locked) w->setUpdatesEnabled(true);
    const bool done = w->grab().save(textOf(file), "PNG");
    if (locked) w->setUpdatesEnabled(false);
    return done;
}

void centreListRow(Control& list, int row) {
    flushChanged();
    if (RecordView* view = viewOf(list)) centreRow(*view, row);
}

int visibleListRows(const Control& list) {
    flushChanged();
    const RecordView* view = viewOf(list);
    return view == nullptr ? 0 : visibleRows(*view);
}

}  // namespace zv
