/// The tab of the time announcer: what its keys do, and the second's tick that starts the announcements. [control]
#pragma once

namespace zv {

void WireAnnouncerTab();
/// Fills what the announcer asks of the window.
void FillAnnouncerUpcalls();
/// Arms and disarms the announcer.
void CkTmAnnTog();
/// Waits for a button as the time jingle, or lets go of the one that was chosen.
void b_tmAnJinTog();
/// The jingle of a button becomes the time jingle.
void clTmAn(int index);
/// The menu's way: brings the tab, disarms the announcer when it is armed, and takes the jingle.
void PlayAfterAnnouncement(int index);
/// Each second of the wall clock.
void TimerTimeAndTATick();
/// Milliseconds until the next second of the wall clock begins.
int UntilNextSecond();

}  // namespace zv
