// Fields that the user works in: lists, combo boxes, text boxes, sliders.
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSlider>
#include <QStringListModel>
#include <QStyledItemDelegate>
#include <QWheelEvent>
#include <algorithm>

#include "platform/qt/view/native.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

constexpr double kFieldSize = 13;
constexpr int kRowHeight = 21;
constexpr int kPageSteps = 10;    ///< of a slider whose steps are larger than one
constexpr int kLongRange = 1000;  ///< a slider of more than that many values scrolls; others set a value

QPalette fieldPalette(const Control& record) {
    const Theme theme = themeOf(record);
    QPalette p = paletteOf(theme);
    if (!isNeutral(record, record.backColor))
        p.setColor(QPalette::Base, colourOf(record.backColor, theme.field));
    if (record.foreColor() >= 0) {
        p.setColor(QPalette::Text, colourOf(record.foreColor, theme.text));
        p.setColor(QPalette::ButtonText, colourOf(record.foreColor, theme.text));
    }
    return p;
}

QStringList listOf(const std::vector<std::string>& items) {
    QStringList out;
    out.reserve(static_cast<qsizetype>(items.size()));
    for (const std::string& item : items) out << textOf(item);
    return out;
}

/// Rows of one height with a margin before their text.
class Rows final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& o, const QModelIndex& i) const override {
        return {QStyledItemDelegate::sizeHint(o, i).width() + 12,
                std::max(kRowHeight, o.fontMetrics.height() + 5)};
    }
    void paint(QPainter* p, const QStyleOptionViewItem& o, const QModelIndex& i) const override {
        QStyleOptionViewItem option(o);
        // A list shows its selection as clearly without the focus as with it.
        option.state |= QStyle::State_Active;
        option.state &= ~QStyle::State_HasFocus;
        QStyledItemDelegate::paint(p, option, i);
    }
    void initStyleOption(QStyleOptionViewItem* o, const QModelIndex& i) const override {
        QStyledItemDelegate::initStyleOption(o, i);
        o->text.prepend(QLatin1Char(' '));
    }
};

class ListWidget final : public QListView, public RecordView {
  public:
    ListWidget(Control& r, QWidget* parent) : QListView(parent), RecordView(r, static_cast<QWidget&>(*this)) {
        setModel(&model_);
        setItemDelegate(new Rows(this));
        setUniformItemSizes(true);
        setEditTriggers(NoEditTriggers);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollMode(ScrollPerItem);
        setTextElideMode(Qt::ElideRight);
        setMouseTracking(true);
        QObject::connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
                         [this](const QModelIndex& now) { rowChanged(now.row()); });
        QObject::connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this](int row) {
            if (showing_) return;
            record.topRow = row;
            shownTop_ = row;
        });
        // Keys come to the list itself, the mouse and files to its inside.
        relayEvents(*this, *this);
        relayEvents(*this, *viewport());
    }

    void apply() override {
        showing_ = true;
        setFont(fontOf(record, kFieldSize));
        setPalette(fieldPalette(record));
        const QStringList wanted = listOf(record.items);
        if (wanted != model_.stringList()) model_.setStringList(wanted);
        const QModelIndex row = model_.index(record.listIndex);
        if (row.isValid()) {
            if (row != currentIndex() || !selectionModel()->isSelected(row)) setCurrentIndex(row);
        } else {
            selectionModel()->clear();
        }
        if (record.topRow() != shownTop_) {
            shownTop_ = record.topRow;
            if (const QModelIndex top = model_.index(shownTop_); top.isValid()) scrollTo(top, PositionAtTop);
        }
        showing_ = false;
    }

    int rows() const { return std::max(1, viewport()->height() / std::max(1, rowHeight())); }
    void centre(int row) {
        if (const QModelIndex index = model_.index(row); index.isValid()) scrollTo(index, PositionAtCenter);
    }
    QPoint placeOfRow(int row) {
        const QModelIndex index = model_.index(row);
        if (!index.isValid()) return {-1, -1};
        scrollTo(index, EnsureVisible);
        return visualRect(index).center();
    }

  private:
    int rowHeight() const {
        const int hint = sizeHintForRow(0);
        return hint > 0 ? hint : kRowHeight;
    }

    void rowChanged(int row) {
        if (showing_ || row == record.listIndex()) return;
        record.listIndex = row;
        call(record.onChange);
    }

    QStringListModel model_;
    bool showing_ = false;
    int shownTop_ = 0;
};

class ComboWidget final : public QComboBox, public RecordView {
  public:
    ComboWidget(Control& r, QWidget* parent)
        : QComboBox(parent), RecordView(r, static_cast<QWidget&>(*this)) {
        setMaxVisibleItems(14);
        setItemDelegate(new Rows(this));
        setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
        QObject::connect(this, &QComboBox::activated, this, [this](int row) {
            record.listIndex = row;
            if (isEditable()) record.caption = utf8(currentText());
            call(record.onChange);
            call(record.onClick);
        });
        relayEvents(*this, *this);
    }

    bool clipped() const override {
        return inForm(record) && fontMetrics().horizontalAdvance(currentText()) > width() - 37;
    }

    void apply() override {
        const QSignalBlocker quiet(this);
        setFont(fontOf(record, kFieldSize));
        setPalette(fieldPalette(record));
        // A combo box whose record has a text of its own is one that the user may type into.
        if (!isEditable() && !record.caption().empty()) {
            setEditable(true);
            setInsertPolicy(NoInsert);
            lineEdit()->setFrame(false);
            setCompleter(nullptr);
            QObject::connect(lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) {
                record.caption = utf8(text);
                call(record.onChange);
            });
            relayEvents(*this, *lineEdit());
        }
        const QStringList wanted = listOf(record.items);
        if (wanted != shown_) {
            shown_ = wanted;
            clear();
            addItems(wanted);
        }
        if (currentIndex() != record.listIndex()) setCurrentIndex(record.listIndex);
        if (isEditable() && utf8(currentText()) != record.caption()) setEditText(textOf(record.caption));
        update();
    }

  private:
    QStringList shown_;
};

class LineWidget final : public QLineEdit, public RecordView {
  public:
    LineWidget(Control& r, QWidget* parent) : QLineEdit(parent), RecordView(r, static_cast<QWidget&>(*this)) {
        setTextMargins(6, 0, 6, 0);
        QObject::connect(this, &QLineEdit::textEdited, this, [this](const QString& now) {
            record.caption = utf8(now);
            call(record.onChange);
        });
        relayEvents(*this, *this);
    }
    void apply() override {
        setFont(fontOf(record, kFieldSize));
        setPalette(fieldPalette(record));
        setAlignment(Qt::AlignVCenter | (record.alignment() == 1   ? Qt::AlignRight
                                         : record.alignment() == 2 ? Qt::AlignHCenter
                                                                   : Qt::AlignLeft));
        const QString wanted = textOf(record.caption);
        if (wanted != text()) setText(wanted);
    }
};

class TextWidget final : public QPlainTextEdit, public RecordView {
  public:
    TextWidget(Control& r, QWidget* parent)
        : QPlainTextEdit(parent), RecordView(r, static_cast<QWidget&>(*this)) {
        setTabChangesFocus(true);
        QObject::connect(this, &QPlainTextEdit::textChanged, this, [this] {
            if (showing_) return;
            record.caption = utf8(toPlainText());
            call(record.onChange);
        });
        relayEvents(*this, *this);
        relayEvents(*this, *viewport());
    }
    void apply() override {
        showing_ = true;
        setFont(fontOf(record, kFieldSize));
        setPalette(fieldPalette(record));
        QString wanted = textOf(record.caption);
        wanted.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        if (wanted != toPlainText()) setPlainText(wanted);
        showing_ = false;
    }

  private:
    bool showing_ = false;
};

class SliderWidget final : public QSlider, public RecordView {
  public:
    SliderWidget(Control& r, QWidget* parent) : QSlider(parent), RecordView(r, static_cast<QWidget&>(*this)) {
        QObject::connect(this, &QSlider::valueChanged, this, [this](int now) {
            if (showing_) return;
            record.value = now;
            call(record.onChange);
        });
        relayEvents(*this, *this);
    }
    void apply() override {
        showing_ = true;
        setOrientation(record.width() >= record.height() ? Qt::Horizontal : Qt::Vertical);
        QPalette p = paletteOf(themeOf(record));
        if (record.foreColor() >= 0) p.setColor(QPalette::Highlight, colourOf(record.foreColor, Qt::white));
        setPalette(p);
        setRange(std::min(record.minimum(), record.maximum()), std::max(record.minimum(), record.maximum()));
        setInvertedAppearance(fromRight());
        setInvertedControls(fromRight());
        const int range = maximum() - minimum();
        const int page = record.step > 1      ? kPageSteps * record.step
                         : range > kLongRange ? range / 5
                                              : range / 10;
        setPageStep(std::max(1, page));
        setSingleStep(record.step > 1 || range <= kLongRange ? record.step : range / 16);
        // While the user holds it, the slider knows better than a record that was clamped meanwhile.
        if (value() != record.value()) setValue(record.value);
        showing_ = false;
    }

  protected:
    void mouseDoubleClickEvent(QMouseEvent* e) override {
        if (record.standard == kNoStandard) {
            QSlider::mouseDoubleClickEvent(e);
            return;
        }
        setValue(record.standard);
        e->accept();
    }

    /// Its least value stands at the right.
    bool fromRight() const { return record.alignment() == 1; }

    void wheelEvent(QWheelEvent* e) override {
        if (!inForm(record)) {
            QSlider::wheelEvent(e);
            return;
        }
        turned_ += e->angleDelta().y();
        const int turns = turned_ / QWheelEvent::DefaultDeltasPerStep;
        turned_ -= turns * QWheelEvent::DefaultDeltasPerStep;
        setValue(value() + (fromRight() ? -turns : turns) * singleStep());
        e->accept();
    }

  private:
    bool showing_ = false;
    int turned_ = 0;  ///< by the wheel, eighths of a degree
};

template <class Widget>
Widget* as(RecordView& view) {
    return dynamic_cast<Widget*>(&view);
}

}  // namespace

void makeFieldView(Control& record, QWidget* parent) {
    switch (record.kind) {
        case ControlKind::listBox:
            new ListWidget(record, parent);
            return;
        case ControlKind::comboBox:
            new ComboWidget(record, parent);
            return;
        case ControlKind::slider:
            new SliderWidget(record, parent);
            return;
        default:
            break;
    }
    if (px(record.height) >= kManyLines) {
        new TextWidget(record, parent);
    } else {
        new LineWidget(record, parent);
    }
}

void centreRow(RecordView& list, int row) {
    if (auto* widget = as<ListWidget>(list)) widget->centre(row);
}

int visibleRows(const RecordView& list) {
    const auto* widget = dynamic_cast<const ListWidget*>(&list);
    return widget == nullptr ? 0 : widget->rows();
}

bool userSelectsRow(RecordView& view, int row) {
    if (auto* combo = as<ComboWidget>(view)) {
        if (row < 0 || row >= combo->count()) return false;
        combo->setCurrentIndex(row);
        emit combo->activated(row);
        return true;
    }
    auto* list = as<ListWidget>(view);
    if (list == nullptr) return userChooses(view, row);
    const QPoint at = list->placeOfRow(row);
    if (at.x() < 0) return false;
    clickAt(*list->viewport(), at);
    return true;
}

bool userMovesSlider(RecordView& view, int value) {
    auto* slider = as<SliderWidget>(view);
    if (slider == nullptr) return false;
    const QPoint middle = slider->rect().center();
    const MouseEvent event{MouseButton::left, 0, middle.x() * kTwipsPerPixel, middle.y() * kTwipsPerPixel};
    call(slider->record.onMouseDown, event);
    slider->setSliderDown(true);
    slider->setSliderPosition(value);
    slider->setSliderDown(false);
    call(slider->record.onMouseUp, event);
    return true;
}

bool userTypes(RecordView& view, std::string_view text) {
    if (userTypesNumber(view, QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))))
        return true;
    QWidget* target = nullptr;
    if (auto* line = as<LineWidget>(view)) {
        line->setFocus();
        line->selectAll();
        target = line;
    } else if (auto* many = as<TextWidget>(view)) {
        many->setFocus();
        many->selectAll();
        target = many;
    } else if (auto* combo = as<ComboWidget>(view); combo != nullptr && combo->isEditable()) {
        combo->setFocus();
        combo->lineEdit()->selectAll();
        target = combo->lineEdit();
    }
    if (target == nullptr) return false;
    typeInto(*target, QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    return true;
}

}  // namespace zv::shell
