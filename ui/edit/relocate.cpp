#include "ui/edit/relocate.h"

#include <string>
#include <vector>

#include "audio/streams.h"
#include "model/jingle.h"
#include "platform/desktop.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "ui/edit/undo.h"
#include "ui/edit/unsaved.h"
#include "ui/screen/error_mark.h"

namespace zv {

void clReloc(int index) {
    guarded("modClick.clReloc", [&] {
        JingleRecord& j = Jingle(index);
        if (j.Unplayable || j.Path.empty()) {
            return;
        }
        const std::string name = GetFileName(j.Path);
        const std::string folder =
            folderDialog(Ln("mSrchTitle") + " - " + Ln("mSrchStr") + " " + name, settings.LastcmDlgDir);
        if (folder.empty()) {
            return;
        }
        settings.LastcmDlgDir = folder;
        ErrDisp("wait", 0, Ln("errSearchFile") + " \"" + name + "\" ...");
        processEvents();
        FolderList list;
        ListFolder(folder, true, list);
        HideErrMark();
        std::vector<std::string> hits;
        for (const std::string& path : Split(list.text, "\r\n")) {
            if (!path.empty() && SameText(GetFileName(path), name)) {
                hits.push_back(path);
            }
        }
        if (hits.empty()) {
            messageBox(LnBox("sfFileNotFound") + "\r\n" + name, Ln("mSrchTitle"), BoxKind::information,
                       BoxButtons::ok);
            return;
        }
        std::string chosen = hits.front();
        if (hits.size() > 1) {
            // Several files of that name: the presenter points at the right one.
            chosen = openFileDialog(Ln("sffrmSelFile"), GetPath(hits.front()), name);
        }
        if (chosen.empty()) {
            return;
        }
        const UndoStep step("unReloc");
        FreeJingle(index);
        j.Kind = SlotKind::nothing;
        j.Path = chosen;
        openStreams(index);
        MarkPalToSave();
    });
}

}  // namespace zv
