#include "ui/records/main_window.h"

#include <array>
#include <cstddef>

#include "platform/controls.h"

namespace zv {

namespace {

using enum ControlKind;

}  // namespace

DisplayControls::DisplayControls(Control& window)
    : picDispBack("picDispBack", panel, &window),
      lblPosMinC("lblPosMinC", label, &picDispBack),
      lblPosMinD("lblPosMinD", label, &picDispBack),
      lblPosMin("lblPosMin", label, &picDispBack),
      sepms("sepms", label, &picDispBack),
      lblPosSecD("lblPosSecD", label, &picDispBack),
      lblPosSecU("lblPosSecU", label, &picDispBack),
      sepsd("sepsd", label, &picDispBack),
      lblPosMisD("lblPosMisD", label, &picDispBack),
      lblPosMisC("lblPosMisC", label, &picDispBack),
      lblDate("lblDate", label, &picDispBack),
      lblTime("lblTime", label, &picDispBack),
      txtDisPal("txtDisPal", label, &picDispBack),
      lblQuiet("lblQuiet", label, &picDispBack),
      lblDispMessage("lblDispMessage", label, &picDispBack),
      lblErr("lblErr", symbol, &picDispBack),
      lblClock{{{"lblClock", symbol, &picDispBack, 0},
                {"lblClock", symbol, &picDispBack, 1},
                {"lblClock", symbol, &picDispBack, 2}}},
      lblPlayMode{{{"lblPlayMode", symbol, &picDispBack, 0}, {"lblPlayMode", symbol, &picDispBack, 1}}},
      lblTa("lblTa", symbol, &picDispBack),
      lblMIDIIcon("lblMIDIIcon", label, &picDispBack),
      lblMIDIDevice("lblMIDIDevice", label, &picDispBack) {
    sepsd.caption = ".";
    lblErr.visible = false;
    lblQuiet.visible = false;
    lblDispMessage.visible = false;
    for (Control& mark : lblClock) {
        mark.visible = false;
    }
    lblClock[1].caption = "A";
    lblClock[2].caption = "N";
    for (Control& mark : lblPlayMode) {
        mark.visible = false;
    }
    lblTa.caption = "d";
    lblMIDIIcon.caption = "MIDI";
}

std::array<Control*, 9> DisplayControls::digits() {
    return {&lblPosMinC, &lblPosMinD, &lblPosMin,  &sepms,     &lblPosSecD,
            &lblPosSecU, &sepsd,      &lblPosMisD, &lblPosMisC};
}

PaletteTab::PaletteTab(Control& frame)
    : btUp("btUp", button, &frame),
      btSearchJingle("btSearchJingle", button, &frame),
      btDn("btDn", button, &frame),
      lstPal("lstPal", listBox, &frame),
      ckAssign("ckAssign", toggle, &frame),
      btSave("btSave", toggle, &frame),
      btNew("btNew", button, &frame),
      btDelPal("btDelPal", button, &frame),
      PalNameCar("PalNameCar", label, &frame),
      txtSave("txtSave", textBox, &frame),
      lstSection("lstSection", listBox, &frame),
      lstJID("lstJID", listBox, &frame) {
    btUp.caption = "U";
    btDn.caption = "D";
    btSearchJingle.caption = "g";
    for (Control* key : {&btUp, &btDn, &btSearchJingle}) {
        key->fontName = "ZVR";
    }
    lstPal.sorted = true;
    PalNameCar.visible = false;
    txtSave.visible = false;
    lstSection.visible = false;
    lstJID.visible = false;
}

AnnouncerTab::AnnouncerTab(Control& frame)
    : ckTmAnn("ckTmAnn", toggle, &frame),
      ckTmAnnAM("ckTmAnnAM", toggle, &frame),
      b_tmAnJin("b_tmAnJin", toggle, &frame),
      b_tmAnJinAM("b_tmAnJinAM", toggle, &frame),
      lblMinute("lblMinute", label, &frame),
      lblSecond("lblSecond", label, &frame),
      lblDelay("lblDelay", label, &frame),
      DTMinute("DTMinute", number, &frame),
      DTSecond("DTSecond", number, &frame),
      DTDelay("DTDelay", number, &frame) {
    for (Control* mark : {&ckTmAnnAM, &b_tmAnJinAM}) {
        mark->caption = "a";
        mark->fontName = "ZVR";
    }
}

LiveTab::LiveTab(Control& frame)
    : cmbStream("cmbStream", comboBox, &frame),
      ckPlayStream("ckPlayStream", toggle, &frame),
      btRemUrl("btRemUrl", button, &frame),
      ckMixByTa("ckMixByTa", toggle, &frame),
      ckAutoDuckLive("ckAutoDuckLive", checkBox, &frame),
      SlideVolLive("SlideVolLive", slider, &frame),
      btCoefVolLive("btCoefVolLive", button, &frame),
      lblVolLive("lblVolLive", label, &frame),
      lblStream("lblStream", label, &frame) {}

OptionsTab::OptionsTab(Control& frame)
    : ckPlayStopI("ckPlayStopI", toggle, &frame),
      ckAutoRepI("ckAutoRepI", toggle, &frame),
      ckTouchI("ckTouchI", toggle, &frame),
      ckNoStopI("ckNoStopI", toggle, &frame),
      ckLoopI("ckLoopI", toggle, &frame),
      ckFXI("ckFXI", toggle, &frame),
      ckColorI("ckColorI", toggle, &frame),
      ps_LED("ps_LED", shape, &frame),
      ar_LED("ar_LED", shape, &frame),
      tc_LED("tc_LED", shape, &frame),
      ns_LED("ns_LED", shape, &frame),
      lp_LED("lp_LED", shape, &frame),
      sq_LED("sq_LED", shape, &frame),
      fx_LED("fx_LED", shape, &frame) {}

KeyControls::KeyControls(Control& window)
    : fraKeys("fraKeys", frame, &window),
      ckAutoRep("ckAutoRep", toggle, &fraKeys),
      ckTouch("ckTouch", toggle, &fraKeys),
      ckAutoMix("ckAutoMix", toggle, &fraKeys),
      btMicPush("btMicPush", toggle, &fraKeys),
      btMicTO("btMicTO", toggle, &fraKeys),
      btSettings("btSettings", button, &fraKeys),
      btStop("btStop", button, &fraKeys),
      btExit("btExit", button, &fraKeys) {
    btStop.fontBold = true;
}

MainWindow::MainWindow()
    : window("frmMain", ControlKind::window),
      display(window),
      fraPanel("fraPanel", frame, &window),
      ckTab{{{"ckTab", toggle, &fraPanel, 0},
             {"ckTab", toggle, &fraPanel, 1},
             {"ckTab", toggle, &fraPanel, 2},
             {"ckTab", toggle, &fraPanel, 3}}},
      fraTab{{{"fraTab", frame, &fraPanel, 0},
              {"fraTab", frame, &fraPanel, 1},
              {"fraTab", frame, &fraPanel, 2},
              {"fraTab", frame, &fraPanel, 3}}},
      palettes(fraTab[0]),
      announcer(fraTab[1]),
      live(fraTab[2]),
      options(fraTab[3]),
      keys(window),
      fraJingles("fraJingles", frame, &window),
      fraHotJingles("fraHotJingles", frame, &window),
      linHotJingles("linHotJingles", shape, &window),
      fraVU("fraVU", frame, &window),
      VuL("VuL", meter, &fraVU),
      VuR("VuR", meter, &fraVU),
      lblL("lblL", label, &fraVU),
      lblR("lblR", label, &fraVU),
      lblVUSrc("lblVUSrc", symbol, &fraVU) {
    window.caption = "Zentrova";
    lblL.visible = false;  // the meters' tool tips name the sides
    lblR.visible = false;
}

MainWindow& frmMain() {
    static MainWindow window;
    return window;
}

}  // namespace zv
