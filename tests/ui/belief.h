// What a presenter believes to find in the files and on the buttons: a plain model of what each of his steps does.
#pragma once

#include <optional>

#include "tests/ui/keeping_fixture.h"

namespace zv::test {

using Slots = std::map<int, Fields>;

inline std::string pathOf(const std::string& name) { return "Audio_Sample\\" + name + ".wav"; }
inline std::string nameOf(const std::string& path) { return path.substr(13, path.size() - 17); }

/// What every file of the test has by itself.
inline Fields plain(Fields fields) {
    if (fields["FXV"] == "0,0,0,0,0,0,0,0,0,44100,0") fields.erase("FXV");
    if (fields["LoopOut"] == "8000") fields.erase("LoopOut");
    std::erase_if(fields, [](const auto& field) { return field.second.empty() || field.second == "0"; });
    return fields;
}

/// An edit as the history of edits has it: slots before and after.
using Edit = std::map<int, std::pair<Fields, Fields>>;

/// What the presenter believes.
struct Belief {
    std::map<std::string, Slots> saved;  ///< by lower-case name
    Slots savedHot, work;                ///< `work` has the hot jingles too
    std::string held;
    bool edited = false, autoSave = false, belowGrid = false;  ///< slot 40 has a button
    struct Cut {
        bool cut;
        std::string from;
        int slot;
        Fields jing;
    };
    std::optional<Cut> clip;
    std::vector<Removal> leaving;
    std::vector<Edit> done, undone;

    Slots part(bool hot) const {
        Slots out;
        for (const auto& [slot, jing] : work)
            if ((slot >= kPaletteSlots) == hot) out.emplace(slot, jing);
        return out;
    }
    void saveTo(const std::string& name) {
        for (const Removal& r : leaving)
            if (r.section == name && work.contains(r.slot) && work[r.slot]["Path"] == r.path)
                work.erase(r.slot);
        saved[name] = part(false);
        savedHot = part(true);
        for (const Removal& r : leaving) {
            if (r.section == name || !saved.contains(r.section)) continue;
            Slots& source = saved[r.section];
            if (!source.contains(r.slot) || source[r.slot]["Path"] != r.path) continue;
            source.erase(r.slot);
            if (LastPalIdx < 40) source.erase(40);
        }
        leaving.clear();
        if (clip && clip->from == held) clip->from = name;
        held = name;
        edited = false;
    }
    void open(const std::string& name) {
        if (autoSave && edited) saveTo(held);
        std::erase_if(leaving, [&](const Removal& r) { return !r.into.empty() && r.into == held; });
        const Slots hot = part(true);
        work = saved[name];
        if (!belowGrid) work.erase(40);
        work.insert(hot.begin(), hot.end());
        held = name;
        edited = false;
        done.clear(), undone.clear();
    }
    /// An edit that can be taken back.
    void edit(const std::map<int, Fields>& slots) {
        Edit step;
        for (const auto& [slot, fields] : slots) {
            const Fields before = work.contains(slot) ? work[slot] : Fields();
            if (before == fields) continue;
            step[slot] = {before, fields};
            put(slot, fields);
        }
        if (!step.empty()) done.push_back(step), undone.clear();
        touched();
    }
    void put(int slot, const Fields& fields) {
        if (fields.empty())
            work.erase(slot);
        else
            work[slot] = fields;
    }
    void take(std::vector<Edit>& from, std::vector<Edit>& to, bool back) {
        if (from.empty()) return;
        for (const auto& [slot, fields] : from.back()) put(slot, back ? fields.first : fields.second);
        to.push_back(from.back());
        from.pop_back();
        clip.reset();
        edited = part(false) != saved[held] || part(true) != savedHot;
        if (edited) touched();
    }
    void renamed(const std::string& from, const std::string& to) {
        const auto in = [&](Slots& slots) {
            for (auto& [slot, fields] : slots)
                if (fields["Path"] == from) fields["Path"] = to;
        };
        for (auto& [name, slots] : saved) in(slots);
        in(savedHot), in(work);
        for (Removal& r : leaving)
            if (r.path == from) r.path = to;
        if (clip && clip->jing["Path"] == from) clip->jing["Path"] = to;
        saveTo(held);
    }
    void touched() {
        edited = true;
        if (autoSave) saveTo(held);
    }
    /// True when it can be taken back on its own: nothing leaves another palette.
    bool paste(int slot) {
        const bool same = clip->from == held || clip->slot >= kPaletteSlots;
        if (same && slot == clip->slot) return true;
        const std::vector<Removal> before = leaving;
        std::map<int, Fields> slots{{slot, clip->jing}};
        if (clip->cut && same) slots[clip->slot] = {};
        if (clip->cut && !same)
            leaving.push_back({clip->from, clip->slot, slot < kPaletteSlots ? held : "", clip->jing["Path"]});
        std::erase_if(leaving, [&](const Removal& r) { return r.section == held && r.slot == slot; });
        if (clip->cut) clip.reset();
        const bool alone = leaving == before;
        edit(slots);
        return alone;
    }
};

}  // namespace zv::test
