/// The tab of the live stream: what its keys do. [control]
#pragma once

namespace zv {

void WireLiveTab();
/// Fills what the stream asks of the window.
void FillLiveUpcalls();
void TimerFadOutLiveTick();
void TimerLiveTick();

}  // namespace zv
