// The whole program as text: what stands in a window, and what an act has changed of controls, records, settings and
// files. A test compares all of it with an approved text (tests/support/approved.h).
#pragma once

#include "tests/ui/keeping_fixture.h"

namespace zv::test {

/// "sldEQ(3)".
std::string nameOf(const Control& control);
/// A window in reading order, a bar between two rows, two between two cards.
std::string whole(const Control& window);

/// All that an act can change: controls, records, settings, files, and what the desktop was asked.
class Watch {
  public:
    /// `folder` is the test's own.
    explicit Watch(std::filesystem::path folder);
    /// What is other than at the last call, "name.property=value"; equal ones of an array as one.
    std::string changes();
    bool timeStands = false;  ///< what moves with the time is told as well
    bool mainOnly = false;    ///< of other windows is told only which are seen

  private:
    std::map<std::string, std::string> rest() const;

    std::filesystem::path folder_;
    std::map<const Control*, std::vector<std::string>> known_;
    std::map<std::string, std::string> rest_;
};

inline constexpr int kSlot = 1;  ///< a sequence of six seconds

class ApprovedTest : public KeepingTest {
  protected:
    ApprovedTest();
    ~ApprovedTest() override;

    /// Files, records and what is armed as they are before each scene: slot 1 of palette A is a sequence of six seconds,
    /// 2 and 3 have lost their files, 5 is a playlist's.
    void begin();
    /// What a hand does to the control, and what has changed behind it.
    void work(Control& c, MouseButton button = MouseButton::left);
    /// A line of the text: what has changed since the last; none when that is nothing.
    void note(const std::string& what);
    /// A command in the state that begin() makes, and what it has changed after `ms`.
    void act(const std::string& what, const std::function<void()>& command, int ms = 120);
    static void key(Control& control, Key which, int shift = 0);

    /// The text with short acts of a scene on one line.
    std::string lined() const;

    std::string text;
    std::unique_ptr<Watch> watch;
};

}  // namespace zv::test
