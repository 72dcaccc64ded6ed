/// The layout of a window that is a form: cards, rows, pages and foot from its description, in the toolkit's own
/// layouts. Internal to the shell. [control]
#pragma once

#include <QObject>
#include <QPointer>
#include <QSize>
#include <vector>

#include "platform/forms.h"

class QBoxLayout;
class QScrollArea;
class QStackedWidget;
class QVBoxLayout;
class QWidget;

namespace zv::shell {

class FormView final : public QObject {
  public:
    /// Makes the widgets of all records that stand in the description, in reading order, inside `window`.
    FormView(Control& record, QWidget& window);

    /// The size that the form needs, at most `most` (pixels); cards stand below each other where they must.
    QSize fit(QSize most);
    /// Records learn where their widgets stand now.
    void writeBack();
    void scrollBy(int pixels);
    /// Something in the form shows another text, page or visibility.
    void refresh();

    bool eventFilter(QObject* watched, QEvent* e) override;

  private:
    struct Row {
        QWidget* widget;
        const FormRow* said;
    };
    struct CardRows {
        QWidget* widget;
        std::vector<QWidget*> rows;
    };
    struct Column {  ///< labels that stand in one column
        std::vector<QWidget*> labels;
    };

    void addSide(QBoxLayout& root);
    QWidget* makeHeader();
    QWidget* makeFoot();
    void addBlocks(QVBoxLayout& into, const std::vector<FormBlock>& blocks);
    QWidget* makeCard(const FormCard& card, Column& column);
    QWidget* makeColumns(const FormCard& card);
    QWidget* makeRow(const FormRow& row, Column& column);
    QWidget* addCell(QBoxLayout& into, const FormCell& cell, const FormRow* row);
    QWidget* text(const FormText& text, int dress);
    void alignLabels();
    void wrapTexts();
    void settle();
    void writeBackSoon();

    Control& record_;
    QWidget& window_;
    const Form& form_;
    QVBoxLayout* body_ = nullptr;
    QWidget* content_ = nullptr;
    QScrollArea* scroll_ = nullptr;
    QStackedWidget* stack_ = nullptr;
    std::vector<QBoxLayout*> beside_;  ///< cards side by side
    std::vector<Row> rows_;
    std::vector<CardRows> cards_;
    std::vector<Column> columns_;
    std::vector<QWidget*> wrapping_;
    QSize most_;  ///< of the window, as it was laid out first
    bool queued_ = false;
    bool refit_ = false;  ///< rows came or went
};

}  // namespace zv::shell
