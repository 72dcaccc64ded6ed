// A choice among a few: keys side by side (segments), or headers of pages (tabs). Each is a button of its own, so
// that the mouse, the arrow keys and screen readers find them.
#include <QAbstractButton>
#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/qt/view/native.h"
#include "platform/qt/view/style.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

constexpr double kTextSize = 13;
constexpr int kSegmentHeight = 30, kTabHeight = 36, kSides = 30;  // pixels

class ChoiceKey final : public QAbstractButton {
  public:
    ChoiceKey(const Control& record, QWidget* parent) : QAbstractButton(parent), record_(record) {
        setCheckable(true);
        setAutoExclusive(true);
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_Hover);
    }

    QSize sizeHint() const override {
        const double width = QFontMetricsF(textFont(kTextSize, QFont::DemiBold)).horizontalAdvance(text());
        return {static_cast<int>(std::ceil(width)) + kSides, tabs() ? kTabHeight : kSegmentHeight};
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        const Theme theme = themeOf(record_);
        tabs() ? paintTab(p, theme)
               : drawSegment(p, rect(), text(), theme, isChecked(), isEnabled(), underMouse());
        if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
            drawFocus(p, rect(), theme.text);
    }

  private:
    bool tabs() const { return record_.kind == ControlKind::tabs; }

    void paintTab(QPainter& p, const Theme& theme) {
        const bool on = isChecked();
        p.fillRect(QRect(0, height() - 1, width(), 1), theme.border);
        if (on) p.fillRect(QRect(0, height() - 2, width(), 2), theme.accent.lighter(theme.dark ? 150 : 110));
        p.setPen(on || underMouse() ? theme.text : theme.muted);
        p.setFont(textFont(kTextSize, on ? QFont::DemiBold : QFont::Medium));
        p.drawText(rect(), Qt::AlignCenter, text());
    }

    const Control& record_;
};

class ChoiceWidget final : public QWidget, public RecordView {
  public:
    ChoiceWidget(Control& r, QWidget* parent)
        : QWidget(parent), RecordView(r, static_cast<QWidget&>(*this)), row_(new QHBoxLayout(this)) {
        row_->setContentsMargins(0, 0, 0, 0);
        row_->setSpacing(0);
        if (tabs()) row_->addStretch(1);
        setSizePolicy(tabs() ? QSizePolicy::Expanding : QSizePolicy::Fixed, QSizePolicy::Fixed);
        relayEvents(*this, *this);
    }

    void apply() override {
        const std::vector<std::string>& items = record.items();
        while (keys_.size() < items.size()) add();
        for (std::size_t i = 0; i < keys_.size(); ++i) {
            keys_[i]->setVisible(i < items.size());
            if (i >= items.size()) continue;
            const QString text = textOf(items[i]);
            if (keys_[i]->text() != text) {
                keys_[i]->setText(text);
                keys_[i]->updateGeometry();
            }
            keys_[i]->setChecked(static_cast<int>(i) == record.listIndex());
        }
        setFocusProxy(keys_.empty() ? nullptr : keys_[0]);
        update();
    }

    bool clipped() const override {
        return std::ranges::any_of(
            keys_, [](const ChoiceKey* k) { return k->isVisible() && k->width() < k->sizeHint().width(); });
    }

    bool choose(int row) {
        if (row < 0 || row >= static_cast<int>(keys_.size())) return false;
        return clickAt(*keys_[static_cast<std::size_t>(row)],
                       keys_[static_cast<std::size_t>(row)]->rect().center());
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        if (!tabs()) return;
        QPainter p(this);
        p.fillRect(QRect(0, height() - 1, width(), 1), themeOf(record).border);
    }

  private:
    bool tabs() const { return record.kind == ControlKind::tabs; }

    void add() {
        const int row = static_cast<int>(keys_.size());
        auto* key = new ChoiceKey(record, this);
        QObject::connect(key, &QAbstractButton::clicked, this, [this, row] { chosen(row); });
        relayEvents(*this, *key);
        row_->insertWidget(row, key);
        keys_.push_back(key);
    }

    void chosen(int row) {
        if (record.listIndex() == row) return;
        record.listIndex = row;
        call(record.onChange);
        call(record.onClick);
    }

    QHBoxLayout* row_;
    std::vector<ChoiceKey*> keys_;
};

}  // namespace

void makeChoiceView(Control& record, QWidget* parent) { new ChoiceWidget(record, parent); }

bool userChooses(RecordView& view, int row) {
    auto* choice = dynamic_cast<ChoiceWidget*>(&view);
    return choice != nullptr && choice->choose(row);
}

}  // namespace zv::shell
