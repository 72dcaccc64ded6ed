#include "midi/learn.h"

#include <algorithm>

#include "midi/codes.h"
#include "midi/upcalls.h"
#include "startup/upcalls.h"

namespace zv {

Learning MIDILearn;

namespace {

/// Of the message that is looked at.
struct Heard {
    std::string MIDIFull, MIDIShort;
    int MIDIVelocity;
};

constexpr std::size_t kMostShown = 500;  // messages that the monitor keeps

/// The first two messages count; of the others the oldest go.
void addToMonitor(const std::string& message) {
    std::vector<std::string>& list = MIDILearn.lstMidiInDump;
    list.push_back(message);
    if (list.size() > kMostShown) list.erase(list.begin() + 2);
}

bool contains(const std::vector<std::string>& list, const std::string& text) {
    return std::ranges::find(list, text) != list.end();
}

/// Two distinct messages are the two directions.
void learnWheel(const Heard& m) {
    Learning& l = MIDILearn;
    if (!contains(l.lstMidiInDumpUnique, m.MIDIFull) && l.lstMidiInDumpUnique.size() < 2) {
        l.lstMidiInDumpUnique.push_back(m.MIDIFull);
        if (l.lstMidiInDumpUnique.size() == 1) {
            l.MIDILearnUp = m.MIDIFull;
            l.picAntiClockw = LearnLight::red;
            l.picClockw = LearnLight::cyan;
        } else {
            l.MIDILearnDown = m.MIDIFull;
            l.picAntiClockw = l.picClockw = LearnLight::red;
        }
    }
    addToMonitor(m.MIDIFull);
    l.flashing = m.MIDIFull == l.MIDILearnUp ? -1 : m.MIDIFull == l.MIDILearnDown ? 1 : 0;
}

void learnFader(const Heard& m) {
    Learning& l = MIDILearn;
    addToMonitor(m.MIDIFull);
    if (l.lstMidiInDump.size() == 1) l.MIDILearnDown = m.MIDIShort;
    if (m.MIDIShort == l.MIDILearnDown)
        l.SlideFader = l.ckReverse ? kLargestData - m.MIDIVelocity : m.MIDIVelocity;
}

/// The first message is the press, the second the release.
void AnalyzeMIDI(const Heard& m) {
    Learning& l = MIDILearn;
    if (m.MIDIVelocity >= 1) l.SlideVelocity = m.MIDIVelocity;
    l.MIDILearnDown = l.lstMidiInDump.front().substr(0, kShortCode);
    l.MIDILearnUp = l.lstMidiInDump.back();
}

void learnButton(const Heard& m) {
    Learning& l = MIDILearn;
    addToMonitor(m.MIDIFull);
    if (l.lstMidiInDump.size() == 2) AnalyzeMIDI(m);
    if (m.MIDIFull == l.MIDILearnUp) {
        l.Picture1 = LearnLight::red;
    } else if (m.MIDIShort == l.MIDILearnDown) {
        l.Picture1 = LearnLight::green;
        l.lblVelocityCode = std::to_string(m.MIDIVelocity);
    } else if (l.lstMidiInDump.size() == 1) {
        l.lblVelocityCode = std::to_string(m.MIDIVelocity);
    }
}

}  // namespace

void LearnMessage(const std::string& message) {
    const Heard m{message, message.substr(0, kShortCode), DataValue(message)};
    switch (MIDILearn.window) {
        case LearnWindow::scroll:
            learnWheel(m);
            break;
        case LearnWindow::fader:
            learnFader(m);
            break;
        case LearnWindow::button:
            learnButton(m);
            break;
        case LearnWindow::none:
        case LearnWindow::reset:
            return;
    }
    callUp(midiUpcalls.learnChanged);
}

}  // namespace zv
