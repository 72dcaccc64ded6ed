#include "audio/talk_over.h"

#include <algorithm>
#include <cstddef>

#include "audio/devices.h"
#include "engine/bass.h"
#include "startup/settings/duck_settings.h"
#include "startup/settings/volumes_settings.h"

namespace zv {

bool MicPushed = false, TalkOverOn = false;
float BusLevel = 1;

namespace {

constexpr DWORD kMicRamp = 50, kInputOffRamp = 10;  // ms

float share(int percent) { return static_cast<float>(percent) / 100.0F; }

void slideJingles(float main, float aux, int ms) {
    BusLevel = std::min(main, Device[1] != 0 ? aux : main);
    for (std::size_t i = 0; i < MainSplit.size(); ++i)
        BASS_ChannelSlideAttribute(MainSplit[i], BASS_ATTRIB_VOLDSP, i == 0 ? main : aux,
                                   static_cast<DWORD>(std::max(0, ms)));
}

/// The microphone on one output, at `mic` times its own level there.
void slideMic(std::size_t output, float mic, DWORD ms) {
    const float level = mic * share(output == 0 ? volumeSettings.VolumeInMain : volumeSettings.VolumeInAux);
    BASS_ChannelSlideAttribute(MicSplit[output], BASS_ATTRIB_VOLDSP, level, ms);
}

void slideMics(float mic, DWORD ms) {
    for (std::size_t i = 0; i < MicSplit.size(); ++i) slideMic(i, mic, ms);
}

}  // namespace

void RaiseMic() {
    MicPushed = true;
    slideJingles(share(duckSettings.AttnVol), share(duckSettings.AttnVol), duckSettings.FadeOutSpeed);
    slideMics(1, kMicRamp);
}

void LowerMic() {
    slideJingles(1, 1, duckSettings.FadeInSpeed);
    slideMics(0, kMicRamp);
}

void EndTalkOver() {
    // Back to the output's own level, which is what the key always did.
    slideJingles(share(volumeSettings.Volume), share(volumeSettings.VolumeAux), duckSettings.FadeInSpeed);
    slideMics(0, kMicRamp);
}

void InputIsOff() {
    if (MicPushed) return;
    slideJingles(1, 1, duckSettings.FadeInSpeed);
    slideMics(0, kInputOffRamp);
}

void SetInputVolume(int output, int percent) {
    (output == 0 ? volumeSettings.VolumeInMain : volumeSettings.VolumeInAux) = percent;
    if (MicPushed) slideMic(static_cast<std::size_t>(output), 1, kMicRamp);
}

}  // namespace zv
