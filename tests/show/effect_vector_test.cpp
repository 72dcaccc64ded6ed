// The effects text of a jingle and the presets.
#include "audio/effect_vector.h"

#include "startup/stores.h"
#include "tests/support/studio.h"

namespace zv::test {
namespace {

TEST(EffectVector, AMalformedTextCostsOnlyWhatIsWrongInIt) {
    const EffectVector whole{{1, -2, 0, 0, 0, 0, 0}, 500, 10, 48'000, -3};
    const struct {
        const char* text;
        EffectVector effects;
        bool good;
    } rows[] = {
        {"1,-2,0,0,0,0,0,500,10,48000,-3", whole, true},
        {" 1, -2,0,0,0,0,0,+500,10,48000,-3 ", whole, true},
        {"", {{}, 0, 0, 44'100, 0}, false},
        {"7", {{7}, 0, 0, 44'100, 0}, false},
        {"7,loud,0,0,0,0,0,0,0,44100,0", {{7}, 0, 0, 44'100, 0}, false},
        {"7,,0,0,0,0,0,0,0,44100,0", {{7}, 0, 0, 44'100, 0}, false},
        {"7,0x10,nan,inf,1e999,0,0,0,0,44100,0", {{7}, 0, 0, 44'100, 0}, false},
        {"1,5,0,0,0,0,0,0,0,0,44100,0", {{}, 0, 0, 44'100, 0}, false},  // "1,5" was one and a half
        {"99,-99,0,0,0,0,0,-1,-100,1,500", {{60, -60}, 0, -95, 2'205, 120}, false},
        {"0,0,0,0,0,0,0,9e9,9e9,9e9,-500", {{}, 60'000, 5'000, 4'410'000, -120}, false},
        {"0,0,0,0,0,0,0,0,0,0,0", {}, true},  // a rate of 0 is the sound's own
    };
    for (const auto& row : rows) {
        const ReadEffects read = ParseFXV(row.text, 44'100);
        EXPECT_EQ(read.effects, row.effects) << row.text;
        EXPECT_EQ(read.fault.empty(), row.good) << row.text << ": " << read.fault;
    }
    EXPECT_EQ(FXVText(whole), "1,-2,0,0,0,0,0,500,10,48000,-3");
}

class EffectPresetFiles : public FolderTest {};

TEST_F(EffectPresetFiles, GainsInTheFileHaveTheSignThatIsHeard) {
    SetStorePaths();
    FXPresetsStore.PutSection(
        kFXPresetsSection, {{"Bass boost", "7,3,1,0,0,0,0,0,0,0,0"}, {"Tempo", "0,0,0,0,0,0,0,0,10,-25,2"}});
    EXPECT_EQ(EffectPresets(), (std::vector<std::string>{"Bass boost", "Tempo"}));
    EXPECT_EQ(ReadEffectPreset("Bass boost").gain(0), 7);
    EXPECT_EQ(ReadEffectPreset("Tempo"), (EffectVector{{}, 0, 10, -25, 2}));
    EXPECT_EQ(ReadEffectPreset("not there"), EffectVector{});

    EffectVector mine{{-5, 0, 2}, 300, -4, 12, 1};
    std::string name = " My [best]=\n one ";
    ASSERT_TRUE(WriteEffectPreset(name, mine));
    EXPECT_EQ(name, "My best one");
    EXPECT_EQ(FXPresetsStore.GetValue(name, 0, kFXPresetsSection), "5,0,-2,0,0,0,0,300,-4,12,1");
    EXPECT_EQ(ReadEffectPreset(name), mine);
    EXPECT_EQ(EffectPresets().size(), 3U);
    DeleteEffectPreset("bass BOOST");
    EXPECT_EQ(EffectPresets(), (std::vector<std::string>{"Tempo", "My best one"}));
    std::string nothing = " [=] ";
    EXPECT_FALSE(WriteEffectPreset(nothing, mine));
}

}  // namespace
}  // namespace zv::test
