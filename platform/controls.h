/// Controls as records: what a window's logic sees of the screen. A control is a plain record of state; the shell
/// (platform/qt) shows it and turns events into calls of its handlers. No widget is ever seen from here.
///
/// Measures are twips (15 to the pixel at 100 %). Colours are 0xBBGGRR (red + 256 x green + 65536 x blue).
/// All of it is touched on the interface thread only. [control]
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zv {

using Colour = std::int32_t;  ///< 0xBBGGRR; negative numbers are theme colours, see below

inline constexpr int kTwipsPerPixel = 15;
inline constexpr int kManyLines = 50;  ///< pixels of height from which a text box has several lines
inline constexpr Colour kButtonFace = static_cast<Colour>(0x8000000FU);  ///< the theme's own button face
inline constexpr int kNoStandard = std::numeric_limits<int>::min();      ///< a control without a default
inline constexpr Colour kNoColour = -1;                                  ///< the shell's default

enum class ControlKind : std::uint8_t {
    window,
    frame,  ///< groups children; back colour fills it
    label,
    symbol,  ///< a label in the symbol font
    button,
    toggle,  ///< armed when its back colour is not the face
    checkBox,
    option,
    listBox,
    comboBox,
    textBox,
    slider,
    progress,
    panel,   ///< the display: one painted widget; its child labels are painted by it (digits, date, name)
    jingle,  ///< a jingle button: one painted widget; its child records are painted by it
    shape,   ///< a filled rectangle (bars), painted by its parent
    meter,   ///< a level bar
    colourField,
    picture,
    number,  ///< an up-down field: digits between a minus and a plus key; its `value`
    tabs,    ///< headers of pages side by side: `items`, `listIndex`
    canvas,  ///< shows its `drawing`; takes mouse, wheel and keys
};

enum class MouseButton : std::uint8_t { left = 1, right = 2, middle = 4 };

/// Bits of a shift state.
inline constexpr int kShiftMask = 1;
inline constexpr int kCtrlMask = 2;
inline constexpr int kAltMask = 4;

struct MouseEvent {
    MouseButton button = MouseButton::left;
    int shift = 0;     ///< kShiftMask | kCtrlMask | kAltMask
    int x = 0, y = 0;  ///< twips inside the control
};

/// Keys by their published virtual key numbers; letters and digits are their upper-case ASCII codes.
enum class Key : int {
    none = 0,
    backspace = 8,
    tab = 9,
    enter = 13,
    shift = 16,
    control = 17,
    alt = 18,
    escape = 27,
    space = 32,
    pageUp = 33,
    pageDown = 34,
    end = 35,
    home = 36,
    left = 37,
    up = 38,
    right = 39,
    down = 40,
    insert = 45,
    del = 46,
    f1 = 112,
    f2,
    f3,
    f4,
    f5,
    f6,
    f7,
    f8,
    f9,
    f10,
    f11,
    f12,
};

struct KeyEvent {
    Key key = Key::none;
    int shift = 0;
    bool repeat = false;    ///< the keyboard's own auto-repeat
    bool consumed = false;  ///< set by the handler: the focused control does not see the key
};

/// How a meter is drawn (kind `meter`): its value runs from 0 to `maximum`, levels are percent of it.
struct MeterLook {
    bool gradient = true;   ///< colours run into each other
    bool solid = false;     ///< the whole bar has the colour of its level
    bool peak = true;       ///< a line stays at the highest value
    int peakDelayMs = 100;  ///< how long it stays before it falls
    int midLevel = 70, hiLevel = 90;
    Colour backColor = 0, lowColor = 0xFF00, midColor = 0xFFFF, hiColor = 0xFF;
    bool vertical = true;
    bool clipped = false;  ///< a mark stands at its end: the sound was cut off a moment ago
    bool operator==(const MeterLook&) const = default;
};

/// What a jingle button tells beside its colours (its `value`): seen at a glance, and without telling colours apart.
enum class JingleState : int {
    rest = 0,
    sounding,      ///< a solid frame
    otherPalette,  ///< sounds and belongs to a palette that is not open: a dashed frame
    broken,        ///< its file is missing or no sound: a warning sign
};

/// What a canvas paints, back to front. Places are pixels at 100 % inside the canvas.
struct Stroke {
    enum class What : std::uint8_t {
        area,   ///< filled rectangle
        frame,  ///< its border, one pixel
        line,   ///< from (x, y) to (x + width, y + height)
        peaks,  ///< columns from `peaks`, the first at x, the last at x + width; -1 at the foot, 1 at the top
        text,   ///< from its left edge, in the middle of its height; `bold`, `points`
    };
    What what = What::area;
    double x = 0, y = 0, width = 0, height = 0;
    Colour colour = 0;     ///< 0xBBGGRR
    int opacity = 100;     ///< percent
    double thickness = 1;  ///< of a line
    std::string text = {};
    bool bold = false;
    double points = 9;
    std::shared_ptr<const std::vector<std::pair<float, float>>> peaks =
        {};  ///< lowest and highest of a column
    bool operator==(const Stroke&) const = default;
};
using Drawing = std::vector<Stroke>;

struct Form;
class Control;

/// A value of a control: assigning compares and, only when it differs, remembers the control as changed.
template <class T>
class Property {
  public:
    Property(Control& owner, T initial) : owner_(owner), value_(std::move(initial)) {}
    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;
    Property& operator=(const T& value);
    operator const T&() const { return value_; }
    const T& operator()() const { return value_; }

  private:
    Control& owner_;
    T value_;
};

/// One control. Created once, never moved, lives as long as its window (as a rule: the whole run).
class Control {
  public:
    /// `index` is -1 for a single control and 0 and up for an element of an array. Registers itself by name.
    Control(std::string_view name, ControlKind kind, Control* parent = nullptr, int index = -1);
    ~Control();
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    const std::string name;
    const ControlKind kind;
    Control* const parent;
    const int index;

    Property<bool> visible{*this, true};
    Property<bool> enabled{*this, true};
    Property<int> left{*this, 0}, top{*this, 0}, width{*this, 0}, height{*this, 0};  ///< twips, in the parent
    Property<Colour> backColor{*this, kNoColour}, foreColor{*this, kNoColour};
    Property<Colour> borderColor{*this, kNoColour};
    Property<std::string> caption{*this,
                                  {}};  ///< label and button text, text box contents; "&&" is an ampersand
    Property<std::string> toolTip{*this, {}};
    Property<std::string> fontName{*this, {}};  ///< empty: the program's own font
    Property<double> fontSize{*this, 0};        ///< points; 0: the shell's default
    Property<bool> fontBold{*this, false}, fontItalic{*this, false};
    Property<int> alignment{*this, 0};  ///< of a text in its control: 0 left, 1 right, 2 centred
    Property<int> value{*this,
                        0};  ///< check box and option 0/1, slider, progress, meter; jingle: JingleState
    Property<int> minimum{*this, 0}, maximum{*this, 100};
    Property<int> listIndex{*this, -1};  ///< selected row of a list or combo box, -1 none
    Property<std::vector<std::string>> items{*this, {}};
    Property<int> topRow{*this, 0};            ///< first visible row of a list
    Property<bool> sorted{*this, false};       ///< a list that the shell shows as it is given; logic sorts
    Property<MeterLook> meterLook{*this, {}};  ///< kind meter only
    Property<Drawing> drawing{*this, {}};      ///< kind canvas only
    Property<bool> segmented{*this,
                             false};  ///< combo box or options: keys side by side, for two to four choices

    int step = 1;                      ///< slider and number: of one turn of the wheel or an arrow key
    int standard = kNoStandard;        ///< slider and number: what a double click brings back
    std::shared_ptr<const Form> form;  ///< window: laid out by this description, see platform/forms.h

    // Handlers; an empty one does nothing. The shell calls them guarded by nothing: a handler guards itself.
    std::function<void(const MouseEvent&)> onMouseDown, onMouseUp, onMouseMove, onDoubleClick;
    std::function<void()> onClick;  ///< a press and release inside, or the keyboard's way to do it
    std::function<void()>
        onChange;  ///< the user moved, typed, ticked or selected: the record holds the new value
    std::function<void(KeyEvent&)> onKeyDown, onKeyUp;
    std::function<void()> onFocus;
    std::function<void(const std::string& path)>
        onDrop;  ///< one file let go over it; empty: something else was
    std::function<void(const std::vector<std::string>& paths)>
        onDropFiles;                                    ///< files and folders let go over it
    std::function<void(int turns, int shift)> onWheel;  ///< canvas: up is positive
    std::function<bool(int reason)> onQueryClose;       ///< window: false keeps it open
    std::function<void()> onClose;                      ///< window: it closes now
    std::function<void()> onResize;                     ///< window: width and height hold the new inner size

    /// Asked when a screen reader wants to know more than the caption: state and time left, in the user's words.
    std::function<std::string()> onDescribe;

    /// Text of the selected row, empty without a selection.
    std::string text() const;
    const std::vector<Control*>& children() const { return children_; }
    void touch();  ///< remembers the control as changed

  private:
    friend std::vector<Control*> takeChanged();
    std::vector<Control*> children_;
    bool changed_ = false;
};

template <class T>
Property<T>& Property<T>::operator=(const T& value) {
    if (!(value_ == value)) {
        value_ = value;
        owner_.touch();
    }
    return *this;
}

/// The control of that name (without regard to case) and index; null when there is none.
Control* findControl(std::string_view name, int index = -1);
/// As above among what stands in `window`.
Control* findControl(std::string_view name, int index, const Control& window);
/// The window that a control stands in; itself for one that stands in none.
const Control& windowOf(const Control& control);
/// All registered controls in the order of their making.
const std::vector<Control*>& allControls();
/// Controls changed since the last call, each once, in the order of their first change.
std::vector<Control*> takeChanged();
/// Called once when the first control changes after takeChanged(): the shell arms its flush there.
void onFirstChange(std::function<void()> arm);

/// A property by its name ("visible", "caption", "backColor", ... without regard to case) as text: numbers in
/// decimal, flags 0 and 1, lists joined by "|". Nothing known: empty and `known` false.
std::string propertyText(const Control& control, std::string_view property, bool& known);

}  // namespace zv
