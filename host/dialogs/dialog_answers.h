#pragma once

// Answers the dialogs and message boxes of the process: the real windows of the platform, whoever shows them.
//
// While a DialogAnswers lives, dialogs that become active on its thread are noticed by a hook. A timer, which
// runs in the dialog's own message loop and fires when the dialog waits for the drafter, then asks the
// current input source what the drafter does and does it step by step. A step may open another dialog: the
// answers that follow are then that one's, and the rest of the action waits until its own dialog is the top
// one again.

#include <windows.h>

#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/dialogs/dialog_steps.h"
#include "host/editor/answer.h"

namespace drafthost {
class Host;
}

namespace drafthost::dialogs {

class DialogAnswers {
public:
    // On the thread whose dialogs are answered. One lives at a time.
    explicit DialogAnswers(Host& host);
    ~DialogAnswers();
    DialogAnswers(const DialogAnswers&) = delete;
    DialogAnswers& operator=(const DialogAnswers&) = delete;

    // Of the hooks and the timer.
    void noticed();
    void closing(HWND dialog);
    void taken(const MSG& message);
    // Whether the timer's message came through the loop of a dialog; asked once a message.
    bool isTakenByDialog();
    void tick();
    // The answers come from a source that uses dialogs: the keyboard must not go to another program then, and
    // the machine's own mouse and keyboard are kept out.
    bool keepsDevices() const;

private:
    // An action that has begun.
    struct Task {
        HWND dialog;
        editor::Answer answer;
        Steps steps;
        int waits = 0;
    };

    using Tasks = std::vector<Task>;

    Tasks::iterator taskOf(HWND dialog);
    void stopTimer();
    void answer(HWND dialog);
    void begin(HWND dialog, const editor::Answer& answer);
    void runStep(Tasks::iterator task);
    void refuse(HWND dialog, const editor::Answer& answer, const std::wstring& complaint);
    void cancel(HWND dialog);
    void insist(HWND dialog);

    Host& host_;
    std::array<HHOOK, 4> hooks_{};
    std::uintptr_t timer_ = 0;
    bool ticking_ = false;
    bool takenByDialog_ = false;         // the last message that a dialog's loop took was the timer's
    Tasks tasks_;                        // one a dialog
    std::set<HWND> asked_;               // the input source was asked for them
    std::map<HWND, int> cancellations_;  // how often a dialog that is still open was cancelled
    int cancelled_ = 0;                  // dialogs in all
};

}  // namespace drafthost::dialogs
