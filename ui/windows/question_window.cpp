#include "ui/windows/question_window.h"

#include <algorithm>
#include <optional>
#include <string>

#include "platform/desktop.h"
#include "platform/waiting.h"
#include "startup/guard.h"
#include "ui/records/main_window.h"
#include "ui/windows/form_place.h"

namespace zv {

namespace {

constexpr int kWidth = 480, kIconWidth = 40, kGap = 16;  // pixels
constexpr double kIconSize = 22;                         // points
constexpr double kTextSize = 11;
constexpr Colour kBlue = 0xC08040, kAmber = 0x1E8AE0, kRed = 0x3C3CD0;
constexpr const char* kProgram = "Zentrova";  // a title that says nothing

/// Those that wait for an answer, one over the other; the last one is seen.
struct Asked {
    const Question& question;
    Asked* below;
    std::optional<BoxAnswer> answer;
};
Asked* asked = nullptr;

BoxAnswer agreeing(BoxButtons buttons) {
    return buttons == BoxButtons::yesNo ? BoxAnswer::yes : BoxAnswer::ok;
}

/// The harmless answer: Escape's, and that of a program that ends.
BoxAnswer declining(BoxButtons buttons) {
    switch (buttons) {
        case BoxButtons::yesNo:
            return BoxAnswer::no;
        case BoxButtons::okCancel:
            return BoxAnswer::cancel;
        case BoxButtons::ok:
            break;
    }
    return BoxAnswer::ok;
}

void answer(const char* procedure, BoxAnswer (*which)(BoxButtons)) {
    guarded(procedure, [&] {
        if (asked != nullptr) asked->answer = which(asked->question.buttons);
    });
}

/// The window that asks, where the card has room in it; else the main window.
Control& hostOf(const Control& card) {
    const Control* focused = focusedControl();
    const Control& front = focused != nullptr ? windowOf(*focused) : frmMain().window;
    const int around = 2 * kGap * kTwipsPerPixel;
    const bool serves = &front != &card && front.form != nullptr && front.visible &&
                        front.width >= card.width + around && front.height >= card.height + around;
    return serves ? *findControl(front.name) : frmMain().window;
}

void showIcon(QuestionWindow& w, BoxKind kind) {
    struct Sign {
        BoxKind kind;
        const char* symbol;
        Colour colour;
    };
    const Sign signs[]{{BoxKind::information, "i", kBlue},
                       {BoxKind::warning, "!", kAmber},
                       {BoxKind::stop, "×", kRed},
                       {BoxKind::question, "?", kBlue}};
    for (const Sign& sign : signs) {
        if (sign.kind != kind) continue;
        w.lblIcon.caption = sign.symbol;
        w.lblIcon.foreColor = sign.colour;
    }
}

std::string linesOf(std::string text) {
    std::erase(text, '\r');
    return text;
}

void show(const Question& q) {
    QuestionWindow& w = frmQuestion();
    const bool choice = q.buttons != BoxButtons::ok;
    const bool yesNo = q.buttons == BoxButtons::yesNo;
    w.form.window.caption = q.title;
    w.lblTitle.caption = q.title;
    w.lblTitle.visible = !q.title.empty() && q.title != kProgram;
    w.lblText.caption = linesOf(q.text);
    w.btAgree.visible = choice && !q.words.destroys;
    w.btDestroy.visible = choice && q.words.destroys;
    w.btDecline.visible = choice;
    w.btOK.visible = !choice;
    for (Control* key : {&w.btAgree, &w.btDestroy}) key->caption = yesNo ? q.words.yes : q.words.ok;
    w.btDecline.caption = yesNo ? q.words.no : q.words.cancel;
    w.btOK.caption = q.words.ok;
    showIcon(w, q.kind);
    if (w.form.isOpen())
        hideWindow(w.form.window);  // another question takes its place: windows are fitted hidden
    w.form.open(choice ? &w.btDecline : &w.btOK);
}

std::optional<BoxAnswer> askOverGrid(const Question& question,
                                     const std::function<std::optional<BoxAnswer>()>& elsewhere) {
    if (!frmMain().window.visible) return std::nullopt;
    Asked mine{question, asked, std::nullopt};
    Control* const before = focusedControl();
    asked = &mine;
    show(question);
    waitUntil([&] {
        if (!mine.answer && elsewhere && asked == &mine) mine.answer = elsewhere();
        return mine.answer.has_value();
    });
    asked = mine.below;
    if (asked != nullptr) {
        show(asked->question);
    } else {
        frmQuestion().form.close();
        if (before != nullptr && windowOf(*before).visible) setFocus(*const_cast<Control*>(before));
    }
    return mine.answer.value_or(declining(question.buttons));
}

}  // namespace

QuestionWindow::QuestionWindow() {
    lblIcon.fontSize = kIconSize;
    lblIcon.fontBold = true;
    lblIcon.alignment = 2;
    lblText.fontSize = kTextSize;
    form.describe({.blocks = {{{.title = lblTitle,
                                .rows = {{.cells = {{.control = &lblIcon, .width = kIconWidth},
                                                    {.control = &lblText, .width = kRestOfRow}}}},
                                .bare = true}}},
                   .keys = {{.control = &btDestroy, .role = KeyRole::destroy},
                            {.control = &btAgree},
                            {.control = &btDecline, .role = KeyRole::accept},
                            {.control = &btOK, .role = KeyRole::accept}},
                   .width = kWidth,
                   .card = true});
    for (Control* key : {&btAgree, &btDestroy})
        key->onClick = [] { answer("frmQuestion.btAgree_Click", agreeing); };
    for (Control* key : {&btDecline, &btOK})
        key->onClick = [] { answer("frmQuestion.btDecline_Click", declining); };
    form.onClosed = [] { answer("frmQuestion.Form_Unload", declining); };
    form.onPlace = PlaceQuestion;
    for (Control* key : {&btDecline, &btOK})
        key->onDescribe = [this] { return lblText.caption(); };  // read with the key that has the keyboard
}

QuestionWindow& frmQuestion() {
    static QuestionWindow window;
    return window;
}

void PlaceQuestion() {
    Control& card = frmQuestion().form.window;
    if (asked == nullptr) return;
    static Control* in = nullptr;
    if (!card.visible || in == nullptr) in = &hostOf(card);
    Control& host = *in;
    embedForm(card, host);
    const Control& strip = frmMain().display.picDispBack;
    const int above = &host == &frmMain().window ? strip.top + strip.height : 0;
    const int gap = kGap * kTwipsPerPixel;
    card.left = std::max(0, (host.width - card.width) / 2);
    // Where a low window has no room below the strip, the card rather covers that than loses its keys.
    const int lowest = std::max(0, host.height - card.height - gap);
    card.top = std::min(lowest, std::max(above + gap, above + (host.height - above - card.height) / 2));
    if (card.visible) showWindow(card);  // before buttons that were made since
}

void FillQuestions() {
    askOnCard = askOverGrid;
    worksMeanwhile = [](const Control& control, const MouseEvent& press) {
        const bool plain = press.button == MouseButton::left && press.shift == 0;
        const bool jingle = control.kind == ControlKind::jingle ||
                            (control.parent != nullptr && control.parent->kind == ControlKind::jingle &&
                             control.kind != ControlKind::checkBox);
        return plain && (&control == &frmMain().keys.btStop || jingle);
    };
    placeOverGrid = [](int width, int height) { return PlaceOverGrid(width, height); };
}

}  // namespace zv
