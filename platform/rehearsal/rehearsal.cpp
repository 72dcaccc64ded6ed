#include "platform/rehearsal/rehearsal.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

#include "platform/clock.h"
#include "platform/controls.h"
#include "platform/decoders.h"
#include "platform/qt/view/shell.h"
#include "platform/rehearsal/json.h"
#include "platform/rehearsal/midi_devices.h"
#include "platform/rehearsal/player.h"
#include "platform/rehearsal/script.h"
#include "platform/rehearsal/stage.h"
#include "platform/rehearsal/virtual_clock.h"
#include "platform/rehearsal/wav_file.h"
#include "platform/rehearsal/web.h"
#include "platform/sound.h"

namespace zv {
namespace {

/// How often kept sound goes to the files, so that long shows need no memory for it.
constexpr std::int64_t kCollectMs = 1000;
constexpr std::uint32_t kUsualRate = 44100;

void makeDevices(int outputs, bool sound) {
    OfflineOptions options;
    options.outputs.resize(static_cast<std::size_t>(outputs));
    // Nobody looks at what goes out: silence need not be computed.
    options.keepSound = sound;
    options.rests = !sound;
    Stage::instance().devices = makeOfflineDevices(options);
}

/// One output and the file that keeps what it sent.
class Recording {
  public:
    explicit Recording(const char* device) : device_(device) {}

    bool open(const std::string& path, std::uint32_t rate) {
        rate_ = rate;
        return file_.open(path, rate);
    }

    /// Writes what was sent up to `ms` of the script. Before it was opened for the first time the output sent silence.
    void collect(std::int64_t ms) {
        const std::vector<float> sound = Stage::instance().devices->takeSound(device_);
        if (file_.frames() == 0 && !sound.empty()) fillTo(ms, sound.size() / 2);
        file_.write(sound);
    }

    bool close(std::int64_t ms) {
        fillTo(ms, 0);
        return file_.close();
    }

  private:
    /// Silence up to `frames` before `ms`.
    void fillTo(std::int64_t ms, std::uint64_t frames) {
        const auto wanted = static_cast<std::uint64_t>(ms) * rate_ / 1000;
        if (wanted > file_.frames() + frames) file_.writeSilence(wanted - file_.frames() - frames);
    }

    const char* device_;
    std::uint32_t rate_ = kUsualRate;
    WavFile file_;
};

bool readScript(const RehearsalOptions& options, Script& script) {
    std::ifstream file(options.script, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open()) {
        std::fprintf(stderr, "%s: cannot be read\n", options.script.c_str());
        return false;
    }
    script = parseScript(text);
    for (const ScriptFault& fault : script.faults) {
        std::fprintf(stderr, "%s:%d: %s\n", options.script.c_str(), fault.line, fault.text.c_str());
    }
    return script.faults.empty();
}

void writeControl(std::ostream& json, const Control& control) {
    static constexpr const char* kProperties[] = {"enabled",   "left",      "top",     "width", "height",
                                                  "backColor", "foreColor", "caption", "value", "listIndex"};
    json << "{\"name\": " << jsonText(control.name) << ", \"index\": " << control.index;
    for (const char* property : kProperties) {
        bool known = false;
        const std::string text = propertyText(control, property, known);
        if (known) json << ", " << jsonText(property) << ": " << jsonText(text);
    }
    json << "}";
}

bool writeState(const RehearsalOptions& options, const RehearsedProgram& program) {
    std::ofstream json(std::filesystem::path(options.out) / "state.json", std::ios::binary | std::ios::trunc);
    json << "{\"ms\": " << monotonicMs() - Stage::instance().startMs << ",\n";
    if (program.state) {
        program.state(json);
        json << ",\n";
    }
    json << "\"windows\": [";
    const char* apart = "";
    for (const Control* window : shell::openWindows())
        json << std::exchange(apart, ", ") << jsonText(window->name);
    json << "],\n\"controls\": [";
    const char* separator = "\n";
    for (const Control* control : allControls()) {
        if (!shell::isShown(*control)) continue;
        json << std::exchange(separator, ",\n");
        writeControl(json, *control);
    }
    json << "\n]}\n";
    return json.flush().good();
}

}  // namespace

engine::EnginePorts soundPorts(std::string_view) {
    soundDecoders = makeRehearsedDecoders();
    return {soundDecoders, Stage::instance().devices};
}

bool soundOutputsThere() { return !Stage::instance().devices->outputs().empty(); }

int rehearse(const RehearsalOptions& options, const RehearsedProgram& program) {
    Script script;
    if (!readScript(options, script)) return kRehearsalBad;
    std::error_code error;
    const std::filesystem::path out(options.out);
    std::filesystem::create_directories(out, error);
    Stage& stage = Stage::instance();
    stage.events.open(out / "events.log", std::ios::binary | std::ios::trunc);
    std::ofstream midiLog(out / "midi.log", std::ios::binary | std::ios::trunc);
    std::ofstream webLog(out / "web.log", std::ios::binary | std::ios::trunc);
    if (!stage.events.is_open() || !midiLog.is_open() || !webLog.is_open()) {
        std::fprintf(stderr, "%s: cannot be written\n", options.out.c_str());
        return kRehearsalBad;
    }
    for (const std::string& device : options.midi) MidiDevices::instance().plug(device);
    MidiDevices::instance().onSent = [&](const std::string& device, std::uint32_t message) {
        midiLog << whenText() << '\t' << device << '\t' << midiText(message) << '\n' << std::flush;
    };
    RehearsedWeb::instance().onRequest = [&](const std::string& method, const std::string& url,
                                             const std::string& body) {
        webLog << whenText() << '\t' << method << '\t' << url << '\t' << onOneLine(body, "\\n") << std::endl;
    };
    stage.scriptFolder = std::filesystem::absolute(options.script).parent_path().string();

    VirtualClock& clock = VirtualClock::instance();
    makeDevices(options.outputs, options.keepSound);
    clock.drive(Stage::instance().devices);
    std::function<void()> collect;
    clock.onPeriod([&] {
        if (const engine::EngineControl* engine = engine::audioLibraryControl()) engine->settleSyncs();
        if (collect && (clock.now() - stage.startMs) % kCollectMs == 0) collect();
    });
    stage.answers.assign(options.answers.begin(), options.answers.end());
    stage.onFirstEvents = program.listen;
    if (!program.start()) {
        std::fprintf(stderr, "%s: the program did not start; see events.log\n", options.script.c_str());
        return kRehearsalFailed;
    }
    clock.alignToPeriod();
    stage.startMs = clock.now();

    std::uint32_t rate = kUsualRate;
    if (program.value) {
        if (const auto text = program.value("MixerFreq"); text && !text->empty())
            rate = static_cast<std::uint32_t>(std::stoul(*text));
    }
    Recording recordings[] = {Recording(kMainOutput), Recording(kAuxOutput)};
    if (options.keepSound) {
        // What was sent while the program started is not part of the show.
        for (const char* device : {kMainOutput, kAuxOutput}) stage.devices->takeSound(device);
        if (!recordings[0].open((out / "main.wav").string(), rate) ||
            !recordings[1].open((out / "aux.wav").string(), rate)) {
            std::fprintf(stderr, "%s: cannot be written\n", options.out.c_str());
            return kRehearsalBad;
        }
        collect = [&] {
            for (Recording& recording : recordings) recording.collect(clock.now() - stage.startMs);
        };
    }

    Player player(options, program, std::move(script.actions));
    stage.fail = [&player](const std::string& text) { player.fail(text); };
    stage.playUntil = [&player](const std::function<bool()>& over) { player.playUntil(over); };
    stage.answerComes = [&player](bool cardOnly) { return player.answerComes(cardOnly); };
    stage.chooseFromMenu = [&player](const std::vector<MenuItem>& items) {
        return player.chooseFromMenu(items);
    };
    player.checkAfterTick();
    player.play();

    processEvents();
    for (; !stage.answers.empty(); stage.answers.pop_front())
        noteEvent("unused", "answer " + stage.answers.front());
    bool written = writeState(options, program);
    if (const auto record = std::exchange(collect, nullptr)) {
        record();
        for (Recording& recording : recordings)
            written = recording.close(clock.now() - stage.startMs) && written;
    }
    stage.closing = true;
    if (program.close) program.close();
    if (!written) {
        std::fprintf(stderr, "%s: not everything could be written\n", options.out.c_str());
        return kRehearsalFailed;
    }
    return player.failed() ? kRehearsalFailed : kRehearsalPassed;
}

}  // namespace zv
