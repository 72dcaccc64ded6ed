#include "tests/show/show.h"
#include "audio/open_palette.h"

#include <sstream>
#include <utility>

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

std::string wholeRecord(const JingleRecord& j) {
    std::ostringstream out;
    out << j.Path << " Volm " << j.Volm << " AutoDuck " << int{j.AutoDuck} << "=" << j.AutoDuckKey
        << " NoAutomix " << int{j.NoAutomix} << " NoTrigDuck " << int{j.NoTrigDuck} << " Loop " << int{j.Loop}
        << " Seq " << int{j.Seq} << " " << j.LoopIn << "-" << j.LoopOut << " FadeOut " << j.FadeOut << " Log "
        << int{j.LogFadeOut} << " LoopFadeOut " << int{j.LoopFadeOut} << " " << j.BTNCol << " PlayMod "
        << static_cast<int>(j.PlayMod) << " CueStart " << j.CueStart << " StopPos " << j.StopPos << " FXV "
        << j.FXV << " " << j.Playlist << " Stored " << j.KeepsStored << " " << j.StoredVolm << " "
        << int{j.StoredLoop} << " " << int{j.StoredSeq} << " Unplayable " << j.Unplayable << " Missing "
        << j.MissingFile << " BassErr " << j.BassErr << " colours " << j.BackRGB << " " << j.ForeRGB
        << " Duration " << j.Duration << " EndOffset " << j.EndOffset << " FadeAttrib " << j.FadeAttrib
        << " Freq " << j.Freq << " PlayingOtherPal " << j.PlayingOtherPal << " LoopLen " << j.LoopLen
        << " Playing " << j.Playing << " Leaving " << j.Leaving << " State " << static_cast<int>(j.State)
        << " Kind " << static_cast<int>(j.Kind) << " ReverbMs " << j.ReverbMs << " FadeSync " << j.FadeSync
        << " SeqBefore " << int{j.SeqBefore} << " Pressed " << int{j.Pressed};
    return out.str();
}

int rampFrame(const Heard& sound, std::size_t frame) {
    return static_cast<int>(std::lround(sound.at(frame) * 32768)) - 1;
}

}  // namespace zv::test
