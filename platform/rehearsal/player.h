/// Performs a script's actions at their times, through the widgets. [control]
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/desktop.h"
#include "platform/rehearsal/random_show.h"
#include "platform/rehearsal/rehearsed.h"
#include "platform/rehearsal/script.h"

namespace zv {

class Player {
  public:
    Player(const RehearsalOptions& options, const RehearsedProgram& program, std::vector<Action> actions);

    /// Performs all of it, beginning at the present moment.
    void play();
    /// Goes on performing until `over` says so, as while a modal window waits, or the script has ended.
    void playUntil(const std::function<bool()>& over);
    /// True when what is left of the script answers a question: by its card, or by `answer` unless only the card counts.
    bool answerComes(bool cardOnly) const;
    /// Tells what went wrong, with the place in the script; the rehearsal has failed then.
    void fail(const std::string& text);
    bool failed() const { return failures_ > 0; }
    /// The item of the open menu that the script chooses next; empty when it is left without a choice.
    std::string chooseFromMenu(const std::vector<MenuItem>& items);
    /// Asks the program whether sound, records and buttons agree, after each tick of the display.
    void checkAfterTick();

  private:
    void add(Action action);
    /// Takes the next action out; its time has come.
    Action takeNext();
    /// Time goes on to the next action. Null when the script is over, the program has ended or `over` says so.
    const Action* reachNext(const std::function<bool()>& over);
    Control* find(const Action& action) const;
    void perform(const Action& action);
    void plugDevice(const Action& action);
    void pressButton(const Action& action);
    void clickControl(const Action& action);
    void setControl(const Action& action);
    void selectRow(Control& list, const std::string& text);
    void pickPalette(const Action& action);
    void expectValue(const Action& action);
    void shoot(const Action& action);
    void hear(const Action& action);
    void scatterRandom(const Action& action);
    void performRandom();
    /// The control that an action names; null, and a failure, when there is none.
    Control* control(const Action& action);
    void ignored(const Action& action);

    const RehearsalOptions& options_;
    const RehearsedProgram& program_;
    std::multimap<std::int64_t, Action> pending_;  ///< by time, then in the order of adding
    std::vector<RandomShow> random_;
    int line_ = 0;  ///< of the action that is performed
    int failures_ = 0;
};

/// Performs a `web` line.
void answerWeb(const Action& action);
/// Text of an action as it would stand in a script, without its time.
std::string actionText(const Action& action);

}  // namespace zv
