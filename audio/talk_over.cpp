#include "audio/talk_over.h"

#include <cstddef>

#include "audio/devices.h"
#include "engine/bass.h"
#include "startup/settings.h"

namespace zv {

namespace {

constexpr DWORD kMicRamp = 50;  // ms

float share(int percent) { return static_cast<float>(percent) / 100.0F; }

/// Slides the jingle bus on the main and the auxiliary output, and the microphone on both: `mic` times its
/// own level there.
void slideBuses(float main, float aux, int ms, float mic) {
    for (std::size_t i = 0; i < MainSplit.size(); ++i) {
        if (MainSplit[i] != 0)
            BASS_ChannelSlideAttribute(MainSplit[i], BASS_ATTRIB_VOLDSP, i == 0 ? main : aux,
                                       static_cast<DWORD>(ms));
        if (MicSplit[i] == 0) continue;
        const float level = mic * share(i == 0 ? settings.VolumeInMain : settings.VolumeInAux);
        BASS_ChannelSlideAttribute(MicSplit[i], BASS_ATTRIB_VOLDSP, level, kMicRamp);
    }
}

}  // namespace

bool MicPushed = false, TalkOverOn = false;

void MicUp() {
    MicPushed = true;
    slideBuses(share(settings.AttnVol), share(settings.AttnVol), settings.FadeOutSpeed, 1.0F);
}

void MicDown() { slideBuses(1.0F, 1.0F, settings.FadeInSpeed, 0.0F); }

void TalkOverEnds() {
    // Back to the output's own level, which is what the key always did.
    slideBuses(share(settings.Volume), share(settings.VolumeAux), settings.FadeInSpeed, 0.0F);
}

}  // namespace zv
