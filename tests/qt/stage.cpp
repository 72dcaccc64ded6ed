#include "tests/qt/stage.h"

#include <gtest/gtest.h>

#include "platform/clock.h"
#include "tests/support/places.h"

namespace zv {
namespace {
std::int64_t testNow = 0;
}
std::int64_t monotonicMs() { return testNow; }
WallTime wallTime() { return {}; }
void sleepMs(int ms) { testNow += ms; }

namespace test {

void setNow(std::int64_t ms) { testNow = ms; }

namespace {

class QtEnvironment final : public ::testing::Environment {
  public:
    void SetUp() override {
        qputenv("XDG_RUNTIME_DIR", "/tmp");
        shell::startQt(argc_, argv_, true);
        registerFont(test::sourceDir() + "/data/Fonts/ZVR.ttf");
    }
    void TearDown() override { shell::endQt(); }

  private:
    int argc_ = 1;
    char name_[8] = "test_qt";
    char* argv_[2] = {name_, nullptr};
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace

Family::Family(Control& block, int index, int x, int y, int w, int h)
    : button("b_Jingle", ControlKind::jingle, &block, index),
      bar("JRemLev", ControlKind::shape, &button, index),
      lp("lp_Jingle", ControlKind::symbol, &button, index),
      box("ckJingSel", ControlKind::checkBox, &button, index) {
    place(button, x, y, w, h);
    place(bar, 2, 2, w - 4, 6);
    place(lp, w - 20, 10, 10, 10);
    place(box, 20, 20, 16, 16);
    button.caption = "Jingle " + std::to_string(index);
    bar.backColor = 0x0000FF;
    lp.foreColor = 0x00FF00;
    for (Control* c : {&bar, &lp, &box}) c->visible = false;
}

Stage::Stage(Colour back) {
    window.backColor = back;
    window.width = twips(800);
    window.height = twips(400);
    place(block, 0, 0, 800, 200);
    for (int i = 0; i < 6; ++i) {
        families.push_back(std::make_unique<Family>(block, i, 8 + (i % 3) * 208, 8 + (i / 3) * 84));
    }
    place(key, 8, 210, 100, 40);
    key.caption = "Key";
    place(list, 120, 210, 150, 100);
    list.items = std::vector<std::string>{"Afternoon", "Jazz Hour", "Sample Radio", "Sports"};
    place(text, 280, 210, 120, 26);
    place(slide, 280, 240, 120, 24);
    place(tick, 280, 270, 120, 24);
    tick.caption = "Tick";
    place(label, 8, 260, 100, 20);
    label.caption = "Label";
    place(display, 420, 210, 200, 120);
    display.backColor = 0;
    place(digit, 100, 20, 40, 80);
    digit.caption = "1";
    digit.foreColor = 0xFFFF80;
    place(meter, 640, 210, 20, 150);
    showWindow(window);
    shell::deliverEvents();
    window.onMouseDown = nullptr;
}

Stage::~Stage() { shell::dropWindow(window); }

void Stage::listen(Control& c) {
    const std::string who = c.index < 0 ? c.name : c.name + "(" + std::to_string(c.index) + ")";
    const auto note = [this, who](const char* what) { log_.push_back(who + ":" + what); };
    const auto mouse = [note](const char* what) {
        return [note, what](const MouseEvent& e) {
            note((std::string(what) + (e.button == MouseButton::right    ? "R"
                                       : e.button == MouseButton::middle ? "M"
                                                                         : ""))
                     .c_str());
        };
    };
    c.onMouseDown = mouse("down");
    c.onMouseUp = mouse("up");
    c.onDoubleClick = mouse("double");
    c.onClick = [note] { note("click"); };
    c.onChange = [note] { note("change"); };
    c.onKeyDown = [note](KeyEvent& e) { note(("key" + std::to_string(static_cast<int>(e.key))).c_str()); };
    c.onKeyUp = [note](KeyEvent& e) { note(("keyup" + std::to_string(static_cast<int>(e.key))).c_str()); };
    c.onDrop = [note](const std::string& path) { note(("drop " + path).c_str()); };
}

std::string Stage::told() {
    std::string all;
    for (const std::string& line : std::exchange(log_, {})) all += (all.empty() ? "" : " ") + line;
    return all;
}

QImage Stage::picture() {
    shell::flushChanged();
    shell::deliverEvents();
    return shell::viewOf(window)->widget.grab().toImage();
}

QColor Stage::pixel(int x, int y) { return picture().pixelColor(x, y); }

}  // namespace test
}  // namespace zv
