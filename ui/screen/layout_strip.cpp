#include "ui/screen/layout_strip.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>

#include "platform/controls.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/meters_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/text_codec.h"
#include "ui/records/armed.h"
#include "ui/records/main_window.h"
#include "ui/records/place.h"
#include "ui/screen/highlight.h"
#include "ui/screen/meters.h"
#include "ui/screen/midi_status.h"

namespace zv {

int ActiveTab = 0;

namespace {

constexpr int px(double pixels) { return static_cast<int>(pixels) * kTwipsPerPixel; }

/// A stretch divided into equal parts with gaps; the pixels that are left over go to the first parts.
struct Stretch {
    int start, length, parts, gap;
    int size(int i) const {
        const int pixels = (length - (parts - 1) * gap) / kTwipsPerPixel;
        return (pixels / parts + (i < pixels % parts ? 1 : 0)) * kTwipsPerPixel;
    }
    int at(int i) const {
        int place = start;
        for (int k = 0; k < i; ++k) {
            place += size(k) + gap;
        }
        return place;
    }
};

void column(std::initializer_list<Control*> controls, int left, int width, const Stretch& rows) {
    int i = 0;
    for (Control* c : controls) {
        Place(*c, left, rows.at(i), width, rows.size(i));
        ++i;
    }
}

constexpr double kDuckBox = 92;                       // pixels of the box with its text, in the drawing
constexpr int kLeastSlider = 72;                      // pixels: less is no way to move
constexpr double kDrawnStrip = 156, kDrawnText = 13;  // pixels, in the drawing of the window
constexpr double kPointsPerPixel = 0.75;

/// How much larger than drawn the texts of the strip are: they grow with it, more slowly than it does.
double textScale() {
    const double drawn = frmMain().fraPanel.height() / double{kTwipsPerPixel} / kDrawnStrip;
    return 1 + (drawn - 1) * 0.75;
}

/// Of the longest line.
double characters(const std::string& text) {
    std::size_t most = 0;
    for (const std::string& line : Split(text, "\n")) most = std::max(most, characterCount(line));
    return static_cast<double>(most);
}

/// One size of text for keys that stand together: as large as wanted, and so that the longest of their texts
/// has room in about one line.
void oneSize(std::initializer_list<Control*> keys, double pixels) {
    constexpr double widthOfLetter = 0.56, ofHeight = 0.62, least = 10.5, margin = 10;
    for (const Control* key : keys) {
        pixels = std::min(pixels, key->height() / double{kTwipsPerPixel} * ofHeight);
        if (const double letters = characters(key->caption); letters > 0) {
            const double room = key->width() / double{kTwipsPerPixel} - margin;
            pixels = std::min(pixels, room / (letters * widthOfLetter));
        }
    }
    for (Control* key : keys) {
        key->fontSize = static_cast<int>(std::max(pixels, least) * 2) / 2.0 * kPointsPerPixel;
    }
}

int tabHeader() { return px(30 * (1 + (textScale() - 1) * 0.6)); }

constexpr int kKeyGap = 120;
constexpr int kInnerGap = 90;
constexpr int kEdge = kKeyGap;
constexpr int kLeastKey = 32 * kTwipsPerPixel;  // a key of the strip is never lower

/// What a tab's frame has inside its edge.
struct TabArea {
    int width, height;
};

void paletteTab(const TabArea& a) {
    PaletteTab& t = frmMain().palettes;
    const int arrows = px(34 * textScale());
    int keys = std::clamp(a.width * 96 / 512 / kTwipsPerPixel * kTwipsPerPixel, px(72), px(150));
    const bool pairs = a.height < 4 * kLeastKey + 3 * kInnerGap;  // two by two where four are too low
    column({&t.btUp, &t.btSearchJingle, &t.btDn}, kEdge, arrows, {kEdge, a.height, 3, kInnerGap});
    if (pairs) {
        const int one = std::clamp(a.width * 78 / 512 / kTwipsPerPixel * kTwipsPerPixel, px(66), px(120));
        keys = 2 * one + kInnerGap;
        const Stretch rows{kEdge, a.height, 2, kInnerGap};
        column({&t.ckAssign, &t.btNew}, kEdge + a.width - keys, one, rows);
        column({&t.btSave, &t.btDelPal}, kEdge + a.width - one, one, rows);
    } else {
        column({&t.ckAssign, &t.btSave, &t.btNew, &t.btDelPal}, kEdge + a.width - keys, keys,
               {kEdge, a.height, 4, kInnerGap});
    }
    oneSize({&t.ckAssign, &t.btSave, &t.btNew, &t.btDelPal}, kDrawnText * textScale());
    const double rowText = kDrawnText * textScale() * kPointsPerPixel;
    for (Control* text : {&t.lstPal, &t.PalNameCar, &t.txtSave}) {
        text->fontSize = rowText;
    }
    const int listLeft = kEdge + arrows + kKeyGap;
    const int listWidth = a.width - arrows - keys - 2 * kKeyGap;
    const bool naming = t.txtSave.visible;
    const int line = px(18 * textScale()), field = px(26 * textScale());
    const int nameHeight = naming ? line + field + px(6) : 0;
    Place(t.lstPal, listLeft, kEdge, listWidth, a.height - nameHeight);
    Place(t.PalNameCar, listLeft, kEdge + a.height - field - line, listWidth, line);
    Place(t.txtSave, listLeft, kEdge + a.height - field, listWidth, field);
}

void announcerTab(const TabArea& a) {
    AnnouncerTab& t = frmMain().announcer;
    const int mark = px(34 * textScale()), line = px(16 * textScale()), field = px(30);
    const int keys = a.height - line - field - px(6);
    const Stretch halves{kEdge, a.width, 2, kKeyGap};
    const auto key = [&](Control& wide, Control& narrow, int at) {
        const int rest = narrow.visible ? mark + px(6) : 0;
        Place(wide, halves.at(at), kEdge, halves.size(at) - rest, keys);
        Place(narrow, halves.at(at) + halves.size(at) - mark, kEdge, mark, keys);
        narrow.fontSize = kDrawnText * 1.2 * textScale() * kPointsPerPixel;
    };
    key(t.ckTmAnn, t.ckTmAnnAM, 0);
    key(t.b_tmAnJin, t.b_tmAnJinAM, 1);
    oneSize({&t.ckTmAnn, &t.b_tmAnJin}, kDrawnText * textScale());
    const Stretch thirds{kEdge, a.width, 3, kKeyGap};
    Control* labels[] = {&t.lblMinute, &t.lblSecond, &t.lblDelay};
    Control* fields[] = {&t.DTMinute, &t.DTSecond, &t.DTDelay};
    for (int i = 0; i < 3; ++i) {
        labels[i]->fontSize = kDrawnText * textScale() * kPointsPerPixel;
        Place(*labels[i], thirds.at(i), kEdge + a.height - field - line, thirds.size(i), line);
        Place(*fields[i], thirds.at(i), kEdge + a.height - field, std::min(thirds.size(i), px(132)), field);
    }
}

void liveTab(const TabArea& a) {
    LiveTab& t = frmMain().live;
    const Stretch rows{kEdge, a.height, 3, kInnerGap};
    const Stretch wide{kEdge, a.width, 4, kKeyGap};
    const int three = wide.at(2) + wide.size(2) - kEdge;
    Place(t.cmbStream, kEdge, rows.at(0), three, rows.size(0));
    Place(t.btRemUrl, wide.at(3), rows.at(0), wide.size(3), rows.size(0));
    Place(t.ckPlayStream, wide.at(0), rows.at(1), wide.size(0), rows.size(1));
    // The box has no key around it to shrink its text: it takes what its words need from the key at its side.
    const int right = wide.at(3) + wide.size(3);
    const int box = std::max(wide.size(3), px(kDuckBox * textScale()));
    Place(t.ckMixByTa, wide.at(1), rows.at(1), wide.at(2) + wide.size(2) - wide.at(1) - (box - wide.size(3)),
          rows.size(1));
    Place(t.ckAutoDuckLive, right - box, rows.at(1), box, rows.size(1));
    oneSize({&t.btRemUrl, &t.ckPlayStream, &t.ckMixByTa, &t.btCoefVolLive}, kDrawnText * textScale());
    for (Control* text : {&t.cmbStream, &t.ckAutoDuckLive, &t.lblVolLive, &t.lblStream}) {
        text->fontSize = kDrawnText * textScale() * kPointsPerPixel;
    }
    const int percent = px(44 * textScale());
    const int slider = std::max(wide.size(2) - percent, px(kLeastSlider));
    const int sliderLeft = wide.at(2) + wide.size(2) - percent - slider;
    const int gap = wide.at(1) - wide.at(0) - wide.size(0);
    Place(t.lblStream, wide.at(0), rows.at(2), sliderLeft - gap - wide.at(0), rows.size(2));
    Place(t.SlideVolLive, sliderLeft, rows.at(2), slider, rows.size(2));
    Place(t.lblVolLive, wide.at(2) + wide.size(2) - percent, rows.at(2), percent, rows.size(2));
    t.lblVolLive.alignment = 1;
    Place(t.btCoefVolLive, wide.at(3), rows.at(2), wide.size(3), rows.size(2));
}

void optionsTab(const TabArea& a) {
    OptionsTab& t = frmMain().options;
    const Stretch rows{kEdge, a.height, 2, kInnerGap};
    const Stretch wide{kEdge, a.width, 4, kKeyGap};
    const int led = px(4);
    const auto cell = [&](Control& key, std::initializer_list<Control*> leds, int columnNo, int row) {
        const int left = wide.at(columnNo);
        const int width = wide.size(columnNo);
        const int foot = leds.size() == 0 ? 0 : led + 2 * kTwipsPerPixel;
        Place(key, left, rows.at(row), width, rows.size(row) - foot);
        const Stretch strip{left, width, std::max(1, static_cast<int>(leds.size())), kInnerGap};
        int i = 0;
        for (Control* lamp : leds) {
            Place(*lamp, strip.at(i), rows.at(row) + rows.size(row) - led, strip.size(i), led);
            ++i;
        }
    };
    cell(t.ckPlayStopI, {&t.ps_LED}, 0, 0);
    cell(t.ckAutoRepI, {&t.ar_LED}, 1, 0);
    cell(t.ckTouchI, {&t.tc_LED}, 2, 0);
    cell(t.ckNoStopI, {&t.ns_LED}, 3, 0);
    cell(t.ckLoopI, {&t.lp_LED, &t.sq_LED}, 0, 1);
    cell(t.ckFXI, {&t.fx_LED}, 1, 1);
    cell(t.ckColorI, {}, 2, 1);
    t.ckColorI.height = t.ckFXI.height();
    oneSize({&t.ckPlayStopI, &t.ckAutoRepI, &t.ckTouchI, &t.ckNoStopI, &t.ckLoopI, &t.ckFXI, &t.ckColorI},
            kDrawnText * textScale());
}

/// The keys of the options are at rest: buttons do not go on showing where an option can go.
void giveUpOption() {
    const bool option = !OptionCode.empty() && OptionCode != "sp" && OptionCode != "ta";
    if (option && !ColorPickerOpen) {
        OptionCode.clear();
        OptionControl.clear();
        ResetJingles();
    }
}

}  // namespace

void TabDraw(int tab) {
    MainWindow& w = frmMain();
    const int width = w.fraPanel.width;
    const int height = w.fraPanel.height;
    const Stretch headers{0, width, kTabs, 0};
    const auto i = static_cast<std::size_t>(tab);
    const int header = tabHeader();
    Place(w.ckTab[i], headers.at(tab), 0, headers.size(tab), header);
    w.ckTab[i].value = tab == ActiveTab ? 1 : 0;
    Place(w.fraTab[i], 0, header, width, height - header);
    const TabArea area{width - 2 * kEdge, height - header - 2 * kEdge};
    if (tab == kTabs - 1) {
        oneSize({&w.ckTab[0], &w.ckTab[1], &w.ckTab[2], &w.ckTab[3]}, kDrawnText * textScale());
    }
    switch (static_cast<MainTab>(tab)) {
        case MainTab::palettes:
            paletteTab(area);
            break;
        case MainTab::timeAnnouncer:
            announcerTab(area);
            break;
        case MainTab::liveStream:
            liveTab(area);
            break;
        case MainTab::jingleOptions:
            optionsTab(area);
            break;
    }
}

void ChangeTab(int tab) {
    guarded("frmMain.ChangeTab", [&] {
        if (minimalSettings.MinimalView == 1 || tab < 0 || tab >= kTabs) {
            return;
        }
        ResetOption();
        giveUpOption();
        ActiveTab = tab;
        for (int i = 0; i < kTabs; ++i) {
            TabDraw(i);
            frmMain().fraTab[static_cast<std::size_t>(i)].visible = i == tab;
        }
    });
}

void DrawDisplay() {
    DisplayControls& d = frmMain().display;
    const int width = d.picDispBack.width;
    const int height = d.picDispBack.height;
    // The drawing is 420 x 156 pixels; digits keep their shape, texts their size.
    const double u = std::min(width / px(1) / 420.0, height / px(1) / 156.0);
    const int margin = px(15 * std::min(1.0, u));
    const double grow = std::max(1.0, u);
    const int line = px(24 * grow);
    for (Control* text : {&d.lblDate, &d.lblTime, &d.lblDispMessage, &d.txtDisPal, &d.lblQuiet}) {
        text->fontSize = 10.5 * grow;
    }
    const int inner = width - 2 * margin;
    const int timeWidth = width < 4000 ? 2220 : 2800;
    const int top = px(8);
    // The time is right-aligned in its field: the date may use the left part of it.
    Place(d.lblDate, margin, top, std::max(inner - timeWidth, inner - px(78 * grow)), line);
    Place(d.lblTime, margin + inner - timeWidth, top, timeWidth, line);
    d.lblTime.alignment = 1;
    Place(d.lblDispMessage, margin, top, inner, line);
    const int foot = height - line - px(8);
    Place(d.lblErr, width - margin - line, foot, line, line);
    Place(d.txtDisPal, margin, foot, inner - line - px(8), line);
    ShowMidiStatus(true);

    const auto gapOf = [](int height) { return px(std::max(2.0, height / px(1) * 0.08)); };
    const int digitsTop = top + line + px(4);
    const int digitsRoom = foot - digitsTop - px(4);
    const int big = std::max(px(24), std::min(px(80 * u), digitsRoom / kTwipsPerPixel * kTwipsPerPixel));
    const int digitsLine = digitsTop + std::max(0, (digitsRoom - big) / 2 / kTwipsPerPixel * kTwipsPerPixel);
    // A figure is drawn inside its field with some room at its sides.
    const int small = px(big / px(1) * 0.64);
    int bigWidth = px(big / px(1) * 0.57);
    int smallWidth = px(small / px(1) * 0.57);
    const int separator = px(std::max(5.0, big / px(1) * 0.16));
    // The clock of the minimal view needs both small figures.
    const bool twoSmall = displaySettings.DispCSec == 1 || minimalSettings.MinimalView == 1;
    const int smallFigures = twoSmall ? 2 : 1;
    const int gaps = (6 + smallFigures) * gapOf(big);
    const int wanted = 5 * bigWidth + smallFigures * smallWidth + 2 * separator + gaps;
    if (wanted > inner) {
        const double squeeze =
            static_cast<double>(inner - gaps - 2 * separator) / (wanted - gaps - 2 * separator);
        bigWidth = px(bigWidth / px(1) * squeeze);
        smallWidth = px(smallWidth / px(1) * squeeze);
    }
    const int gap = gapOf(big);
    int right = width - margin;
    const auto fromRight = [&](Control& c, int w, int h) {
        right -= w;
        Place(c, right, digitsLine + big - h, w, h);
        right -= gap;
    };
    if (twoSmall) {
        fromRight(d.lblPosMisC, smallWidth, small);
    } else {
        Place(d.lblPosMisC, right, digitsLine + big - small, 0, small);
    }
    fromRight(d.lblPosMisD, smallWidth, small);
    fromRight(d.sepsd, separator, big);
    fromRight(d.lblPosSecU, bigWidth, big);
    fromRight(d.lblPosSecD, bigWidth, big);
    fromRight(d.sepms, separator, big);
    fromRight(d.lblPosMin, bigWidth, big);
    fromRight(d.lblPosMinD, bigWidth, big);
    fromRight(d.lblPosMinC, bigWidth, big);
    int left = margin;
    for (Control* c :
         {&d.lblClock[0], &d.lblClock[1], &d.lblClock[2], &d.lblPlayMode[0], &d.lblPlayMode[1], &d.lblTa}) {
        Place(*c, left, digitsTop, line, line);
        left += line;
    }
}

void DrawKeys() {
    KeyControls& k = frmMain().keys;
    const Stretch wide{0, k.fraKeys.width, 3, kKeyGap};
    const Stretch rows{0, k.fraKeys.height, 3, kKeyGap};
    Control* keys[2][3] = {{&k.ckAutoRep, &k.ckTouch, &k.ckAutoMix},
                           {&k.btMicPush, &k.btMicTO, &k.btSettings}};
    for (int row = 0; row < 2; ++row) {
        for (int i = 0; i < 3; ++i) {
            Place(*keys[row][i], wide.at(i), rows.at(row), wide.size(i), rows.size(row));
        }
    }
    Place(k.btStop, 0, rows.at(2), wide.at(1) + wide.size(1), rows.size(2));
    Place(k.btExit, wide.at(2), rows.at(2), wide.size(2), rows.size(2));
    const double ofWidth = wide.size(2) / double{kTwipsPerPixel} * 0.15;
    oneSize({&k.ckAutoRep, &k.ckTouch, &k.ckAutoMix, &k.btMicPush, &k.btMicTO, &k.btSettings, &k.btExit},
            std::clamp(ofWidth, 10.5, 20.0));
    k.btStop.fontSize = k.btExit.fontSize() + 1.5;
}

void DrawMeters() {
    MainWindow& w = frmMain();
    const int inset = px(5);
    const bool across = meterSettings.VUPos == "t";
    const int width = w.fraVU.width;
    const int height = w.fraVU.height;
    if (across) {
        const Stretch rows{inset, height - 2 * inset, 2, px(2)};
        Place(w.VuL, inset, rows.at(0), width - 2 * inset, rows.size(0));
        Place(w.VuR, inset, rows.at(1), width - 2 * inset, rows.size(1));
    } else {
        const Stretch columns{inset, width - 2 * inset, 2, px(4)};
        Place(w.VuL, columns.at(0), inset, columns.size(0), height - 2 * inset);
        Place(w.VuR, columns.at(1), inset, columns.size(1), height - 2 * inset);
    }
    ApplyMeterLook();
}

}  // namespace zv
