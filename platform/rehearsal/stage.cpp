#include "platform/rehearsal/stage.h"

#include <filesystem>
#include <system_error>

#include "platform/clock.h"
#include "platform/paths.h"

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

std::string whenText() {
    const std::int64_t start = Stage::instance().startMs;
    return start < 0 ? "start" : std::to_string(monotonicMs() - start);
}

std::string onOneLine(std::string_view text, std::string_view lineEnd) {
    std::string line;
    for (const char c : text) {
        if (c == '\n')
            line += lineEnd;
        else if (c != '\r')
            line += c;
    }
    return line;
}

void noteEvent(std::string_view kind, std::string_view text) {
    Stage& stage = Stage::instance();
    // Flush each line: after a crash the last one matters.
    stage.events << whenText() << '\t' << kind << '\t' << onOneLine(text, " / ") << std::endl;
}

}  // namespace zv
