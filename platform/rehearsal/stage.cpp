#include "platform/rehearsal/stage.h"

#include <filesystem>
#include <system_error>

#include "platform/clock.h"
#include "platform/paths.h"
#include "platform/rehearsal/rehearsal.h"

namespace zv {

Stage& Stage::instance() {
    static Stage stage;
    return stage;
}

std::string Stage::file(const std::string& name) const {
    if (isAbsolutePath(name)) return name;
    std::error_code ignored;
    for (const std::string& folder : {programFolder(), scriptFolder}) {
        const std::filesystem::path path = nativePath(folder + "/" + name);
        if (std::filesystem::exists(path, ignored)) return path.string();
    }
    return nativePath(programFolder() + "/" + name).string();
}

void noteEvent(std::string_view kind, std::string_view text) {
    Stage& stage = Stage::instance();
    if (!stage.events.is_open()) return;
    if (stage.startMs < 0)
        stage.events << "start";
    else
        stage.events << monotonicMs() - stage.startMs;
    stage.events << '\t' << kind << '\t';
    for (const char c : text) {
        if (c == '\n')
            stage.events << " / ";
        else if (c != '\r')
            stage.events << c;
    }
    stage.events << std::endl;  // at once: the last line before a crash is the one that is wanted
}

}  // namespace zv
