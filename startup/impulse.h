/// The INI file store: one object a file, reading and writing straight through to the file at every call. The
/// results are those of the profile services that such files come from: names without regard to case, order
/// and comments kept, blanks around values and matching quotes dropped on reading, a value cut to 1023
/// characters, the list of sections cut to 32,767 characters.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zv {

class StoredIni;

class cImpulse {
  public:
    cImpulse();
    ~cImpulse();
    cImpulse(const cImpulse&) = delete;
    cImpulse& operator=(const cImpulse&) = delete;

    void SetIniPath(std::string path);
    const std::string& GetIniPath() const;
    void SetSection(std::string name);
    const std::string& GetSection() const;

    /// The value of `key`, `def` when it is missing. `valueType` 5: a value that is no number gives "0" and
    /// sets Failed. An empty `section` means the object's own. Never fails otherwise. [control]
    std::string GetValue(std::string_view key, int valueType = 0, std::string_view section = {},
                         std::string_view def = {});
    /// The values of a section's keys, "" for what is missing, after one look at the file where GetValue looks each
    /// time whether another program changed it. To be asked at once, not kept. [control]
    std::function<std::string(const std::string& key)> Values(std::string section);
    /// Writes `value`; an empty one deletes the key. A write that fails leaves the file as it was. [control]
    void PutValue(std::string_view key, int valueType, std::string_view section, int spare,
                  std::string_view value);
    void PutValue(std::string_view key, std::string_view value, std::string_view section = {}) {
        PutValue(key, 0, section, 0, value);
    }
    /// The section with all its lines goes.
    void DeleteSection(std::string_view name);
    /// Reads the names of all sections in file order; two sections of one name are one.
    void ListSections();
    int SectionCount() const;
    /// Names that ListSections left out because the list is limited to 32,767 characters.
    int HiddenSections() const { return HiddenSections_; }
    const std::string& SectionName(int i) const;
    bool Failed() const;

    using Line = std::pair<std::string, std::string>;  ///< key, value
    /// Writes a whole section in one atomic rewrite. `replace`: the section holds exactly `lines` afterwards
    /// (its comments go with it, lines with an empty value are left out), and goes when none is left.
    /// Otherwise they are written over what is there, each as PutValue does it. False when the file could not
    /// be written; it is then as it was. [control]
    bool PutSection(std::string_view section, const std::vector<Line>& lines, bool replace = true);
    /// PutSection under the name `to`, while the section `from` goes, in the same rewrite. [control]
    bool MoveSection(std::string_view from, std::string_view to, const std::vector<Line>& lines,
                     bool replace);
    /// All key=value lines of a section in file order, values as GetValue gives them. [control]
    std::vector<Line> GetSectionLines(std::string_view section);
    /// In all sections: each value of a key that begins with `stem`, and for which `meant` says so, becomes `to`;
    /// one rewrite. False when the file could not be written. [control]
    bool ReplaceValues(std::string_view stem, const std::function<bool(const std::string&)>& meant,
                       std::string_view to);
    /// The same where each value becomes what `become` says; nothing leaves it as it is. [control]
    using Become = std::function<std::optional<std::string>(const std::string& section, const Line& line)>;
    bool RewriteValues(std::string_view stem, const Become& become);
    /// The whole file as it is in memory; good until the next call. [control]
    std::string_view Bytes();

    /// From now on a file that was read in this run and is gone, empty or unreadable later counts as away: it
    /// reads as it was last, and a write brings all of it back where it is not there.
    void KeepWhenAway();
    /// The file was away at the last call.
    bool Away() const;

  private:
    StoredIni& file();
    std::string_view sectionOr(std::string_view section) const;

    std::string IniPath_;
    std::string Section_;
    bool Failed_ = false;
    bool keepWhenAway_ = false;
    int HiddenSections_ = 0;
    std::shared_ptr<StoredIni> file_;
    std::vector<std::string> SectionNames_;
};

/// Copies every key of one section into another, adding to it. [control]
void CopySection(std::string_view fromSection, std::string_view toSection, const std::string& file);

}  // namespace zv
