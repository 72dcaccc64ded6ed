// The palette list: stepping, holding its keys, centring.

#include "startup/settings/palette_list_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings_file.h"
#include "tests/ui/window_test.h"
#include "ui/edit/palette_load.h"
#include "ui/edit/palette_steps.h"

namespace zv::test {

class PaletteTest : public WindowTest {
  protected:
    PaletteTest() {
        writePalette("Morning", 3);
        writePalette("afternoon", 2);
        writePalette("Zulu", 1);
        SettingsStore.PutValue("PaletteIndex", "Morning");
        lstPalRefresh();
        paletteSettings.PaletteIndex = "Morning";
        OpenFile("Morning");
    }

    Control& list() { return frmMain().palettes.lstPal; }
    const std::string& name() { return frmMain().display.txtDisPal.caption(); }
    int filled() {
        int n = 0;
        for (int i = 0; i < kPaletteSlots; ++i) {
            n += rec(i).Path.empty() ? 0 : 1;
        }
        return n;
    }
};

TEST_F(PaletteTest, steppingLoadsOnlyWhereItStops) {
    evBtDn();
    EXPECT_EQ(name(), "Zulu");
    evBtDn();  // wraps
    EXPECT_EQ(name(), "afternoon");
    EXPECT_EQ(filled(), 3);  // nothing is loaded yet
    pass(150);
    EXPECT_EQ(filled(), 2);
    EXPECT_FALSE(frmMain().display.lblErr.visible);
    PaletteOpening = true;  // another load is under way: the step waits for its end
    evBtDn();
    pass(250);
    EXPECT_EQ(filled(), 2);
    PaletteOpening = false;
    pass(150);
    EXPECT_EQ(filled(), 3);
    evbtUp();
    pass(150);
    paletteListSettings.LoopLstPal = 0;
    evbtUp();
    EXPECT_EQ(name(), "afternoon");  // at the top it stays
    evBtDn();
    pass(150);
    EXPECT_EQ(name(), "Morning");
    EXPECT_EQ(filled(), 3);
}

TEST_F(PaletteTest, whateverMovesInTheListCentresItIfThatIsWanted) {
    for (int i = 0; i < 60; ++i) writePalette("P" + std::to_string(10 + i), 1);
    lstPalRefresh();
    for (const int wanted : {1, 0}) {
        paletteListSettings.CenterLstPal = static_cast<std::uint8_t>(wanted);
        const std::pair<const char*, std::function<void()>> ways[] = {
            {"picked", [&] { list().onMouseUp({}); }},
            {"stepped", [] { evBtDn(); }},
            {"jumped", [] { frmMain().palettes.btUp.onMouseDown({}); }}};
        for (const auto& [way, act] : ways) {
            SelectPalette("P40");
            list().topRow = 0;
            act();
            EXPECT_EQ(list().topRow() > 0, wanted == 1) << way;
            pass(200);
        }
    }
}

TEST_F(PaletteTest, aHeldPageKeyRunsAfterAMoment) {
    const int pageDown = static_cast<int>(Key::pageDown);
    const auto send = [&](bool repeat) {
        KeyEvent event{Key::pageDown, 0, repeat};
        frmMain().window.onKeyDown(event);
        EXPECT_TRUE(event.consumed);
    };
    paletteListSettings.LoopLstPal = 0;
    SelectPalette("afternoon");
    desktop().keys = {pageDown};
    send(false);
    EXPECT_EQ(name(), "Morning");
    pass(390);
    send(true);  // the keyboard's own repeats step nothing
    EXPECT_EQ(name(), "Morning");
    pass(20);
    EXPECT_EQ(name(), "Zulu") << "held for 0.4 s it runs";
    SelectPalette("afternoon");
    send(true);
    desktop().keys.clear();  // let go while another window had the keyboard
    pass(600);
    EXPECT_EQ(list().text(), "afternoon");
}

TEST_F(PaletteTest, aHeldArrowJumpsToTheEnd) {
    Control& down = frmMain().palettes.btDn;
    down.onMouseDown({});
    down.onMouseUp({});
    pass(700);
    EXPECT_EQ(name(), "Zulu");
    Control& up = frmMain().palettes.btUp;
    up.onMouseDown({});
    EXPECT_EQ(name(), "Morning");
    pass(700);
    EXPECT_EQ(name(), "afternoon");
    up.onMouseUp({});
}

}  // namespace zv::test
