#include "ui/settings/mixer_devices.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

#include "audio/devices.h"
#include "audio/talk_over.h"
#include "platform/desktop.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/volumes_settings.h"
#include "ui/screen/layout.h"
#include "ui/screen/mic_keys.h"
#include "ui/settings/mixer_controls.h"

namespace zv {

namespace {

constexpr const char* kTitle = "Zentrova";
constexpr const char* kByNumber = "ID";
constexpr const char* kByName = "Name";
constexpr std::array<const char*, 5> kRates{"11025 Hz", "22050 Hz", "44100 Hz", "48000 Hz", "96000 Hz"};
constexpr std::size_t kRateDigits = 5;
constexpr std::array<const char*, 4> kSystems{"Auto", "Server", "JACK", "ALSA"};  // as in the file

bool byName() { return deviceSettings.SavDevBy == kByName; }

int lastOf(const Control& list) { return static_cast<int>(list.items().size()) - 1; }

/// The row of an output's device: the last of the auxiliary list means none.
int rowOfDevice(int output) {
    const MixerWindow& m = frmMixer();
    const auto at = static_cast<std::size_t>(output);
    return Device[at] == 0 ? lastOf(*m.cmbDev[at]) : Device[at] - 1;
}

void tellRestart() {
    messageBox(frmMixer().lblFreqChg.caption(), kTitle, BoxKind::information, BoxButtons::ok);
}

/// As the program began with.
const std::string& systemAtStart() {
    static const std::string system = deviceSettings.SoundSystem;
    return system;
}

void rememberOutputs() {
    MixerWindow& m = frmMixer();
    if (byName()) {
        deviceSettings.DeviceName = m.cmbDev[0]->text();
        deviceSettings.DeviceAuxName = Device[1] == 0 ? std::string() : m.cmbDev[1]->text();
        return;
    }
    DeviceId = Device;
    deviceSettings.Device = Device[0];
    deviceSettings.DeviceAux = Device[1];
}

/// Two outputs never share a device: the list that was moved goes back.
bool refused(int output) {
    MixerWindow& m = frmMixer();
    if (m.cmbDev[0]->listIndex() != m.cmbDev[1]->listIndex()) return false;
    Control& moved = *m.cmbDev[static_cast<std::size_t>(output)];
    messageBox(Ln("sSameDevices") + " " + moved.text(), kTitle, BoxKind::information, BoxButtons::ok);
    moved.listIndex = rowOfDevice(output);
    if (m.cmbDev[0]->listIndex() == m.cmbDev[1]->listIndex()) m.cmbDev[1]->listIndex = lastOf(*m.cmbDev[1]);
    return true;
}

}  // namespace

void ShowPending() {
    MixerWindow& m = frmMixer();
    const bool pending = deviceSettings.DeviceSinglePending != deviceSettings.DeviceSingle ||
                         deviceSettings.MixerFreq != MixerFreqAtStart ||
                         deviceSettings.SoundSystem != systemAtStart();
    m.lblNote.caption = pending ? m.lblFreqChg.caption() : Ln("mixNote");
}

namespace {

/// After a choice that the running mixer does not follow; `other` than what it runs with.
void chosenForNextStart(bool other) {
    ShowPending();
    if (other) tellRestart();
}

}  // namespace

void FillDeviceLists() {
    MixerWindow& m = frmMixer();
    const OutputLists outputs = CurrentOutputs();
    m.cmbDev[0]->items = outputs.main;
    m.cmbDev[1]->items = outputs.aux;
    m.cmbDev[0]->listIndex = outputs.mainSelected;
    m.cmbDev[1]->listIndex = outputs.auxSelected;
    m.optDevBy[0]->value = outputs.byName ? 0 : 1;
    m.optDevBy[1]->value = outputs.byName ? 1 : 0;
    const InputLists inputs = CurrentInputs();
    m.cmbInDev.items = inputs.inputs;
    m.cmbInDev.listIndex = inputs.selected;
    m.ckInputEnable.value = volumeSettings.InputEnabled;
    m.ckDeviceSingle.value = deviceSettings.DeviceSinglePending;
    systemAtStart();
    std::vector<std::string> systems{Ln("mixSystemAuto"), Ln("mixSystemServer")};
    systems.insert(systems.end(), kSystems.begin() + 2, kSystems.end());
    m.cmbSystem.items = systems;
    m.cmbSystem.listIndex = 0;
    for (std::size_t i = 0; i < kSystems.size(); ++i)
        if (SameText(kSystems[i], deviceSettings.SoundSystem)) m.cmbSystem.listIndex = static_cast<int>(i);
    m.cmbFreq.items = std::vector<std::string>(kRates.begin(), kRates.end());
    m.cmbFreq.listIndex = -1;
    for (std::size_t i = 0; i < kRates.size(); ++i) {
        if (std::atoi(kRates[i]) == deviceSettings.MixerFreq) m.cmbFreq.listIndex = static_cast<int>(i);
    }
    ShowPending();
}

void OutputChosen(int output) {
    MixerWindow& m = frmMixer();
    if (deviceSettings.DeviceSingle != 0) {
        deviceSettings.Device = m.cmbDev[0]->listIndex() + 1;
        deviceSettings.DeviceName = m.cmbDev[0]->text();
        tellRestart();
        return;
    }
    if (refused(output)) return;
    const Control& list = *m.cmbDev[static_cast<std::size_t>(output)];
    const bool none = output == 1 && list.listIndex() == lastOf(list);
    MoveOutput(output, none ? 0 : list.listIndex() + 1);
    rememberOutputs();
    FormDraw("init");
}

void InputChosen() {
    const MixerWindow& m = frmMixer();
    deviceSettings.DeviceIn = m.cmbInDev.listIndex();
    deviceSettings.DeviceInName = m.cmbInDev.text();
    CloseMic();
    OpenMic();
    // While its key is held the microphone goes on at its levels on the new input.
    SetInputVolume(0, volumeSettings.VolumeInMain);
    SetInputVolume(1, volumeSettings.VolumeInAux);
}

void InputSwitched() {
    SwitchInput(frmMixer().ckInputEnable.value == 1);
    ShowInputControls();
}

void ShowInputControls() {
    MixerWindow& m = frmMixer();
    const bool seen = deviceSettings.DeviceSingle == 0 && volumeSettings.InputEnabled == 1;
    for (Control* c : {&m.cmbInDev, &m.VuIn, m.SlideVolIn[0], m.SlideVolIn[1], &m.ckVolInLink})
        c->visible = seen;
}

void RememberBy(int how) {
    deviceSettings.SavDevBy = how == 0 ? kByNumber : kByName;
    rememberOutputs();
}

void TopologyChosen() {
    deviceSettings.DeviceSinglePending = frmMixer().ckDeviceSingle.value;
    chosenForNextStart(deviceSettings.DeviceSinglePending != deviceSettings.DeviceSingle);
}

void SystemChosen() {
    const auto at = static_cast<std::size_t>(std::max(0, frmMixer().cmbSystem.listIndex()));
    deviceSettings.SoundSystem = kSystems[at];
    chosenForNextStart(deviceSettings.SoundSystem != systemAtStart());
}

void RateChosen() {
    deviceSettings.MixerFreq = std::atoi(frmMixer().cmbFreq.text().substr(0, kRateDigits).c_str());
    chosenForNextStart(deviceSettings.MixerFreq != MixerFreqAtStart);
}

}  // namespace zv
