/// What jingle buttons and the display share: one widget that paints the records below its own and repaints
/// only the old and the new rectangle of what changed. Internal to the shell. [control]
#pragma once

#include <QPaintEvent>
#include <QWidget>
#include <unordered_map>

#include "platform/qt/view/view.h"

namespace zv::shell {

/// While one lives, what painted widgets ask for is gathered and asked for at its end, as one region for each
/// block of them: a tick of the display asks for hundreds of small rectangles. No widget may end meanwhile.
class AskedTogether {
  public:
    AskedTogether();
    ~AskedTogether();
    AskedTogether(const AskedTogether&) = delete;
    AskedTogether& operator=(const AskedTogether&) = delete;

  private:
    bool outermost_;
};

class PaintedWidget : public QWidget, public RecordView {
  public:
    PaintedWidget(Control& record, QWidget* parent);

    bool paintsChildren() const override { return true; }
    void partChanged(Control& part) override;
    Control* partAt(QPoint at) const override;
    /// Rectangles asked to be painted since the last call, kept from the first call on: for the tests of what a
    /// change costs.
    QRegion takeAsked();

  protected:
    /// Where a part paints now; empty when it shows nothing.
    virtual QRect partPlace(const Control& part) const;
    /// True when a part takes the mouse instead of the record itself.
    virtual bool takesMouse(const Control& part) const = 0;
    /// Marks for painting.
    void ask(const QRect& rect);
    void askAll() { ask(rect()); }
    /// Parts stand elsewhere: their remembered places are forgotten.
    void placesChanged();

  private:
    struct Shown {
        QRect place;
        Colour colour = 0;
    };
    static bool grew(const Shown& before, const Shown& now);
    Control* hitBelow(const Control& from, QPoint at) const;
    void remember(const Control& from);

    std::unordered_map<const Control*, Shown> shown_;  ///< how each part was painted last
    bool watched_ = false;
    QRegion asked_;
};

}  // namespace zv::shell
