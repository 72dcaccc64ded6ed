/// Values that several rooms share: what is selected, armed, held, unsaved. Each exists once, lives for the
/// whole run and is touched on the interface thread only. [control]
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zv {

// ---- the palette ----
extern bool PalToSave;  ///< the palette has unsaved changes
extern std::string
    SaveMode;  ///< "save", "rename" or empty: what the next CloseFile does with the old section

// ---- what the user acts on ----
extern std::string LastCtrl;               ///< control used last: "b_Jingle", "btSave", "lstpal", ...
extern int MenuJ;                          ///< jingle that the open menu, picker or editor works on
extern std::vector<int> SelJ;              ///< jingles that the next command works on
extern bool SelectorsOn;                   ///< an edit option is armed: colours of buttons are left alone
extern int LastPlayedJ;                    ///< jingle last started, -1 none
extern int MoveSrcJ;                       ///< jingle that was cut or copied, -1 none
extern int RenameJ;                        ///< jingle whose file is being renamed, -1 none
extern std::string ClipPath;               ///< file chosen for assignment
extern bool CtrlDown, ShiftDown, AltDown;  ///< modifier keys as last polled

// ---- modes ----
extern bool PlaylistsEnabled;  ///< never on: the playlists are dormant
extern bool FxOpen;            ///< the jingle editor is open: auto save waits
extern bool LoadingUI;         ///< the program starts or ends: no layout work
extern bool Unloading;
extern std::uint8_t ToggleAutoRep, ToggleTouch;  ///< global play modes; they exclude each other
extern bool MIDILearnActive;                     ///< presses assign controls instead of playing

// ---- what the display last worked out ----
extern double DispRemain;            ///< seconds left until the air falls silent, 0 nothing counts
extern double DuckRemain;            ///< the same over the jingles that take part in auto-duck
extern bool ClockShown;              ///< minimal view: the digits show the clock
extern int DispLoopIdx;              ///< record last walked by the display's tick
extern std::vector<int> SearchHits;  ///< buttons that blink after a search
bool IsSearchHit(int index);

// ---- colours of the theme (0xBBGGRR) ----
extern std::int32_t BtnFaceColor, BtnForeColor;
extern std::int32_t JingleForeColor;  ///< text of a jingle button without a colour of its own

// ---- sound files ----
inline constexpr std::array<std::string_view, 24> FileExtensions{
    "wma", "wav", "ogg", "mpa", "mp3", "mp2", "mp1",  "m4a", "flac", "aif*", "mod", "mo3",
    "s3m", "xm",  "it",  "mtm", "mp4", "mpg", "mpeg", "avi", "wmv",  "3gp",  "asf", "asx"};
/// Whether a file's extension (without its point, any case) is one of them; "aif*" stands for all that begin
/// so.
bool IsSoundExtension(std::string_view extension);
/// The list as the filter of a file dialog: "*.wma;*.wav;..."
std::string FileFilter();

inline constexpr int ClickFadeMs = 10;  ///< ms of the short fade against clicks

}  // namespace zv
