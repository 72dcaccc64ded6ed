// Windows that are forms: laid out from their descriptions, worked by mouse, keyboard and wheel.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QFontMetricsF>
#include <QWheelEvent>
#include <algorithm>

#include "platform/forms.h"
#include "platform/qt/view/theme.h"
#include "tests/qt/stage.h"

namespace zv::test {
namespace {

using namespace shell;

/// A form with a control of each kind.
struct TestForm {
    Control window{"frmTest", ControlKind::window};
    Control lblTitle{"lblTitle", ControlKind::label, &window};
    Control lblFacts{"lblFacts", ControlKind::label, &window};
    Control lblRight{"lblRight", ControlKind::label, &window};
    Control tabs{"tabs", ControlKind::tabs, &window};
    Control canvas{"picWave", ControlKind::canvas, &window};
    Control lblCard{"lblCard", ControlKind::label, &window};
    Control lblOther{"lblOther", ControlKind::label, &window};
    Control lblName{"lblName", ControlKind::label, &window};
    Control lblVol{"lblVol", ControlKind::label, &window};
    Control lblVolVal{"lblVolVal", ControlKind::label, &window};
    Control lblRows{"lblRows", ControlKind::label, &window};
    Control lblPlace{"lblPlace", ControlKind::label, &window};
    Control txtName{"txtName", ControlKind::textBox, &window};
    Control slide{"SlideVol", ControlKind::slider, &window};
    Control rows{"udRows", ControlKind::number, &window};
    Control place{"cmbPlace", ControlKind::comboBox, &window};
    Control device{"cmbDevice", ControlKind::comboBox, &window};
    Control tick{"ckTick", ControlKind::checkBox, &window};
    Control swatch{"ColField", ControlKind::colourField, &window};
    Control meter{"VuIn", ControlKind::meter, &window};
    Control list{"lstRows", ControlKind::listBox, &window};
    Control note{"lblNote", ControlKind::label, &window};
    Control btReset{"btReset", ControlKind::button, &window};
    Control btCancel{"btCancel", ControlKind::button, &window};
    Control btOK{"btOK", ControlKind::button, &window};

    explicit TestForm(bool dark = false) {
        window.backColor = dark ? 0x202020 : 0xF0F0F0;
        window.caption = "Form";
        lblTitle.caption = "Heartbeat Loop";
        lblFacts.caption = "Button 25 - Sample Radio - ogg, 44.1 kHz, stereo - 7.3 s";
        lblRight.caption = "0:02.84";
        lblRight.foreColor = 0xFFFF80;
        tabs.items = std::vector<std::string>{"Positions and loop", "Effects"};
        tabs.listIndex = 0;
        lblCard.caption = "Start and stop";
        lblOther.caption = "Behaviour";
        lblName.caption = "Name";
        lblVol.caption = "Volume of the jingle, which is heard at once";
        lblVolVal.caption = "80 %";
        lblRows.caption = "Rows";
        lblPlace.caption = "Hot jingles";
        place.items = std::vector<std::string>{"None", "Above", "Below"};
        place.segmented = true;
        place.listIndex = 2;
        device.items = std::vector<std::string>{"Built-in Audio Analog Stereo", "Cue"};
        device.listIndex = 0;
        slide.value = 80;
        slide.standard = 100;
        slide.step = 5;
        rows.minimum = 4;
        rows.maximum = 12;
        rows.value = 6;
        tick.caption = "Ducks under talk";
        swatch.backColor = 0x80FFFF;
        swatch.caption = "FFFF80";
        list.items = std::vector<std::string>{"One", "Two", "Three"};
        note.caption = "Changes are heard at once. Space: hear, I / O: set start / stop";
        btReset.caption = "Reset tab";
        btCancel.caption = "Cancel";
        btOK.caption = "OK";
        MeterLook look;
        look.vertical = false;
        meter.meterLook = look;
        meter.value = 60;
        auto peaks = std::make_shared<std::vector<std::pair<float, float>>>();
        for (int i = 0; i < 400; ++i)
            peaks->push_back({-0.1F * static_cast<float>(i % 9), 0.1F * static_cast<float>(i % 9)});
        canvas.drawing = Drawing{
            {.what = Stroke::What::peaks, .width = 400, .height = 100, .colour = 0xFFFF80, .peaks = peaks},
            {.what = Stroke::What::line, .x = 100, .height = 100, .colour = 0xFFFFFF},
            {.what = Stroke::What::text,
             .x = 8,
             .width = 60,
             .height = 20,
             .colour = 0x80FF80,
             .text = "START"}};
        window.form = std::make_shared<const Form>(Form{
            .header = {.title = lblTitle, .line = lblFacts, .right = lblRight},
            .blocks = {{{.rows = {{.cells = {{&canvas, {}, kRestOfRow}}, .height = 120}}, .bare = true}}},
            .pager = &tabs,
            .pages = {{.name = "one",
                       .blocks = {{{.title = lblCard,
                                    .rows = {{.label = lblName, .cells = {{&txtName, {}, kRestOfRow}}},
                                             {.label = lblVol,
                                              .cells = {{.control = &slide, .unit = lblVolVal}}},
                                             {.label = lblRows, .cells = {{&rows}}},
                                             {.cells = {{&meter}}}}},
                                   {.title = lblOther,
                                    .rows = {{.label = lblPlace, .cells = {{&place}}},
                                             {.cells = {{&device, {}, kRestOfRow}}},
                                             {.cells = {{&tick}}},
                                             {.cells = {{&swatch}}}}}}}},
                      {.name = "two", .blocks = {{{.rows = {{.cells = {{&list}}, .grows = true}}}}}}},
            .note = note,
            .keysLeft = {{.control = &btReset, .role = KeyRole::destroy}},
            .keys = {{.control = &btCancel, .role = KeyRole::cancel},
                     {.control = &btOK, .role = KeyRole::accept}}});
    }
    ~TestForm() { dropWindow(window); }

    void open(int width = 1000, int height = 700) {
        layOutForm(window, width, height);
        showWindow(window);
        flushChanged();
        deliverEvents();
        deliverEvents();
    }
    void shoot(const std::string& file) { grabWindow(window, file); }
};

TEST(Forms, Picture) {
    for (const bool dark : {false, true}) {
        TestForm form(dark);
        form.open();
        form.shoot(dark ? "/tmp/form_dark.png" : "/tmp/form_light.png");
        printf("%d %d\n", px(form.window.width), px(form.window.height));
    }
    TestForm form;
    form.open(500, 400);
    form.shoot("/tmp/form_narrow.png");
}

}  // namespace
}  // namespace zv::test
