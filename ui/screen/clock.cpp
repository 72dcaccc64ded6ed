#include "ui/screen/clock.h"

#include <array>
#include <cctype>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "audio/announcer.h"
#include "audio/devices.h"
#include "audio/output_watch.h"
#include "model/state.h"
#include "platform/clock.h"
#include "platform/controls.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/clock_settings.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/warning_settings.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/digits.h"
#include "ui/screen/warning.h"

namespace zv {

bool ClockShowDate = false;
bool TaHeld = false;
bool DateTimeDemoOn = false;

namespace {

/// Element `i` of a comma list of the language, `fallback` without one.
std::string nameOf(std::string_view key, int i, std::string_view fallback) {
    const std::vector<std::string> names = Split(Ln(key), ",");
    const auto at = static_cast<std::size_t>(i);
    return at < names.size() && !names[at].empty() ? Trim(names[at]) : std::string(fallback);
}

std::string dayName(const WallTime& t) {
    static constexpr std::array<const char*, 7> days{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    return nameOf("mDayNames", t.weekday, days[static_cast<std::size_t>(t.weekday % 7)]);
}

std::string monthName(const WallTime& t, bool shortName) {
    static constexpr std::array<const char*, 12> months{"January",   "February", "March",    "April",
                                                        "May",       "June",     "July",     "August",
                                                        "September", "October",  "November", "December"};
    const std::string full = months[static_cast<std::size_t>((t.month - 1) % 12)];
    return nameOf(shortName ? "mMonthNamesShort" : "mMonthNames", t.month - 1,
                  shortName ? full.substr(0, 3) : full);
}

std::string padded(int n, std::size_t digits) {
    std::string text = std::to_string(n);
    return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

std::string lowerAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return out;
}

/// Fills all digits but the first, the hundreds of minutes, and shows those of two figures in front.
void writeDigits(const std::array<std::string, 9>& texts) {
    frmMain().display.lblPosMinD.visible = true;
    frmMain().display.lblPosMin.visible = true;
    const auto digits = frmMain().display.digits();
    for (std::size_t i = 0; i < digits.size(); ++i) {
        digits[i]->caption = texts[i];
    }
}

/// The clock's sign ("j" the date, "t" the time) and the half of the day.
void showSigns(const char* sign, bool am, bool pm) {
    DisplayControls& d = frmMain().display;
    d.lblClock[0].visible = true;
    d.lblClock[0].caption = std::string(sign);
    d.lblClock[1].visible = am;
    d.lblClock[2].visible = pm;
}

/// Day, month and year in the order of the date format.
void showDate(const WallTime& t) {
    showSigns("j", false, false);
    const std::string day = padded(t.day, 2), month = padded(t.month, 2), year = padded(t.year % 100, 2);
    std::string first = day, second = month, third = year;
    if (clockSettings.DateFormat == "mmmm dd ddd yyyy") {
        first = month;
        second = day;
    } else if (clockSettings.DateFormat == "yyyy mmmm dd ddd") {
        first = year;
        third = day;
    }
    writeDigits({"", first.substr(0, 1), first.substr(1), ".", second.substr(0, 1), second.substr(1), ".",
                 third.substr(0, 1), third.substr(1)});
}

void showTime(const WallTime& t) {
    const bool halfDays = clockSettings.TimeFormat.find("AM") != std::string::npos;
    showSigns("t", halfDays && t.hour < 12, halfDays && t.hour >= 12);
    const int hour = halfDays ? (t.hour % 12 == 0 ? 12 : t.hour % 12) : t.hour;
    const std::string h = padded(hour, 2), m = padded(t.minute, 2), s = padded(t.second, 2);
    const std::string colon = timers().TimerReleaseSep.enabled() ? ":" : "";
    writeDigits({"", h.substr(0, 1), h.substr(1), colon, m.substr(0, 1), m.substr(1), colon, s.substr(0, 1),
                 s.substr(1)});
}

void showNextAnnouncement(const WallTime& now) {
    DisplayControls& d = frmMain().display;
    const std::string next = NextAnnouncement(now);  // "hh:mm:ss" and " AM" or " PM"
    SetDigitsColour(warningSettings.RemainColor);
    d.lblClock[1].visible = next.find("AM") != std::string::npos;
    d.lblClock[2].visible = next.find("PM") != std::string::npos;
    const std::string tens = next.substr(0, 1) == "0" ? std::string() : next.substr(0, 1);
    writeDigits({"", tens, next.substr(1, 1), ":", next.substr(3, 1), next.substr(4, 1), ":",
                 next.substr(6, 1), next.substr(7, 1)});
}

}  // namespace

std::string FormatTime(std::string_view format, const WallTime& t) {
    const std::string low = lowerAscii(format);
    const bool halfDays = low.find("am/pm") != std::string::npos;
    const int hour = halfDays ? (t.hour % 12 == 0 ? 12 : t.hour % 12) : t.hour;
    std::string out;
    for (std::size_t i = 0; i < format.size();) {
        if (low.compare(i, 5, "am/pm") == 0) {
            out += t.hour < 12 ? "AM" : "PM";
            i += 5;
            continue;
        }
        std::size_t run = 1;
        while (i + run < low.size() && low[i + run] == low[i]) {
            ++run;
        }
        switch (low[i]) {
            case 'h':
                out += padded(hour, run);
                break;
            case 'm':
            case 'n':
                out += padded(t.minute, run);
                break;
            case 's':
                out += padded(t.second, run);
                break;
            default:
                out += std::string(format.substr(i, run));
                break;
        }
        i += run;
    }
    return out;
}

std::string FormatDate(std::string_view format, const WallTime& t) {
    // What a language writes behind the name of a day and behind its number, apart by "|".
    const std::vector<std::string> marks = Split(Ln("mDateMarks"), "|");
    const std::string behindName = marks.size() > 1 ? marks[0] : "",
                      behindDay = marks.size() > 1 ? marks[1] : "";
    std::string out;
    for (const std::string& word : Split(format, " ")) {
        if (word.empty()) {
            continue;
        }
        out += out.empty() ? "" : " ";
        if (word == "ddd") {
            out += dayName(t) + behindName;
        } else if (word == "dd") {
            out += padded(t.day, 2) + behindDay;
        } else if (word == "mmmm") {
            out += monthName(t, false);
        } else if (word == "mmm") {
            out += monthName(t, true);
        } else if (word == "yyyy") {
            out += padded(t.year, 4);
        } else {
            out += word;
        }
    }
    return out.ends_with(',') ? out.substr(0, out.size() - 1) : out;
}

void DateTimeUpdate() {
    guarded("frmMain.DateTimeUpdate", [] {
        if (minimalSettings.MinimalView == 1 || DateTimeDemoOn) {
            return;
        }
        DisplayControls& d = frmMain().display;
        const WallTime now = wallTime();
        // What is wrong with the outputs stands in the place of the date.
        const std::string trouble = NoOutputDevice ? Ln("mNoOutDev") : OutputTrouble();
        d.lblDate.caption = trouble.empty() ? FormatDate(clockSettings.DateFormat, now) : trouble;
        d.lblDate.toolTip = trouble;
        d.lblTime.caption = " " + FormatTime(clockSettings.TimeFormat, now);
    });
}

void DateTimeDemo(bool on) {
    guarded("frmMain.DateTimeDemo", [&] {
        DateTimeDemoOn = on;
        if (!on) {
            DateTimeUpdate();
            return;
        }
        // The widest that both can become: Wednesday, September, two digits everywhere.
        constexpr WallTime sample{2026, 9, 23, 3, 22, 58, 48, 0};
        DisplayControls& d = frmMain().display;
        d.lblDate.caption = FormatDate(clockSettings.DateFormat, sample);
        d.lblTime.caption = " " + FormatTime(clockSettings.TimeFormat, sample);
    });
}

void ClockUpdate() {
    guarded("frmMain.ClockUpdate", [] {
        if (DispRemain > 0 || BlinkTestOn) {
            return;
        }
        const WallTime now = wallTime();
        if (clockSettings.DateEnabled == 1 && ClockShowDate && clockSettings.ClockEnabled == 1) {
            showDate(now);
        } else if (minimalSettings.MinimalView == 1 && TaHeld) {
            showNextAnnouncement(now);
        } else if (ClockShown) {
            SetDigitsColour(displaySettings.CountDownColor);
            const int tens = now.second / 10;
            const bool dateTurn = (tens == 1 || tens == 4) && now.second % 10 <= 3;
            if (clockSettings.DateEnabled == 1 && dateTurn) {
                showDate(now);
            } else {
                showTime(now);
            }
        }
    });
}

void HoldNextAnnouncement(bool held) {
    guarded("frmMain.lblTa_MouseDown", [&] {
        TaHeld = held && TmAnnOn;
        ClockUpdate();
        if (!TaHeld && !ClockShown && DispRemain <= 0) {
            // The counter takes its digits back with its next tick.
            DisplayControls& d = frmMain().display;
            d.lblClock[1].visible = false;
            d.lblClock[2].visible = false;
            SetDigitsColour(displaySettings.CountDownColor);
        }
    });
}

void StopClock() {
    UiTimers& t = timers();
    ClockShown = false;
    t.TimerReleaseSep.stop();
    t.TimerIdleClock.stop();
    t.TimerClock.stop();
    DisplayControls& d = frmMain().display;
    for (Control& mark : d.lblClock) {
        mark.visible = false;
    }
    d.sepsd.caption = ".";
}

void TimerClockTick() {
    guarded("frmMain.TimerClock_Timer", [] {
        timers().TimerReleaseSep.restart();
        ClockUpdate();
    });
}

void TimerIdleClockTick() {
    guarded("frmMain.TimerIdleClock_Timer", [] {
        timers().TimerIdleClock.stop();
        if (!ClockShown) {
            ClockShown = true;
            ClockUpdate();
            timers().TimerClock.start();
        }
    });
}

void TimerReleaseSepTick() {
    guarded("frmMain.TimerReleaseSep_Timer", [] {
        if (BlinkTestOn) {
            return;
        }
        timers().TimerReleaseSep.stop();
        DisplayControls& d = frmMain().display;
        for (Control* separator : {&d.sepms, &d.sepsd}) {
            if (separator->caption() == ":") {
                separator->caption = std::string();
            }
        }
    });
}

}  // namespace zv
