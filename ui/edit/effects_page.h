/// The first page of frmFX: bands, reverb, tempo, rate, pitch and the presets. [control]
#pragma once

namespace zv {

/// Handlers of the page's controls; once.
void WireEffectsPage();
/// Limits from the settings and values of Edited.effects.
void ShowEffects();
/// Makes all effects neutral, on the channel and in the record.
void ResetEffects();
/// Sets the channel to Edited.effects.
void ApplyEffects();

}  // namespace zv
