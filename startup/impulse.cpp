#include "startup/impulse.h"

#include "platform/paths.h"
#include "startup/helpers.h"
#include "startup/ini_file.h"

namespace zv {
namespace {

constexpr std::string_view kMissing = "EntryNotFoundFlag";  // a key that holds this text counts as missing
constexpr int kMustBeNumber = 5;
constexpr std::size_t kNamesBuffer = 32767;  // characters, each name with the zero that ends it

std::optional<std::string> present(std::optional<std::string> value) {
    return value == kMissing ? std::nullopt : std::move(value);
}

/// A store without a file takes nothing.
template <class Change>
bool update(StoredIni& file, const std::string& path, Change change) {
    return !path.empty() && file.update(change);
}

}  // namespace

cImpulse::cImpulse() = default;
cImpulse::~cImpulse() = default;

void cImpulse::SetIniPath(std::string path) {
    if (file_ && path == IniPath_ && isAbsolutePath(path)) return;
    IniPath_ = std::move(path);
    file_.reset();
}

const std::string& cImpulse::GetIniPath() const { return IniPath_; }
void cImpulse::SetSection(std::string name) { Section_ = std::move(name); }
const std::string& cImpulse::GetSection() const { return Section_; }
bool cImpulse::Failed() const { return Failed_; }
int cImpulse::SectionCount() const { return static_cast<int>(SectionNames_.size()); }

StoredIni& cImpulse::file() {
    if (!file_) {
        file_ = StoredIni::at(IniPath_);
        if (keepWhenAway_) file_->keepWhenAway();
    }
    return *file_;
}

const std::string& cImpulse::SectionName(int i) const {
    static const std::string none;
    return i >= 0 && i < SectionCount() ? SectionNames_[static_cast<std::size_t>(i)] : none;
}

std::string_view cImpulse::sectionOr(std::string_view section) const {
    return section.empty() ? std::string_view(Section_) : section;
}

std::string cImpulse::GetValue(std::string_view key, int valueType, std::string_view section,
                               std::string_view def) {
    std::optional<std::string> found = present(file().text().value(sectionOr(section), key));
    Failed_ = !found;
    if (Failed_) return std::string(def);
    if (valueType == kMustBeNumber && !ToNumber(*found)) {
        Failed_ = true;
        return "0";
    }
    return std::move(*found);
}

std::function<std::string(const std::string& key)> cImpulse::Values(std::string section) {
    return [&text = file().text(), of = file_, section = std::move(section)](const std::string& key) {
        return present(text.value(section, key)).value_or("");
    };
}

void cImpulse::PutValue(std::string_view key, int, std::string_view section, int, std::string_view value) {
    update(file(), IniPath_, [&](IniText& text) { return text.put(sectionOr(section), key, value); });
}

void cImpulse::DeleteSection(std::string_view name) {
    update(file(), IniPath_, [&](IniText& text) { return text.eraseSection(name); });
}

void cImpulse::ListSections() {
    SectionNames_.clear();
    HiddenSections_ = 0;
    std::vector<std::string> names = file().text().sectionNames();
    std::size_t total = 0;
    for (const std::string& name : names) total += characterCount(name) + 1;
    if (total + 1 > kNamesBuffer) {
        // A full buffer has lost its two last zeros; a name that is not whole is dropped with them.
        std::size_t used = 0;
        std::size_t whole = 0;
        while (whole < names.size() && used + characterCount(names[whole]) + 1 <= kNamesBuffer - 2) {
            used += characterCount(names[whole++]) + 1;
        }
        HiddenSections_ = static_cast<int>(names.size() - whole);
        names.resize(whole);
    }
    SectionNames_ = std::move(names);
}

bool cImpulse::PutSection(std::string_view section, const std::vector<Line>& lines, bool replace) {
    return update(file(), IniPath_, [&](IniText& text) {
        const std::string_view name = sectionOr(section);
        return replace ? text.replaceSection(name, lines) : text.mergeSection(name, lines);
    });
}

bool cImpulse::MoveSection(std::string_view from, std::string_view to, const std::vector<Line>& lines,
                           bool replace) {
    return update(file(), IniPath_, [&](IniText& text) {
        // A name that differs in case only is the same section to the store.
        const bool erased = SameText(from, to) && text.eraseSection(from);
        const bool put = replace ? text.replaceSection(to, lines) : text.mergeSection(to, lines);
        return (!SameText(from, to) && text.eraseSection(from)) || put || erased;
    });
}

bool cImpulse::ReplaceValues(std::string_view stem, const std::function<bool(const std::string&)>& meant,
                             std::string_view to) {
    return RewriteValues(stem, [&](const std::string&, const Line& line) {
        return meant(line.second) ? std::optional<std::string>(to) : std::nullopt;
    });
}

bool cImpulse::RewriteValues(std::string_view stem, const Become& become) {
    return update(file(), IniPath_, [&](IniText& text) { return text.rewriteValues(stem, become); });
}

std::string_view cImpulse::Bytes() { return file().text().bytes(); }

void cImpulse::KeepWhenAway() {
    keepWhenAway_ = true;
    if (file_) file_->keepWhenAway();
}

bool cImpulse::Away() const { return file_ && file_->away(); }

std::vector<cImpulse::Line> cImpulse::GetSectionLines(std::string_view section) {
    return file().text().lines(sectionOr(section));
}

void CopySection(std::string_view fromSection, std::string_view toSection, const std::string& file) {
    cImpulse store;
    store.SetIniPath(file);
    store.PutSection(toSection, store.GetSectionLines(fromSection), false);
}

}  // namespace zv
