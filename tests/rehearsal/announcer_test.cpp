// A day of the time announcer; what it does of itself: tests/rehearsal/shows/announcer.txt.

#include "show.h"

namespace zv::test {
namespace {

TEST(Announcer, SlowOncePerHourOfADay) {
    Show show;
    show.tone("news.wav", 3);
    show.set("TimeAnnouncer=Audio_Sample\\news.wav\r\nActiveTab=1\r\n");
    std::string script = "at 0 time 2026-02-28 22:59:00\nat 500 click ckTmAnn\n";
    for (int hour = 0; hour < 24; ++hour)
        for (const auto& [ms, compare] : {std::pair(-100, "!="), {200, "="}, {2900, "="}, {3200, "!="}})
            script += "at " + std::to_string((hour * 3600 + 55) * 1000 + ms) + " expect ckTmAnn.backColor " +
                      compare + " 12648384\n";
    show.passes(script + "at 86400000 end\n", "--no-sound");
}

}  // namespace
}  // namespace zv::test
