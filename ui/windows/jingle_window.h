/// frmFX: the jingle editor's controls. What they do stands in ui/edit. [control]
#pragma once

#include <array>
#include <string>

#include "audio/cue_points.h"
#include "audio/effect_vector.h"
#include "ui/windows/form_window.h"

namespace zv {

/// The three fields of a time.
struct TimeFields {
    Control *min, *sec, *cs;
    std::array<Control*, 2> marks{};  ///< between them, of a time that is only shown
    void show(const FieldTime& time) const;
    FieldTime shown() const;
    void setVisible(bool seen) const;
};

/// "07".
std::string TwoDigits(int value);

struct JingleWindow {
    JingleWindow();

    FormWindow form{"frmFX", "fxForm"};
    Control& lblJingleToFX = form.control("lblJingleToFX", ControlKind::label);
    Control& JID = form.control("JID", ControlKind::label);  ///< the index; not shown
    Control& lblFacts = form.control("lblFacts", ControlKind::label);
    Control& lblPos = form.control("lblPos", ControlKind::label);  ///< the three digits as one text
    Control& lblPosMinVal = form.control("lblPosMinVal", ControlKind::label);
    Control& lblPosSecVal = form.control("lblPosSecVal", ControlKind::label);
    Control& lblPosCs = form.control("lblPosCs", ControlKind::label);
    Control& SlidePos = form.control("SlidePos", ControlKind::slider);
    Control& picWave = form.control("picWave", ControlKind::canvas);  ///< the sound and its handles
    Control& TabFX = form.control("TabFX", ControlKind::tabs);

    // ---- effects ----
    std::array<Control*, kEqBands> lblEQ{}, sldEQ{}, lblEQV{};
    Control& sldReverb = form.control("sldReverb", ControlKind::slider);
    Control& lblReverbVal = form.control("lblReverbVal", ControlKind::label);
    std::array<Control*, 3> sldTempo{}, lblTempoVal{};
    Control& lblSamplerateHz = form.control("lblSamplerateHz", ControlKind::label);
    Control& cmbFXpreset = form.control("cmbFXpreset", ControlKind::comboBox);
    Control& txtFXpreset = form.control("txtFXpreset", ControlKind::textBox);  ///< name to save under
    Control& btAddFXpreset = form.control("btAddFXpreset", ControlKind::button, "fxbtAddFXpreset");
    Control& btDelFXpreset = form.control("btDelFXpreset", ControlKind::button, "fxbtDelFXpreset");

    // ---- positions ----
    std::array<Control*, 2> optStartEnd{};
    TimeFields TxtPos = fields("TxtPos", ControlKind::number), TxtLI = fields("TxtLI", ControlKind::number),
               TxtLO = fields("TxtLO", ControlKind::number),
               StartTxtPos = fields("StartTxtPos", ControlKind::label),
               StopTxtPos = fields("StopTxtPos", ControlKind::label),
               lblLDur = fields("lblLDur", ControlKind::label);
    Control& sldPos = form.control("sldPos", ControlKind::slider);
    Control& PlayFromStart = form.control("PlayFromStart", ControlKind::button, "fxPlayFromStart");
    Control& sldFadeOut = form.control("sldFadeOut", ControlKind::slider);
    Control& lblFadeOutVal = form.control("lblFadeOutVal", ControlKind::label);
    Control& ckLogFadeOut = form.control("ckLogFadeOut", ControlKind::checkBox, "fxckLogFadeOut");
    Control& sldLI = form.control("sldLI", ControlKind::slider);
    Control& sldLO = form.control("sldLO", ControlKind::slider);
    Control& ckLinkLILO = form.control("ckLinkLILO", ControlKind::checkBox, "fxckLinkLILO");
    Control& imgLockLoopLength = form.control("imgLockLoopLength", ControlKind::label);
    Control& btCopyStartPos = form.control("btCopyStartPos", ControlKind::button, "fxbtCopyStartPos");
    Control& PlayFromLoopIn = form.control("PlayFromLoopIn", ControlKind::button, "fxPlayFromLoopIn");
    Control& TestLoopOut = form.control("TestLoopOut", ControlKind::button, "fxTestLoopOut");
    Control& ckLoopFadeOut = form.control("ckLoopFadeOut", ControlKind::checkBox, "fxckLoopFadeOut");
    Control& lblSeqMod = form.control("lblSeqMod", ControlKind::label, "fxlblSeqMod");
    Control& lblLI = form.control("lblLI", ControlKind::label, "fxlblLI");
    Control& lblLO = form.control("lblLO", ControlKind::label, "fxlblLO");
    Control& lblLoopLength = form.control("lblLoopLength", ControlKind::label, "fxLoopLength");
    Control& lblSeqModNotice = form.control("lblSeqModNotice", ControlKind::label);

    // ---- level and behaviour ----
    Control& SlideVolCh = form.control("SlideVolCh", ControlKind::slider);
    Control& lblVolVal = form.control("lblVolVal", ControlKind::label);
    Control& cmbRange = form.control("cmbRange", ControlKind::comboBox);
    Control& btMaxVol = form.control("btMaxVol", ControlKind::button);
    Control& lblLoudness = form.control("lblLoudness", ControlKind::label);  ///< of the part that plays
    Control& cmbTarget = form.control("cmbTarget", ControlKind::comboBox);   ///< LoudnessTarget
    Control& btLoudness = form.control("btLoudness", ControlKind::button);   ///< brings the volume there
    Control& ckAutoDuck = form.control("ckAutoDuck", ControlKind::checkBox, "fxCkAutoDuck");
    Control& ckNoTrigDuck = form.control("ckNoTrigDuck", ControlKind::checkBox, "fxCkNoTrigDuck");
    Control& ckNoAutomix = form.control("ckNoAutomix", ControlKind::checkBox, "fxCkNoAutomix");

    // ---- the foot ----
    Control& ckPlay = form.control("ckPlay", ControlKind::button);
    Control& btUndoAll = form.control("btUndoAll", ControlKind::button, "fxUndoAll");
    Control& btReset = form.control("btReset", ControlKind::button, "fxbtReset");
    Control& btOK = form.control("btOK", ControlKind::button, "fxbtOK");

    /// All that belongs to a sequence, shown or hidden together; `notice` says what a sequence is, or why there is none.
    void showLoop(bool shown, const std::string& notice);

  private:
    TimeFields fields(const std::string& name, ControlKind kind);
    FormCard equaliser();
    FormCard sound();
    FormCard startAndStop();
    FormCard loop();
    FormCard level();
};

JingleWindow& frmFX();

}  // namespace zv
