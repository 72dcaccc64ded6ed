// Edits by chance and as many undos: files and records are as they were, to the byte.

#include <array>

#include "startup/language.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/palette_settings.h"
#include "tests/ui/keeping_fixture.h"
#include "ui/edit/assign.h"
#include "ui/edit/colour_picker.h"
#include "ui/edit/fill.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/level_many.h"
#include "ui/edit/undo.h"
#include "ui/windows/jingle_window.h"

namespace zv::test {

namespace {

constexpr int kEdits = 30;

class UndoTest : public KeepingTest {
  protected:
    UndoTest() {
        ForgetUndo();
        folderSettings.ImportFiles = 0;
        for (const std::string name : {"A0", "A1", "B2"})  // long enough to have a loudness
            writeWav(path("Audio_Sample/" + name + ".wav"), sine(22'050, 440, 0.1));
        for (const std::string name : {"one", "two", "three"})
            writeWav(path("more/" + name + ".wav"), sine(2000, 440));
        pick("A");
    }

    int any(int most) { return std::uniform_int_distribution<int>(0, most)(chance); }
    int slot() {
        constexpr std::array<int, 7> slots{0, 1, 2, 3, 96, 97, 98};
        return slots[static_cast<std::size_t>(any(6))];
    }
    std::string file() {
        std::vector<std::string> files;
        for (const auto& one : std::filesystem::directory_iterator(path("Audio_Sample")))
            files.push_back(one.path().filename().string());
        std::sort(files.begin(), files.end());
        return files[static_cast<std::size_t>(any(static_cast<int>(files.size()) - 1))];
    }
    void rename(int index, const std::string& name) {
        clRename(index);
        if (RenameJ < 0) return;
        frmRenameFile().txtFilename.caption = name;
        frmRenameFile().onAccepted();
        if (RenameJ >= 0) frmRenameFile().onCancelled();
    }
    void edit() {
        const int index = slot();
        SelJ = {index};
        const std::vector<std::pair<const char*, std::function<void()>>> edits{
            {"assign", [&] { ClipPath = "Audio_Sample\\" + file(), clAssign(index); }},
            {"drop", [&] { b_Jingle_OLEDragDrop(index, path("Audio_Sample/" + file()).string()); }},
            {"move", [&] { clMove(index, "cut"), clMove(slot(), "paste"); }},
            {"copy", [&] { clMove(index, "copy"), clMove(slot(), "paste"), clMove(slot(), "paste"); }},
            {"clear", [&] { desktop().answers = {BoxAnswer::yes}, DelJing(index, false); }},
            {"clear several",
             [&] {
                 SelJ = {0, 2, 97}, desktop().answers = {BoxAnswer::yes}, ClearSelection();
             }},
            {"delete", [&] { desktop().answers = {BoxAnswer::yes}, DelJing(index, true); }},
            {"touch",
             [&] {
                 SelJ = {index, 1}, clTouchSet(index);
             }},
            {"loop",
             [&] {
                 if (rec(index).hPlay != 0) clLoopSet(index);
             }},
            {"sequence",
             [&] {
                 if (rec(index).hPlay != 0) clSeqSet(index);
             }},
            {"loudness",
             [&] {
                 BringToLoudness({0, 1, 2, 3, 96});
                 pass(1500);
             }},
            {"fill",
             [&] {
                 if (rec(20).Path.empty()) {
                     desktop().answers = {BoxAnswer::yes}, FillPalette({path("more").string()});
                     pass(300);
                 }
             }},
            {"colour",
             [&] {
                 CtrlDown = false;
                 clColorSet(index);
                 if (ColorPickerOpen) PickColour(any(24));
             }},
            {"rename", [&] { rename(index, "Name " + std::to_string(any(5)) + " \"of\" [it]"); }},
            {"editor",
             [&] {
                 clFXSet(index);
                 if (!FxOpen) return;
                 frmFX().SlideVolCh.value = any(100);
                 frmFX().SlideVolCh.onChange();
                 if (any(1) == 1) clLoopSet(index);
                 if (any(1) == 1) frmFX().ckNoAutomix.value = 1, frmFX().ckNoAutomix.onChange();
                 OKfx();
             }},
            {"save", [&] { save(); }},
            {"play", [&] { clPlay(index, -1), pass(30); }},
        };
        const auto& [what, act] = edits[static_cast<std::size_t>(any(static_cast<int>(edits.size()) - 1))];
        trace += std::string(what) + " " + std::to_string(index) + "; ";
        act();
        pass(60);
    }
    /// What edits change: sound files and records.
    std::string edited() {
        std::map<std::string, std::string> files;
        for (const auto& one : std::filesystem::directory_iterator(path("Audio_Sample")))
            files[one.path().filename().string()] = std::to_string(std::filesystem::file_size(one));
        std::string text;
        for (const auto& [name, size] : files) text += name + " " + size + "\n";
        for (int i = 0; i < kJingles; ++i) {
            const JingleRecord& j = rec(i);
            if (j.Path.empty() && j.persisted() == PersistedJingle()) continue;
            text += std::to_string(i) + " " + GetRelPath(j.Path) + " " + std::to_string(j.Volm) + " " +
                    j.BTNCol + " " + std::to_string(static_cast<int>(j.PlayMod)) + std::to_string(j.Loop) +
                    std::to_string(j.Seq) + std::to_string(j.NoAutomix) + "\n";
        }
        return text;
    }
    /// All that must come back: also the two files to the byte, and what is open.
    std::string all() {
        std::string text = read("palette.ini") + read("HotJingles.ini") + edited();
        for (const int i : LiveJingles())
            text += std::to_string(rec(i).LoopOut) + rec(i).FXV + button(i).caption() +
                    (rec(i).hPlay != 0 ? "open" : "") +
                    (rec(i).MissingFile || rec(i).PlayingOtherPal ? "!" : "") + "\n";
        return text;
    }
    void silence() {
        evStop();
        pass(300);
    }

    std::mt19937 chance;
    std::string trace;
};

TEST_F(UndoTest, thirtyEditsAndAsManyUndosLeaveNoTrace) {
    std::string undone;
    for (unsigned sequence = 0; sequence < 6; ++sequence) {
        chance.seed(sequence);
        trace = "sequence " + std::to_string(sequence) + ": ";
        paletteSettings.AutoSave = sequence % 2;
        pick("B");
        clMove(static_cast<int>(sequence) % 3, "cut");
        pick("A");
        save();
        const std::string before = all();
        const auto saved = std::array{rec(0).persisted(), rec(1).persisted(), rec(2).persisted()};
        if (sequence % 3 != 2) clMove(3, "paste");
        for (int i = 1; i < kEdits; ++i) edit();
        silence();
        const std::string behind = edited();
        std::string said;
        for (const bool again : {false, true}) {
            int steps = 0;
            while (!UndoText().empty()) {
                ++steps;
                said += UndoText() + "; ", Undo();
                if (any(3) == 0) clPlay(slot(), -1), pass(any(20));
                if (any(9) == 0) save();
            }
            EXPECT_LE(steps, kEdits + 10);
            silence();
            save();
            ASSERT_EQ(all(), before) << trace << again << said;
            for (int i = 0; i < 3; ++i)
                ASSERT_EQ(rec(i).persisted(), saved[static_cast<std::size_t>(i)]) << i;
            if (again) break;
            while (!RedoText().empty()) Redo();
            silence();
            ASSERT_EQ(edited(), behind) << trace;
        }
        MoveSrcJ = -1;
        undone += said;
    }
    for (const char* kind : {"unAssign", "unMove", "unCopy", "unClear", "unDelete", "unPlayMode", "unLoop",
                             "unSeq", "unColour", "unRename", "unEditor", "unLoudness", "unFill"}) {
        const std::string text = Ln(kind);
        EXPECT_NE(undone.find(text.substr(0, text.find("%1"))), std::string::npos)
            << kind << " was not among them";
    }
}

}  // namespace

}  // namespace zv::test
