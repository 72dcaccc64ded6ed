#include "ui/edit/search.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "audio/open_palette.h"
#include "audio/sounding.h"
#include "model/jingle.h"
#include "model/pending_removals.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/search_settings.h"
#include "startup/text_codec.h"
#include "ui/edit/palette_list.h"
#include "ui/edit/save_dialogue.h"
#include "ui/edit/search_index.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/button_faces.h"
#include "ui/windows/search_window.h"

namespace zv {

bool SearchOpen = false, ForPlaylist = false;

namespace {

constexpr int kPauseTicks = 10;      // of TimerSearch, until typing counts as paused
constexpr int kTicksPerSecond = 50;  // of TimerAutoClJSearch

int pauseTicks = 0;
int countDown = 0;  // ticks of TimerAutoClJSearch left
int blinksLeft = 0;
bool blinkOn = false;
std::vector<SearchHit> hits;  // of the palette that lstJingRes lists

std::function<void(int, const std::string&)> chosenForPlaylist;

SearchWindow& search() { return frmSearchJing(); }

/// The hits of a palette are listed before one is chosen.
bool listsHits() { return ForPlaylist || searchSettings.ResultsInSearch == 1; }

void resetCountDown() {
    countDown = searchSettings.AutoClJSearchSec * kTicksPerSecond;
    search().VUSearchDelay.value = countDown;
}

void startClosing() {
    resetCountDown();
    if (searchSettings.AutoClJSearchSec > 0) timers().TimerAutoClJSearch.restart();
}

/// The text as it is typed; nothing is looked for until the typing pauses.
void typed() {
    SearchWindow& s = search();
    timers().TimerAutoClJSearch.stop();
    resetCountDown();
    if (std::string plain = PlainLetters(s.txtJSearch.caption()); plain != s.txtJSearch.caption()) {
        s.txtJSearch.caption = plain;
    }
    pauseTicks = 0;
    timers().TimerSearch.restart();
}

void type(const std::string& letter) {
    search().txtJSearch.caption = search().txtJSearch.caption() + letter;
    typed();
}

void deleteLast() {
    std::string text = search().txtJSearch.caption();
    if (text.empty()) return;
    text.resize(firstCharacters(text, characterCount(text) - 1).size());
    search().txtJSearch.caption = text;
    typed();
}

/// What stands in the results of the chosen palette, each caption once.
void listHits() {
    SearchWindow& s = search();
    hits = HitsIn(s.lstPalRes.text(), s.txtJSearch.caption());
    std::vector<std::string> captions;
    for (const SearchHit& hit : hits) {
        // A playlist is told of each button; for the grid a caption stands for all buttons that bear it.
        if (ForPlaylist) {
            captions.push_back(hit.caption + " (" + std::to_string(hit.slot) + ")");
        } else if (std::find(captions.begin(), captions.end(), hit.caption) == captions.end()) {
            captions.push_back(hit.caption);
        }
    }
    s.lstJingRes.items = captions;
    s.lstJingRes.listIndex = -1;
}

void emptyHits() {
    hits.clear();
    search().lstJingRes.items = {};
    search().lstJingRes.listIndex = -1;
}

/// What both stages of choosing do first.
void leaveEdits() {
    resetCountDown();
    if (!CtrlDown && !ShiftDown && !AltDown) ForgetRemovals();
    NotSavePal();
}

void openPalette(const std::string& name, std::vector<int> found) {
    StopSearchBlinking();
    SelectPalette(name);
    paletteSettings.PaletteIndex = name;
    OpenFile(name);
    SearchHits = std::move(found);
    blinksLeft = searchSettings.BlinksJSearch;
    blinkOn = false;
    CloseSearchBox();
    if (SearchHits.empty()) return;
    // Enter plays what was found.
    if (JingleButton* b = Button(SearchHits.front()); b != nullptr && b->b_Jingle.visible)
        setFocus(b->b_Jingle);
    timers().TimerFindJingles.restart();
}

std::vector<int> slotsOf(const std::string& caption) {
    std::vector<int> slots;
    for (const SearchHit& hit : hits) {
        if (caption.empty() || hit.caption == caption) slots.push_back(hit.slot);
    }
    return slots;
}

void restColours(int index) {
    const auto [back, fore] = RestColours(index);
    if (!Sounds(index)) PaintButton(index, back, fore);
}

void step(Control& list, int by) {
    const int rows = static_cast<int>(list.items().size());
    if (rows == 0) return;
    list.listIndex = std::clamp(list.listIndex() + by, 0, rows - 1);
    centreListRow(list, list.listIndex());
    resetCountDown();
    if (&list == &search().lstPalRes && listsHits()) listHits();
}

/// The list that a press on the arrows and the page keys move in.
Control& hitList() {
    SearchWindow& s = search();
    return listsHits() ? s.lstJingRes : s.lstPalRes;
}

void go() {
    if (timers().TimerSearch.enabled()) {  // Enter does not wait for the pause
        timers().TimerSearch.stop();
        SearchJing();
    }
    if (listsHits() && !hits.empty()) {
        SelectJing();
    } else {
        SelectPal();
    }
}

void keyDown(KeyEvent& event) {
    switch (event.key) {
        case Key::f3:
            CloseSearchBox();
            break;
        case Key::pageUp:
            step(hitList(), -1);
            break;
        case Key::pageDown:
            step(hitList(), 1);
            break;
        default:
            return;
    }
    event.consumed = true;
}

}  // namespace

void JingSearch() {
    guarded("frmMain.JingSearch", [] {
        if (SearchOpen) {
            CloseSearchBox();
            return;
        }
        SearchWindow& s = search();
        ListAllJing();
        s.txtJSearch.caption = std::string();
        s.lstPalRes.items = {};
        s.lstPalRes.listIndex = -1;
        emptyHits();
        s.fillKeys();
        s.VUSearchDelay.visible = searchSettings.AutoClJSearchSec > 0;
        s.VUSearchDelay.maximum = searchSettings.AutoClJSearchSec * kTicksPerSecond;
        SearchOpen = true;
        s.form.open(&s.txtJSearch);
        startClosing();
    });
}

void SearchForPlaylist(std::function<void(int, const std::string&)> chosen) {
    CloseSearchBox();
    ForPlaylist = true;
    chosenForPlaylist = std::move(chosen);
    JingSearch();
}

void CloseSearchBox() {
    for (Timer* timer :
         {static_cast<Timer*>(&timers().TimerSearch), static_cast<Timer*>(&timers().TimerAutoClJSearch),
          static_cast<Timer*>(&timers().TimerClear)}) {
        timer->stop();
    }
    if (!SearchOpen) return;
    SearchOpen = ForPlaylist = false;
    chosenForPlaylist = nullptr;
    search().form.close();
}

void SearchJing() {
    guarded("frmSearchJing.SearchJing", [] {
        SearchWindow& s = search();
        emptyHits();
        ListAllJing();  // another program may have written the file meanwhile
        s.lstPalRes.items = PalettesWith(s.txtJSearch.caption());
        s.lstPalRes.listIndex = s.lstPalRes.items().empty() ? -1 : 0;
        if (s.txtJSearch.caption().empty()) return;
        if (listsHits() && s.lstPalRes.listIndex >= 0) listHits();
        startClosing();
    });
}

void SelectPal() {
    guarded("frmSearchJing.SelectPal", [] {
        leaveEdits();
        const std::string palette = search().lstPalRes.text();
        if (palette.empty()) return;
        listHits();
        if (!listsHits()) openPalette(palette, slotsOf(""));
    });
}

void SelectJing() {
    guarded("frmSearchJing.SelectJing", [] {
        leaveEdits();
        const std::string palette = search().lstPalRes.text();
        if (palette.empty()) return;
        if (ForPlaylist) {
            const auto row = static_cast<std::size_t>(search().lstJingRes.listIndex());
            if (search().lstJingRes.listIndex < 0 || row >= hits.size()) return;
            const int slot = hits[row].slot;
            const auto chosen = chosenForPlaylist;
            CloseSearchBox();
            if (chosen) chosen(slot, palette);
            return;
        }
        openPalette(palette, slotsOf(search().lstJingRes.text()));
    });
}

void StopSearchBlinking() {
    timers().TimerFindJingles.stop();
    const std::vector<int> ended = std::move(SearchHits);
    SearchHits.clear();
    blinksLeft = 0;
    for (const int index : ended) restColours(index);
}

void TimerFindJinglesTick() {
    guarded("frmMain.TimerFindJingles_Timer", [] {
        if (blinksLeft <= 0) {
            StopSearchBlinking();
            return;
        }
        blinkOn = !blinkOn;
        for (const int index : SearchHits) {
            if (Sounds(index)) continue;  // what sounds keeps its face
            if (blinkOn) {
                PaintButton(index, markSettings.arColor, 0);
            } else {
                restColours(index);
            }
        }
        if (!blinkOn) --blinksLeft;
    });
}

void TimerSearchTick() {
    guarded("frmSearchJing.TimerSearch_Timer", [] {
        if (++pauseTicks < kPauseTicks) return;
        timers().TimerSearch.stop();
        SearchJing();
    });
}

void TimerAutoClJSearchTick() {
    guarded("frmSearchJing.TimerAutoClJSearch_Timer", [] {
        search().VUSearchDelay.value = --countDown;
        if (countDown <= 0) CloseSearchBox();
    });
}

void TimerClearTick() { guarded("frmSearchJing.TimerClear_Timer", deleteLast); }

void WireSearch() {
    SearchWindow& s = search();
    s.txtJSearch.onChange = [] { guarded("frmSearchJing.txtJSearch_Change", typed); };
    s.lstPalRes.onChange = [] { guarded("frmSearchJing.lstPalRes_Click", SelectPal); };
    s.lstJingRes.onChange = [] { guarded("frmSearchJing.lstJingRes_Click", resetCountDown); };
    s.lstJingRes.onDoubleClick = [](const MouseEvent&) { SelectJing(); };
    s.lstPalRes.onDoubleClick = [](const MouseEvent&) { go(); };
    s.btKbUp.onClick = [] { step(hitList(), -1); };
    s.btKbDn.onClick = [] { step(hitList(), 1); };
    s.btKbUpPal.onClick = [] { step(search().lstPalRes, -1); };
    s.btKbDnPal.onClick = [] { step(search().lstPalRes, 1); };
    s.btKbGo.onClick = [] { guarded("frmSearchJing.btKbGo_Click", go); };
    s.btKbEsc.onClick = [] { CloseSearchBox(); };
    s.btKbSp.onClick = [] { type(" "); };
    s.btKbBack.onMouseDown = [](const MouseEvent&) {
        guarded("frmSearchJing.btKbBack_MouseDown", deleteLast);
        timers().TimerClear.restart();
    };
    s.btKbBack.onMouseUp = [](const MouseEvent&) { timers().TimerClear.stop(); };
    for (Control* key : s.btKb) {
        key->onClick = [key] {
            guarded("frmSearchJing.btKb_Click", [&] { type(LowerCase(key->caption())); });
        };
    }
    s.ShowHideKb.onClick = [] {
        search().showKeys(!search().keysShown());
        setFocus(search().txtJSearch);  // Enter goes on choosing
    };
    s.form.onKey = [](KeyEvent& event) { guarded("frmSearchJing.Form_KeyDown", [&] { keyDown(event); }); };
    s.form.onClosed = [] { CloseSearchBox(); };
}

}  // namespace zv
