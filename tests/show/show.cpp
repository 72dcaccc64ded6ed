#include "tests/show/show.h"
#include "audio/open_palette.h"

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

int rampFrame(const Heard& sound, std::size_t frame) {
    return static_cast<int>(std::lround(sound.at(frame) * 32768)) - 1;
}

}  // namespace zv::test
