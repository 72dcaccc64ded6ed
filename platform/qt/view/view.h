/// Records and the widgets that show them. One RecordView stands for one record that has a widget of its own;
/// records that another one paints (parts of a jingle button, labels of the display) have none. Internal to
/// the shell. [control]
#pragma once

#include <QRect>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <functional>

#include "platform/controls.h"

namespace zv::shell {

/// How a record is dressed in a form, beside what it says itself.
enum class Dress : std::uint8_t {
    plain,
    rowLabel,  ///< muted, in the column of labels
    cardTitle,
    headTitle,
    headLine,
    headRight,
    value,  ///< of a slider: tabular figures, half bold
    note,   ///< in the foot
    acceptKey,
    destroyKey,
    playKey,
};

class RecordView {
  public:
    RecordView(Control& record, QWidget& widget);
    virtual ~RecordView();
    RecordView(const RecordView&) = delete;
    RecordView& operator=(const RecordView&) = delete;

    /// The record changed: place, visibility, state, then what its kind adds (apply).
    void refresh();
    /// The colours of the window changed.
    virtual void themeChanged() { refresh(); }
    /// A record below this one, which this view paints, changed.
    virtual void partChanged(Control&) {}
    virtual bool paintsChildren() const { return false; }
    /// The painted record at a place in pixels of the widget; null: the view's own record is hit.
    virtual Control* partAt(QPoint) const { return nullptr; }
    /// Something moves by itself (a falling peak): called at each flush with the time.
    virtual void advance(std::int64_t) {}
    /// The tool tip while the record has none: the whole of a text that was cut.
    virtual QString fallbackTip() const { return {}; }
    /// True when a text of it does not find its room.
    virtual bool clipped() const { return false; }
    /// The user works the control by keyboard or through a screen reader.
    virtual void press();

    Control& record;
    QWidget& widget;
    Dress dress = Dress::plain;

  protected:
    /// What the kind shows: text, list, value, colours.
    virtual void apply() = 0;
};

/// True when the record's window is laid out by a description: its places come from the toolkit's layouts.
bool inForm(const Control& record);
/// The view of a record, null when it has no widget (yet).
RecordView* viewOf(const Control& record);
/// The record that a widget shows, null for others.
Control* recordOf(const QObject* widget);
/// The widget of a record, or of the nearest record above it that paints it.
QWidget* widgetOf(const Control& record);
/// Makes the view for a record inside `parent`; each kind in its own file.
void makeView(Control& record, QWidget* parent);
/// Makes views for all records below that have none yet.
void makeChildren(Control& record, QWidget* parent);
/// Place of a record in its widget's parent, pixels.
QRect placeOf(const Control& record);
/// Place of a painted record inside the widget of `top`, pixels.
QRect placeIn(const Control& record, const Control& top);
/// Visible itself and, up to `top`, all that hold it.
bool visibleIn(const Control& record, const Control& top);

/// Calls a handler with the event, if there is one; what it throws stays inside.
void call(const std::function<void()>& handler);
void call(const std::function<void(const MouseEvent&)>& handler, const MouseEvent& event);

/// Passes the widget's events to the record's handlers, before the widget's own.
void relayEvents(RecordView& view, QWidget& source);
/// Passes keys of a window to its record first.
void relayWindowKeys(RecordView& view);
/// The widget whose menu the keyboard asks for; null while the mouse does.
inline const QWidget* menuAskedFor = nullptr;
/// The Escape key, as the main window takes it.
void stopSound();
/// While something waits for the presenter, keeps mouse, wheel, files and keys from what waits with it.
void installGate();
/// The record with a mouse button or finger held down on it.
bool isHeld(const Control& record);

/// Widgets of the kinds, one function a file.
RecordView* makeWindowView(Control& record);
void makeJingleView(Control& record, QWidget* parent);
void makePanelView(Control& record, QWidget* parent);
void makeMeterView(Control& record, QWidget* parent);
void makePlainView(Control& record, QWidget* parent);   ///< frame, label, symbol, shape, progress, ...
void makeButtonView(Control& record, QWidget* parent);  ///< button, toggle, check box, option
void makeFieldView(Control& record, QWidget* parent);   ///< list, combo and text box, slider
void makeNumberView(Control& record, QWidget* parent);
void makeChoiceView(Control& record, QWidget* parent);  ///< segmented combo box, tabs
void makeCanvasView(Control& record, QWidget* parent);

void installAccessibility();
/// Tells screen readers when a toggle went on or off.
void tellToggled(RecordView& toggle);
/// What a screen reader calls a list, box or slider, which have no text of their own: the label that stands
/// beside it.
QString fieldName(const Control& field);
void installStyle();

}  // namespace zv::shell
