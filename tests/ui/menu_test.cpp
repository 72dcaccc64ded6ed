// The context menu of a jingle button: which item is there, alive and ticked, by what is on the button.

#include "tests/ui/window_test.h"
#include "ui/edit/jingle_menu.h"
#include "ui/edit/jingle_menu_table.h"
#include "ui/edit/selection.h"
#include "ui/screen/button_faces.h"

namespace zv::test {

namespace {

const MenuEntry* find(const std::vector<MenuEntry>& menu, const std::string& name) {
    const auto at =
        std::find_if(menu.begin(), menu.end(), [&](const MenuEntry& e) { return e.name == name; });
    return at == menu.end() ? nullptr : &*at;
}

TEST(JingleMenu, EveryCellOfTheTable) {
    // Empty, lost, lost but there (unplayable), filled, playing: shown, hidden, shown while something is carried.
    const struct {
        const char* name;
        const char* cells;
    } rows[] = {
        {"mnuAss", "xxxx."},      {"mnuJPath", "..xxx"},  {"mnuReloc", ".x..."},   {"mnuCopy", "...x."},
        {"mnuCut", "...x."},      {"mnuRename", "...x."}, {"mnuPaste", "cccc."},   {"mnuLoop", "...x."},
        {"mnuSeq", "...x."},      {"mnuCol", "...x."},    {"mnuAutoRep", "...x."}, {"mnuTouch", "...x."},
        {"mnuPlayStop", "...x."}, {"mnuNoStop", "...x."}, {"mnuFX", "...xx"},      {"mnuTa", "...xx"},
        {"mnuClr", ".xxx."},      {"mnuspc2", "...x."},   {"mnuASDir", "xxxxx"},   {"mnuLockedBy", "....."},
        {"mnuPlaylist", "....."}, {"mnuMIDI", "....."}};
    for (int column = 0; column < 5; ++column) {
        for (const bool carrying : {false, true}) {
            MenuFacts facts{.carrying = carrying, .sampleFolder = true};
            facts.state = column == 0   ? ButtonState::empty
                          : column <= 2 ? ButtonState::missing
                          : column == 3 ? ButtonState::filled
                                        : ButtonState::playing;
            facts.unplayable = column == 2;
            const auto menu = JingleMenuEntries(facts);
            for (const auto& row : rows) {
                const char cell = row.cells[column];
                EXPECT_EQ(find(menu, row.name) != nullptr, cell == 'x' || (cell == 'c' && carrying))
                    << row.name << " in column " << column << " carrying " << carrying;
            }
        }
    }
}

TEST(JingleMenu, TheRulesBehindIt) {
    const MenuFacts base{
        .state = ButtonState::filled, .kind = SlotKind::stream, .carrying = true, .sampleFolder = true};
    // What changes against a filled button: "+" there, "-" gone, "!" there and dead, "*" ticked.
    const struct {
        const char* what;
        std::function<void(MenuFacts&)> set;
        std::vector<std::string> expected;
    } cases[] = {
        {"sequence",
         [](MenuFacts& f) { f.seq = true; },
         {"*mnuSeq", "!mnuAutoRep", "!mnuTouch", "!mnuPlayStop", "!mnuNoStop"}},
        {"loop", [](MenuFacts& f) { f.loop = true; }, {"*mnuLoop", "+mnuTouch"}},
        {"play mode", [](MenuFacts& f) { f.playMode = PlayMode::playStop; }, {"*mnuPlayStop", "+mnuTouch"}},
        {"effects", [](MenuFacts& f) { f.effects = true; }, {"*mnuFX"}},
        {"locked",
         [](MenuFacts& f) { f.locked = true; },
         {"+mnuLockedBy", "!mnuLoop", "!mnuSeq", "!mnuAss", "!mnuCut", "!mnuPaste", "!mnuClr", "+mnuCopy"}},
        {"locked while it plays",
         [](MenuFacts& f) { f.locked = true, f.state = ButtonState::playing; },
         {"+mnuCol", "+mnuLockedBy"}},
        {"playlist",
         [](MenuFacts& f) { f.kind = SlotKind::playlist; },
         {"-mnuLockedBy", "!mnuLoop", "!mnuSeq", "!mnuAss", "!mnuCut", "!mnuPaste", "+mnuClr",
          "-mnuPlaylist"}},
        {"playlist, whose button holds no file",
         [](MenuFacts& f) {
             f.kind = SlotKind::playlist, f.state = ButtonState::empty, f.playlistsEnabled = true;
         },
         {"+mnuCol", "+mnuspc2", "!mnuAss", "!mnuPaste", "+mnuClr", "+mnuPlaylist", "-mnuLockedBy", "-mnuFX",
          "-mnuTa", "-mnuTouch", "-mnuJPath"}},
        {"playlists on", [](MenuFacts& f) { f.playlistsEnabled = true; }, {"+mnuPlaylist"}},
        {"playlists on, sequence", [](MenuFacts& f) { f.playlistsEnabled = f.seq = true; }, {"-mnuPlaylist"}},
        {"playlists on, loop", [](MenuFacts& f) { f.playlistsEnabled = f.loop = true; }, {"-mnuPlaylist"}},
        {"playlists on, lost",
         [](MenuFacts& f) { f.playlistsEnabled = true, f.state = ButtonState::missing; },
         {"-mnuPlaylist"}},
        {"no sample folder", [](MenuFacts& f) { f.sampleFolder = false; }, {"-mnuASDir"}},
        {"surface", [](MenuFacts& f) { f.midiOffered = f.midiAssigned = true; }, {"*mnuMIDI"}},
        {"boxes",
         [](MenuFacts& f) { f.boxes = f.midiOffered = f.playlistsEnabled = f.locked = true; },
         {"-mnuMIDI", "-mnuPlaylist", "-mnuLockedBy", "+mnuCol"}},
        {"boxes, a playlist ticked",
         [](MenuFacts& f) { f.boxes = f.playlistTicked = true; },
         {"-mnuLoop", "-mnuSeq", "-mnuCol", "-mnuAutoRep", "-mnuTouch", "-mnuPlayStop", "-mnuNoStop",
          "-mnuAss", "-mnuCopy", "-mnuCut", "-mnuPaste", "-mnuRename", "-mnuReloc", "-mnuspc2", "+mnuClr",
          "+mnuFX", "+mnuJPath"}},
    };
    for (const auto& c : cases) {
        MenuFacts facts = base;
        c.set(facts);
        const auto menu = JingleMenuEntries(facts);
        for (const std::string& expected : c.expected) {
            const MenuEntry* item = find(menu, expected.substr(1));
            const std::string told = item == nullptr ? "-" : !item->enabled ? "!" : item->ticked ? "*" : "+";
            EXPECT_EQ(told, expected.substr(0, 1)) << c.what << ": " << expected.substr(1);
        }
    }
    for (const auto& [kind, key] : {std::pair{SlotKind::nothing, "mmnuPlaylistNew"},
                                    {SlotKind::stream, "mmnuPlaylistAdd"},
                                    {SlotKind::playlist, "mmnuPlaylistEdit"}}) {
        MenuFacts facts = base;
        facts.kind = kind;
        facts.playlistsEnabled = true;
        EXPECT_EQ(find(JingleMenuEntries(facts), "mnuPlaylist")->key, key);
    }
}

class JingleMenuTest : public WindowTest {
  protected:
    static bool offers(const char* name) {
        const auto& menu = desktop().menu;
        return std::any_of(menu.begin(), menu.end(), [&](const MenuItem& item) { return item.name == name; });
    }
};

}  // namespace

}  // namespace zv::test
