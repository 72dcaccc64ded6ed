#include "tests/show/show.h"
#include "audio/open_palette.h"

#include <sstream>
#include <utility>

#include "model/colours.h"
#include "model/upcalls.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/palette_settings.h"

namespace zv::test {

ShowTest::ShowTest(OfflineOptions options) : StudioTest(std::move(options)) {
    deviceSettings.DeviceAux = 2;
    ListOutDev();
    SetupMixers();
}

void ShowTest::openPalette(const std::string& lines, const std::string& name) {
    write("palette.ini", "[" + name + "]\r\n" + lines);
    paletteSettings.PaletteIndex = name;
    OpenFile(name);
}

void ShowTest::openJingle(std::vector<std::int16_t> samples, const std::string& moreLines, int index) {
    const std::string name = "jingle" + std::to_string(index) + ".wav";
    writeWav(path(name), samples);
    openPalette(iniLine("Path_" + std::to_string(index), name) + moreLines);
    ASSERT_EQ(jingle(index).Kind, SlotKind::stream) << name << " did not open: " << jingle(index).BassErr;
    heard();
}

bool ShowTest::sounds(int index) { return BASS_ChannelIsActive(jingle(index).hPlay) == BASS_ACTIVE_PLAYING; }

std::string iniLine(const std::string& key, const std::string& value) { return key + "=" + value + "\r\n"; }

std::vector<std::int16_t> noise(std::size_t frames) {
    std::vector<std::int16_t> samples(frames * 2);
    std::uint32_t state = 1;
    for (std::int16_t& sample : samples) {
        state = state * 1664525 + 1013904223;
        sample = static_cast<std::int16_t>(static_cast<int>(state >> 18) - 8192);
    }
    return samples;
}

std::string wholeRecord(const JingleRecord& j) {
    const auto fields = [](const JingleRecord& j) {
        const auto text = [](const auto& value) {
            std::ostringstream out;
            out.precision(10);
            out << value;
            return out.str();
        };
        return std::vector<std::pair<const char*, std::string>>{
            // clang-format off
            {"Path", j.Path}, {"Volm", text(j.Volm)}, {"AutoDuck", text(int{j.AutoDuck})}, {"AutoDuckKey", j.AutoDuckKey}, {"NoAutomix", text(int{j.NoAutomix})},
            {"NoTrigDuck", text(int{j.NoTrigDuck})}, {"Loop", text(int{j.Loop})}, {"Seq", text(int{j.Seq})}, {"LoopIn", text(j.LoopIn)}, {"LoopOut", text(j.LoopOut)},
            {"FadeOut", text(j.FadeOut)}, {"LogFadeOut", text(int{j.LogFadeOut})}, {"LoopFadeOut", text(int{j.LoopFadeOut})}, {"BTNCol", j.BTNCol},
            {"PlayMod", text(static_cast<int>(j.PlayMod))}, {"CueStart", text(j.CueStart)}, {"StopPos", text(j.StopPos)}, {"FXV", j.FXV}, {"Playlist", j.Playlist},
            {"KeepsStored", text(j.KeepsStored)}, {"StoredVolm", text(j.StoredVolm)}, {"StoredLoop", text(int{j.StoredLoop})}, {"StoredSeq", text(int{j.StoredSeq})},
            {"Unplayable", text(j.Unplayable)}, {"MissingFile", text(j.MissingFile)}, {"BassErr", text(j.BassErr)}, {"BackRGB", text(j.BackRGB)}, {"ForeRGB", text(j.ForeRGB)},
            {"Duration", text(j.Duration)}, {"EndOffset", text(j.EndOffset)}, {"FadeAttrib", text(j.FadeAttrib)}, {"Freq", text(j.Freq)}, {"PlayingOtherPal", text(j.PlayingOtherPal)},
            {"LoopLen", text(j.LoopLen)}, {"Playing", text(j.Playing)}, {"Leaving", text(j.Leaving)}, {"State", text(static_cast<int>(j.State))}, {"Kind", text(static_cast<int>(j.Kind))},
            {"ReverbMs", text(j.ReverbMs)}, {"FadeSync", text(j.FadeSync)}, {"SeqBefore", text(int{j.SeqBefore})}, {"Pressed", text(int{j.Pressed})},
            {"hPlay", j.hPlay != 0 ? "open" : ""}, {"hSrc", j.hSrc != 0 ? "open" : ""}};
        // clang-format on
    };
    JingleRecord empty;
    empty.BackRGB = BtnFaceColor;
    empty.ForeRGB = JingleForeColor;
    const auto is = fields(j), standard = fields(empty);
    std::string changed;
    for (std::size_t i = 0; i < is.size(); ++i)
        if (is[i] != standard[i])
            changed += (changed.empty() ? "" : " ") + std::string(is[i].first) + "=" + is[i].second;
    return changed;
}

}  // namespace zv::test
