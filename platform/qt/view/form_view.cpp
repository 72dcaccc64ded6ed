#include "platform/qt/view/form_view.h"

#include <QBoxLayout>
#include <QCoreApplication>
#include <QEvent>
#include <QFontMetrics>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "platform/qt/view/form_cells.h"
#include "platform/qt/view/style.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

// Pixels at 100 %.
constexpr int kEdge = 16, kGap = 12, kCellGap = 8;
constexpr int kLabelMost = 240;                         ///< a longer label takes two lines
constexpr int kSide = 196;                              ///< width of the list of pages
constexpr int kValueWidth = 56;                         ///< of a slider
constexpr int kUprightWidth = 24, kUprightHeight = 96;  ///< least ones of an upright slider
constexpr int kLeastHeight = 240;

/// The ground of a card: bordered, or none.
class Card final : public QWidget {
  public:
    Card(const Control& window, bool bare, QWidget* parent) : QWidget(parent), window_(window), bare_(bare) {}

  protected:
    void paintEvent(QPaintEvent*) override {
        if (bare_) return;
        QPainter p(this);
        const Theme theme = themeFor(window_);
        drawFace(p, rect(), theme.dark ? theme.panel : theme.field, theme.border, 4);
    }

  private:
    const Control& window_;
    bool bare_;
};

/// The strip at the left in which the list of pages stands.
class Side final : public QWidget {
  public:
    Side(const Control& window, QWidget* parent) : QWidget(parent), window_(window) {}

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        const Theme theme = themeFor(window_);
        p.fillRect(rect(), theme.panel);
        p.fillRect(QRect(width() - 1, 0, 1, height()), theme.border);
    }

  private:
    const Control& window_;
};

/// Scrolls what does not fit, and asks for all the room that its contents need.
class Scroll final : public QScrollArea {
  public:
    explicit Scroll(QWidget* parent) : QScrollArea(parent) {
        setFrameShape(NoFrame);
        setWidgetResizable(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setFocusPolicy(Qt::NoFocus);
        viewport()->setAutoFillBackground(false);
    }
    QSize sizeHint() const override { return widget() != nullptr ? widget()->sizeHint() : QSize(); }
    QSize minimumSizeHint() const override {
        return {widget() != nullptr ? widget()->minimumSizeHint().width() : 0, kRowHeight};
    }
};

Dress dressOf(KeyRole role) {
    switch (role) {
        case KeyRole::accept:
            return Dress::acceptKey;
        case KeyRole::destroy:
            return Dress::destroyKey;
        case KeyRole::play:
            return Dress::playKey;
        default:
            return Dress::plain;
    }
}

bool stretches(ControlKind kind) {
    switch (kind) {
        case ControlKind::listBox:
        case ControlKind::canvas:
        case ControlKind::progress:
            return true;
        default:
            return false;
    }
}

/// A row in it takes the height that is left.
bool growing(const FormBlock& block) {
    return std::ranges::any_of(block, [](const FormCard& card) {
        return std::ranges::any_of(card.rows, [](const FormRow& row) { return row.grows; });
    });
}

QWidget* rowWidget(QWidget* parent, QHBoxLayout*& row) {
    auto* widget = new QWidget(parent);
    row = new QHBoxLayout(widget);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kCellGap);
    return widget;
}

}  // namespace

FormView::FormView(Control& record, QWidget& window)
    : QObject(&window), record_(record), window_(window), form_(*record.form) {
    auto* root = new QHBoxLayout(&window);
    root->setContentsMargins(0, 0, 0, 0);
    root->setSpacing(0);
    root->setSizeConstraint(QLayout::SetNoConstraint);
    if (form_.pager != nullptr && form_.pager->kind == ControlKind::listBox) addSide(*root);
    auto* right = new QWidget(&window);
    root->addWidget(right, 1);
    body_ = new QVBoxLayout(right);
    body_->setContentsMargins(kEdge, kEdge, kEdge, kEdge);
    body_->setSpacing(kGap);
    if (QWidget* header = makeHeader()) body_->addWidget(header);

    scroll_ = new Scroll(right);
    content_ = new QWidget(scroll_);
    auto* inner = new QVBoxLayout(content_);
    inner->setContentsMargins(0, 0, 0, 0);
    inner->setSpacing(kGap);
    addBlocks(*inner, form_.blocks);
    if (!form_.pages.empty()) {
        if (form_.pager != nullptr && form_.pager->kind != ControlKind::listBox) {
            makeView(*form_.pager, content_);
            inner->addWidget(&viewOf(*form_.pager)->widget);
        }
        stack_ = new QStackedWidget(content_);
        for (const FormPage& page : form_.pages) {
            auto* widget = new QWidget(stack_);
            auto* column = new QVBoxLayout(widget);
            column->setContentsMargins(0, 0, 0, 0);
            column->setSpacing(kGap);
            addBlocks(*column, page.blocks);
            stack_->addWidget(widget);
        }
        const bool above = std::ranges::any_of(form_.blocks, growing);
        inner->addWidget(stack_, above ? 0 : 1);
    }
    scroll_->setWidget(content_);
    content_->setAutoFillBackground(false);
    body_->addWidget(scroll_, 1);
    if (QWidget* foot = makeFoot()) body_->addWidget(foot);
    // A widget that was never shown counts as empty in a layout; records say themselves whether they are seen.
    for (QWidget* w : window.findChildren<QWidget*>()) {
        if (w->layout() != nullptr && recordOf(w) == &record && w->parentWidget() != stack_) w->show();
    }
    scroll_->show();
    if (stack_ != nullptr) stack_->show();
    content_->installEventFilter(this);
    window.installEventFilter(this);
    refresh();
}

void FormView::addSide(QBoxLayout& root) {
    auto* side = new Side(record_, &window_);
    side->setFixedWidth(kSide);
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins(kCellGap, kEdge, kCellGap, kEdge);
    column->setSpacing(kGap);
    for (Control* control : {form_.search, form_.pager}) {
        if (control == nullptr) continue;
        makeView(*control, side);
        QWidget& w = viewOf(*control)->widget;
        if (control == form_.search) w.setFixedHeight(kRowHeight);
        column->addWidget(&w, control == form_.pager ? 1 : 0);
    }
    root.addWidget(side);
}

QWidget* FormView::text(const FormText& said, int dress) {
    if (said.record == nullptr) return nullptr;
    if (viewOf(*said.record) == nullptr) makeView(*said.record, &window_);
    RecordView* view = viewOf(*said.record);
    view->dress = static_cast<Dress>(dress);
    view->widget.setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    return &view->widget;
}

QWidget* FormView::makeHeader() {
    QWidget* title = text(form_.header.title, static_cast<int>(Dress::headTitle));
    QWidget* line = text(form_.header.line, static_cast<int>(Dress::headLine));
    QWidget* right = text(form_.header.right, static_cast<int>(Dress::headRight));
    if (title == nullptr && line == nullptr && right == nullptr) return nullptr;
    auto* card = new Card(record_, false, &window_);
    auto* row = new QHBoxLayout(card);
    row->setContentsMargins(kEdge, kCellGap + 2, kEdge, kCellGap + 2);
    row->setSpacing(kGap);
    auto* column = new QVBoxLayout;
    column->setSpacing(2);
    for (QWidget* w : {title, line}) {
        if (w == nullptr) continue;
        // A long name is cut with an ellipsis rather than making the window wide.
        w->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        column->addWidget(w);
    }
    row->addLayout(column, 1);
    if (right != nullptr) row->addWidget(right);
    return card;
}

QWidget* FormView::makeFoot() {
    if (form_.keys.empty() && form_.keysLeft.empty() && form_.note.empty()) return nullptr;
    QHBoxLayout* row = nullptr;
    QWidget* foot = rowWidget(&window_, row);
    row->setSpacing(kGap);
    for (const FormCell& cell : form_.keysLeft) addCell(*row, cell, nullptr);
    if (QWidget* note = text(form_.note, static_cast<int>(Dress::note))) {
        note->setFixedHeight(kFootKey);
        note->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        note->setMinimumWidth(kFieldWidth);
        row->addWidget(note, 1);
    } else {
        row->addStretch(1);
    }
    for (const FormCell& cell : form_.keys) addCell(*row, cell, nullptr);
    return foot;
}

void FormView::addBlocks(QVBoxLayout& into, const std::vector<FormBlock>& blocks) {
    Column common;  // cards below each other have their labels in one column
    std::vector<Column> even;
    for (const FormBlock& block : blocks) {
        const int share = growing(block) ? 1 : 0;
        if (block.size() == 1) {
            into.addWidget(makeCard(block.front(), common), share);
            continue;
        }
        auto* beside = new QBoxLayout(QBoxLayout::LeftToRight);
        beside->setSpacing(kGap);
        for (std::size_t i = 0; i < block.size(); ++i) {
            Column own;
            if (even.size() <= i) even.emplace_back();
            QWidget* card = makeCard(block[i], form_.evenCards ? even[i] : own);
            if (form_.evenCards) card->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
            beside->addWidget(card, block[i].share);
            columns_.push_back(own);
        }
        beside_.push_back(beside);
        into.addLayout(beside, share);
    }
    columns_.insert(columns_.end(), even.begin(), even.end());
    columns_.push_back(common);
    if (!blocks.empty() && !std::ranges::any_of(blocks, growing) &&
        (&blocks != &form_.blocks || form_.pages.empty()))
        into.addStretch(1);
}

QWidget* FormView::makeCard(const FormCard& card, Column& column) {
    auto* widget = new Card(record_, card.bare, &window_);
    auto* rows = new QVBoxLayout(widget);
    const int side = card.bare ? 0 : kEdge, end = card.bare ? 0 : kGap;
    rows->setContentsMargins(side, end, side, end);
    rows->setSpacing(card.gap);
    bool grows = false;
    if (QWidget* title = text(card.title, static_cast<int>(Dress::cardTitle))) {
        title->setSizePolicy(QSizePolicy::Preferred,
                             QSizePolicy::Minimum);  // never squeezed: the card scrolls
        rows->addWidget(title);
    }
    if (card.upright) {
        rows->addWidget(makeColumns(card), 1);
        return widget;
    }
    CardRows all{widget, {}};
    for (const FormRow& row : card.rows) {
        QWidget* made = makeRow(row, column);
        all.rows.push_back(made);
        rows->addWidget(made, row.grows ? 1 : 0);
        grows = grows || row.grows;
    }
    if (!grows) rows->addStretch(1);
    cards_.push_back(std::move(all));
    return widget;
}

/// The rows of an upright card.
QWidget* FormView::makeColumns(const FormCard& card) {
    auto* widget = new QWidget(&window_);
    auto* columns = new QHBoxLayout(widget);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(0);
    for (const FormRow& row : card.rows) {
        auto* column = new QVBoxLayout;
        column->setSpacing(2);
        for (const FormCell& cell : row.cells) {
            if (QWidget* value = text(cell.unit, static_cast<int>(Dress::value)))
                column->addWidget(value, 0, Qt::AlignHCenter);
            Control& record = *cell.control;
            record.width = kUprightWidth * kTwipsPerPixel;
            record.height = kUprightHeight * kTwipsPerPixel;
            if (viewOf(record) == nullptr) makeView(record, &window_);
            QWidget& w = viewOf(record)->widget;
            w.setMinimumSize(kUprightWidth, kUprightHeight);
            w.setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
            viewOf(record)->refresh();
            column->addWidget(&w, 1, Qt::AlignHCenter);
        }
        if (QWidget* label = text(row.label, static_cast<int>(Dress::rowLabel)))
            column->addWidget(label, 0, Qt::AlignHCenter);
        columns->addLayout(column, 1);
    }
    return widget;
}

QWidget* FormView::makeRow(const FormRow& row, Column& column) {
    QHBoxLayout* cells = nullptr;
    QWidget* widget = rowWidget(&window_, cells);
    if (!row.grows) widget->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    widget->setMinimumHeight(row.height > 0 ? row.height : 0);
    if (QWidget* label = text(row.label, static_cast<int>(Dress::rowLabel))) {
        column.labels.push_back(label);
        cells->addWidget(label, 0, row.height > kRowHeight ? Qt::AlignTop : Qt::AlignVCenter);
        cells->addSpacing(kCellGap);
    }
    bool filled = false;
    for (const FormCell& cell : row.cells) {
        addCell(*cells, cell, &row);
        filled = filled || cell.width == kRestOfRow ||
                 (cell.control != nullptr && cell.width == 0 && stretches(cell.control->kind));
    }
    if (!filled) cells->addStretch(1);
    rows_.push_back({widget, &row});
    return widget;
}

QWidget* FormView::addCell(QBoxLayout& into, const FormCell& cell, const FormRow* row) {
    if (cell.control == nullptr) {
        into.addStretch(1);
        return nullptr;
    }
    Control& record = *cell.control;
    const bool high = row != nullptr && (row->grows || row->height >= kManyLines);
    if (record.kind == ControlKind::textBox && high)
        record.height = std::max(row->height, kManyLines) * kTwipsPerPixel;  // of several lines
    if (viewOf(record) == nullptr) makeView(record, &window_);
    RecordView* view = viewOf(record);
    view->dress = dressOf(cell.role);
    QWidget& w = view->widget;
    const bool stretched = cell.width == kRestOfRow || (cell.width == 0 && stretches(record.kind));
    if (record.kind == ControlKind::label) {
        w.setSizePolicy(stretched ? QSizePolicy::Ignored : QSizePolicy::Preferred,
                        stretched ? QSizePolicy::Preferred : QSizePolicy::Minimum);
        if (stretched) wrapping_.push_back(&w);
    }
    if (stretched && record.kind != ControlKind::label)
        w.setSizePolicy(QSizePolicy::Expanding, w.sizePolicy().verticalPolicy());
    sizeCell(record, w, cell, row);
    if (!cell.joined.empty()) view->dress = Dress::value;
    view->refresh();
    auto* figure = cell.joined.empty() ? nullptr : new QHBoxLayout;
    if (figure != nullptr) {
        figure->setSpacing(0);
        figure->addWidget(&w);
        for (Control* part : cell.joined)
            figure->addWidget(text(*part, static_cast<int>(Dress::value)), 0, Qt::AlignVCenter);
        into.addLayout(figure);
    } else {
        into.addWidget(&w, stretched ? 1 : 0, high ? Qt::Alignment() : Qt::AlignVCenter);
    }
    if (QWidget* unit = text(cell.unit, static_cast<int>(Dress::value))) {
        if (record.kind == ControlKind::slider || record.kind == ControlKind::meter)
            unit->setMinimumWidth(kValueWidth);
        into.addWidget(unit, 0, Qt::AlignVCenter);
    }
    return &w;
}

/// Labels of a column are as wide as the longest, up to a limit; above it they take lines.
void FormView::alignLabels() {
    for (const Column& column : columns_) {
        int width = 0;
        for (const QWidget* label : column.labels) width = std::max(width, label->sizeHint().width());
        width = std::min(width, kLabelMost);
        for (QWidget* label : column.labels) {
            label->setFixedWidth(width);
            const Control* record = recordOf(label);
            const QFontMetrics m(fontOf(*record, 13));
            const QRect needed =
                m.boundingRect(QRect(0, 0, width, 1000), Qt::TextWordWrap, captionOf(record->caption));
            label->setMinimumHeight(needed.height() > m.height() * 3 / 2 ? needed.height() + 2 : m.height());
        }
    }
}

void FormView::wrapTexts() {
    for (QWidget* label : wrapping_) {
        const Control* record = recordOf(label);
        const QFontMetrics m(fontOf(*record, 13));
        const QRect needed = m.boundingRect(QRect(0, 0, std::max(label->width(), kSwatch), 2000),
                                            Qt::TextWordWrap, captionOf(record->caption));
        const bool lines = needed.height() > m.height() * 3 / 2;
        label->setMinimumHeight(lines ? std::max(needed.height(), 2 * m.height()) + 2 : m.height());
    }
}

void FormView::refresh() {
    if (stack_ != nullptr && form_.pager != nullptr) {
        const int page = std::clamp(form_.pager->listIndex(), 0, stack_->count() - 1);
        if (stack_->currentIndex() != page) {
            stack_->setCurrentIndex(page);
            scroll_->verticalScrollBar()->setValue(0);
        }
    }
    // A row whose controls are all hidden goes with its label.
    for (const Row& row : rows_) {
        const bool seen =
            row.said->cells.empty() || std::ranges::any_of(row.said->cells, [](const FormCell& cell) {
                return cell.control != nullptr && cell.control->visible();
            });
        if (row.widget->isHidden() != seen) continue;
        row.widget->setVisible(seen);
        refit_ = window_.isVisible();
        writeBackSoon();
    }
    // And a card whose rows are all hidden.
    for (const CardRows& card : cards_) {
        const auto hidden = [](const QWidget* row) { return row->isHidden(); };
        card.widget->setVisible(card.rows.empty() || !std::ranges::all_of(card.rows, hidden));
    }
    alignLabels();
}

/// Every layout asks anew what its widgets need and gives them their places. A window that is not on the screen
/// yet sends its widgets no word of their sizes: it is passed on here.
void FormView::settle() {
    const QList<QWidget*> all = window_.findChildren<QWidget*>();
    for (auto w = all.rbegin(); w != all.rend(); ++w) {  // from the inside out
        (*w)->updateGeometry();
        if ((*w)->layout() == nullptr) continue;
        (*w)->layout()->invalidate();
        (*w)->layout()->activate();
    }
    window_.layout()->invalidate();
    window_.layout()->activate();
    window_.layout()->setGeometry(window_.rect());
    for (QWidget* w : all) {  // and back
        if (recordOf(w) != &record_) continue;
        QResizeEvent now(w->size(), w->size());
        QCoreApplication::sendEvent(w, &now);
    }
}

QSize FormView::fit(QSize most) {
    most_ = most;
    refresh();
    for (QBoxLayout* beside : beside_) beside->setDirection(QBoxLayout::LeftToRight);
    QLayout& root = *window_.layout();
    const int bar = scroll_->verticalScrollBar()->sizeHint().width();

    settle();
    if (root.minimumSize().width() + bar > most.width()) {
        for (QBoxLayout* beside : beside_) beside->setDirection(QBoxLayout::TopToBottom);
        settle();
    }
    for (QWidget* label : wrapping_) label->setMinimumHeight(0);
    settle();
    QSize size = root.sizeHint().expandedTo(QSize(form_.width, form_.height)).boundedTo(most);
    const int bare = size.width();
    // Texts that take lines need to know their width first; a scroll bar takes some of it.
    window_.setMinimumSize(0, 0);
    for (int pass = 0; pass < 2; ++pass) {
        window_.resize(size);
        settle();
        wrapTexts();
        settle();
        const int high =
            form_.height > 0 ? std::max(root.minimumSize().height(), form_.height) : root.sizeHint().height();
        if (high > most.height()) size.setWidth(std::min(bare + bar, most.width()));
        size.setHeight(std::min(high, most.height()));
    }
    window_.setMinimumSize(std::min(root.minimumSize().width() + bar, size.width()),
                           std::min(kLeastHeight, size.height()));
    window_.resize(size);
    settle();
    return size;
}

void FormView::writeBack() {
    queued_ = false;
    // Rows that came need their room: the window grows by them, as far as it may.
    if (std::exchange(refit_, false)) {
        const QSize before = window_.size();
        const QSize needed = fit(most_);
        window_.resize(needed.expandedTo(before));
        settle();
    }
    window_.layout()->activate();
    for (QWidget* w : window_.findChildren<QWidget*>()) {
        if (w->layout() != nullptr) w->layout()->activate();
    }
    for (Control* record : record_.children()) {
        const RecordView* view = viewOf(*record);
        if (view == nullptr) continue;
        const QPoint at = view->widget.mapTo(&window_, QPoint());
        record->left = at.x() * kTwipsPerPixel;
        record->top = at.y() * kTwipsPerPixel;
        record->width = view->widget.width() * kTwipsPerPixel;
        record->height = view->widget.height() * kTwipsPerPixel;
    }
}

bool FormView::eventFilter(QObject* watched, QEvent* e) {
    const bool moved = e->type() == QEvent::LayoutRequest || e->type() == QEvent::Resize;
    if ((watched == content_ || watched == &window_) && moved) writeBackSoon();
    return false;
}

void FormView::scrollBy(int pixels) {
    QScrollBar& bar = *scroll_->verticalScrollBar();
    bar.setValue(bar.value() + pixels);
}

/// After the layouts have done what they were asked for.
void FormView::writeBackSoon() {
    if (std::exchange(queued_, true)) return;
    QTimer::singleShot(0, this, [this] { writeBack(); });  // behind all that is posted
}

}  // namespace zv::shell
