#include "model/playlists.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <random>
#include <string_view>

#include "model/jingle.h"
#include "startup/helpers.h"
#include "startup/stores.h"

namespace zv {

std::vector<std::string> LockedFiles;

namespace {

constexpr std::size_t kIdCharacters = 6;
constexpr std::size_t kLongestValue = 1023;  // characters that a value is read with
constexpr std::string_view kIdLetters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";

std::string textOf(const PlaylistItem& item) { return std::to_string(item.slot) + ">" + item.palette; }

std::optional<PlaylistItem> itemOf(const std::string& text) {
    PlaylistItem item;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, item.slot);
    if (error != std::errc{} || rest == end || *rest != '>' || item.slot < 0 || item.slot >= kPaletteSlots)
        return std::nullopt;
    item.palette = std::string(rest + 1, end);
    return item;
}

std::vector<std::string> sections() {
    PlaylistStore.ListSections();
    std::vector<std::string> names;
    for (int i = 0; i < PlaylistStore.SectionCount(); ++i) names.push_back(PlaylistStore.SectionName(i));
    return names;
}

/// An identifier that no playlist has.
std::string drawSection() {
    static std::mt19937 chance{std::random_device{}()};
    const std::vector<std::string> taken = sections();
    std::string drawn;
    do {
        drawn.clear();
        for (std::size_t i = 0; i < kIdCharacters; ++i) drawn += kIdLetters[chance() % kIdLetters.size()];
    } while (std::ranges::any_of(taken, [&](const std::string& name) { return SameText(name, drawn); }));
    return drawn;
}

}  // namespace

Playlist ReadPlaylist(const std::string& section) {
    Playlist playlist;
    playlist.section = section;
    playlist.name = PlaylistStore.GetValue("Name", 0, section);
    playlist.automix = PlaylistStore.GetValue("Automix", 0, section) == "1";
    for (const std::string& text : Split(PlaylistStore.GetValue("List", 0, section), ":")) {
        if (const auto item = itemOf(text)) playlist.items.push_back(*item);
    }
    return playlist;
}

std::vector<Playlist> AllPlaylists() {
    std::vector<Playlist> all;
    for (const std::string& section : sections()) {
        Playlist playlist = ReadPlaylist(section);
        if (!playlist.name.empty()) all.push_back(std::move(playlist));
    }
    return all;
}

bool KeepPlaylist(Playlist& playlist) {
    if (playlist.items.empty()) {
        if (!playlist.section.empty()) PlaylistStore.DeleteSection(playlist.section);
        return true;
    }
    std::string list;
    for (const PlaylistItem& item : playlist.items) list += (list.empty() ? "" : ":") + textOf(item);
    if (list.size() > kLongestValue) return false;
    const std::string section = playlist.section.empty() ? drawSection() : playlist.section;
    const std::vector<cImpulse::Line> lines{
        {"Name", playlist.name}, {"List", list}, {"Automix", playlist.automix ? "1" : ""}};
    if (!PlaylistStore.PutSection(section, lines)) return false;
    playlist.section = section;
    return true;
}

PlaylistItem ItemOf(int index, const std::string& palette) {
    return index >= kPaletteSlots ? PlaylistItem{index - kPaletteSlots, kHotSection}
                                  : PlaylistItem{index, palette};
}

void LoadLockedFiles() {
    LockedFiles.clear();
    for (const Playlist& playlist : AllPlaylists()) {
        for (const PlaylistItem& item : playlist.items) LockedFiles.push_back(textOf(item));
    }
}

bool IsLocked(const PlaylistItem& item) {
    return std::ranges::find(LockedFiles, textOf(item)) != LockedFiles.end();
}

}  // namespace zv
