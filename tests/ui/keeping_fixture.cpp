#include "tests/ui/keeping_fixture.h"

#include "startup/settings/palette_settings.h"

namespace zv::test {

Fields fieldsOf(const PersistedJingle& j) {
    Fields fields{{"Path", j.Path}, {"FXV", j.FXV}, {"Playlist", j.Playlist}};
    if (j.BTNCol != kFaceColourText) fields["BTNCol"] = j.BTNCol;
    if (j.Volm != 100) fields["Volm"] = std::to_string(j.Volm);
    const std::pair<const char*, double> numbers[] = {{"AutoDuck", j.AutoDuck},
                                                      {"NoAutomix", j.NoAutomix},
                                                      {"NoTrigDuck", j.NoTrigDuck},
                                                      {"Loop", j.Loop},
                                                      {"Seq", j.Seq},
                                                      {"LoopIn", j.LoopIn},
                                                      {"LoopOut", j.LoopOut},
                                                      {"FadeOut", j.FadeOut},
                                                      {"LogFadeOut", j.LogFadeOut},
                                                      {"LoopFadeOut", j.LoopFadeOut},
                                                      {"CueStart", j.CueStart},
                                                      {"StopPos", j.StopPos},
                                                      {"PlayMod", static_cast<int>(j.PlayMod)}};
    for (const auto& [key, value] : numbers)
        if (value != 0) fields[key] = std::to_string(static_cast<std::int64_t>(value));
    std::erase_if(fields, [](const auto& field) { return field.second.empty(); });
    return fields;
}

KeepingTest::KeepingTest() {
    std::string text;
    for (const std::string palette : {"A", "B", "C"}) {
        text += "[" + palette + "]\r\n";
        for (const std::string number : {"0", "1", "2"}) {
            writeWav(path("Audio_Sample/" + palette + number + ".wav"), sine(2000, 440));
            text += line(number, palette + number);
        }
    }
    write("palette.ini", text);
    write("HotJingles.ini", "");
    SettingsStore.PutValue("PaletteIndex", "A");
    lstPalRefresh();
    paletteSettings.PaletteIndex = "A";
    OpenFile("A");
    OpenFile();
    std::filesystem::remove_all(path("History"));
}

KeepingTest::~KeepingTest() {
    ForgetRemovals();
    HoldPalette("");
}

std::string KeepingTest::line(const std::string& slot, const std::string& name) {
    return "Path_" + slot + "=Audio_Sample\\" + name + ".wav\r\n";
}

std::string KeepingTest::jingles(const std::string& section, cImpulse& store) {
    std::string names;
    for (const auto& [key, value] : store.GetSectionLines(section)) {
        if (!key.starts_with("Path_")) continue;
        const std::size_t slash = value.rfind('\\');
        names += (names.empty() ? "" : " ") + key.substr(5) + ":" +
                 value.substr(slash + 1, value.size() - slash - 5);
    }
    return names;
}

std::string KeepingTest::value(const std::string& section, const std::string& key) {
    return PaletteStore.GetValue(key, 0, section);
}

void KeepingTest::pick(const std::string& palette) {
    SelectPalette(palette);
    frmMain().palettes.lstPal.onMouseUp({});
}

void KeepingTest::save() {
    MarkPalToSave();
    ErrClick();
}

void KeepingTest::name(const std::string& text, int mode) {
    SavePal(mode);
    frmMain().palettes.txtSave.caption = text;
    SavePal();
    if (frmMain().palettes.txtSave.visible()) NotSavePal();
}

std::string KeepingTest::history() {
    std::string out;
    for (const HistoryEntry& e : HistoryEntries())
        out += e.name + " " + std::to_string(static_cast<int>(e.reason)) + "; ";
    return out;
}

}  // namespace zv::test
