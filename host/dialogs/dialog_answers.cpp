#include "host/dialogs/dialog_answers.h"

#include <algorithm>
#include <utility>

#include "framework/window.h"
#include "host/dialogs/dialog_contents.h"
#include "host/dialogs/dialog_input.h"
#include "host/dialogs/dialog_windows.h"
#include "host/documents/host.h"

namespace drafthost::dialogs {

namespace {

using editor::Answer;

constexpr UINT kTimerMilliseconds = 10;
constexpr int kMostWaits = 1000;  // ticks until a dialog that does not react is an error
// How a dialog that does not close is pressed, in ticks of its own.
constexpr int kTicksUntilClosed = 5, kTicksUntilEnded = 20, kTicksUntilGivenUp = 60;
// Programs that show a dialog again and again until it is answered would never end: after so many the run
// fails, and after twice as many the process ends.
constexpr int kMostCancelled = 200;
constexpr UINT kGivenUpStatus = 1;

DialogAnswers* installed = nullptr;

void click(HWND dialog, HWND button) {
    PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(button), BN_CLICKED),
                 reinterpret_cast<LPARAM>(button));
}

// Closes a dialog that nobody answers with the button that does the least.
void pressCancel(HWND dialog) {
    for (const int id : {IDCANCEL, IDNO, IDABORT, IDIGNORE, IDOK}) {
        const HWND button = GetDlgItem(dialog, id);
        if (button && IsWindowVisible(button) && IsWindowEnabled(button) && hasClass(button, L"Button") &&
            (id == IDCANCEL || isMessageBox(dialog))) {
            return click(dialog, button);
        }
    }
    PostMessageW(dialog, WM_CLOSE, 0, 0);
}

LRESULT CALLBACK noticeDialogs(int code, WPARAM wParam, LPARAM lParam) {
    const auto window = reinterpret_cast<HWND>(wParam);
    if (installed && code == HCBT_ACTIVATE && !window && installed->keepsDevices())
        return 1;  // another program came to the front
    // Its creation as well: a dialog need not become active while another program is at the front.
    if (installed && (code == HCBT_ACTIVATE || code == HCBT_CREATEWND) && hasClass(window, kDialogClass))
        installed->noticed();
    if (installed && code == HCBT_DESTROYWND && hasClass(window, kDialogClass))
        installed->closing(window);
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

// Mouse and keyboard of the machine, which posted messages do not come through: between a press and its
// release by the scripted drafter the real mouse would drag something.
LRESULT CALLBACK keepOutDevices(int code, WPARAM wParam, LPARAM lParam) {
    if (code >= 0 && installed && installed->keepsDevices())
        return 1;
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

// The loop of a dialog shows its messages to this hook. The loop in which COM waits for a server does not,
// but takes posted messages and timers as well: steps taken from there would fall into the middle of what the
// dialog is doing, or go to the dialog beneath one that is still being filled.
LRESULT CALLBACK noticeLoop(int code, WPARAM wParam, LPARAM lParam) {
    if (installed && code == MSGF_DIALOGBOX)
        installed->taken(*reinterpret_cast<const MSG*>(lParam));
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void CALLBACK tickOnTimer(HWND, UINT, UINT_PTR, DWORD) {
    if (installed && installed->isTakenByDialog())
        installed->tick();
}

}  // namespace

DialogAnswers::DialogAnswers(Host& host) : host_(host) {
    installed = this;
    const DWORD thread = GetCurrentThreadId();
    hooks_ = {SetWindowsHookExW(WH_CBT, noticeDialogs, nullptr, thread),
              SetWindowsHookExW(WH_MOUSE, keepOutDevices, nullptr, thread),
              SetWindowsHookExW(WH_KEYBOARD, keepOutDevices, nullptr, thread),
              SetWindowsHookExW(WH_MSGFILTER, noticeLoop, nullptr, thread)};
}

DialogAnswers::~DialogAnswers() {
    stopTimer();
    for (const HHOOK hook : hooks_) {
        if (hook)
            UnhookWindowsHookEx(hook);
    }
    installed = nullptr;
}

void DialogAnswers::noticed() {
    if (!timer_)
        timer_ = SetTimer(nullptr, 0, kTimerMilliseconds, tickOnTimer);
}

void DialogAnswers::stopTimer() {
    if (timer_)
        KillTimer(nullptr, timer_);
    timer_ = 0;
}

void DialogAnswers::taken(const MSG& message) {
    takenByDialog_ = message.message == WM_TIMER && message.wParam == timer_;
}

bool DialogAnswers::isTakenByDialog() {
    return std::exchange(takenByDialog_, false);
}

bool DialogAnswers::keepsDevices() const {
    return timer_ != 0 && host_.input().answersDialogs() && topDialog();
}

DialogAnswers::Tasks::iterator DialogAnswers::taskOf(HWND dialog) {
    return std::find_if(tasks_.begin(), tasks_.end(),
                        [&](const Task& candidate) { return candidate.dialog == dialog; });
}

void DialogAnswers::closing(HWND dialog) {
    cancellations_.erase(dialog);
    asked_.erase(dialog);
    const auto task = taskOf(dialog);
    if (task == tasks_.end())
        return;
    const Answer answer = task->answer;
    tasks_.erase(task);
    if (!host_.runFailed() && !host_.interrupted())
        refuse(dialog, answer, L"The dialog was closed before the action was done.");
}

void DialogAnswers::tick() {
    if (ticking_)
        return;
    releaseModifiers();
    const HWND dialog = topDialog();
    if (!dialog && hasDialogs())
        return;  // not shown yet
    if (!dialog)
        return stopTimer();  // the next activation starts it again
    const bool cancelled = host_.runFailed() || host_.interrupted();
    if (!cancelled && !host_.input().answersDialogs())
        return;
    ticking_ = true;
    if (GetActiveWindow() != dialog)
        SetActiveWindow(dialog);
    if (cancelled) {
        tasks_.clear();
        cancel(dialog);
    } else if (const auto task = taskOf(dialog); task != tasks_.end()) {
        runStep(task);
    } else {
        answer(dialog);
    }
    ticking_ = false;
}

void DialogAnswers::answer(HWND dialog) {
    editor::BoxRequest box = describeDialog(dialog);
    if (asked_.insert(dialog).second && !box.isMessageBox)
        box.contents = contentsOf(dialog);
    if (cancellations_.count(dialog) == 0)
        host_.log(L"dialog \"" + box.caption + L"\": " + box.text);
    host_.commandLine().flush();
    const Answer answer = host_.input().nextForBox(box);
    if (answer.kind == Answer::Kind::Exhausted || (answer.kind == Answer::Kind::Cancel && box.isMessageBox)) {
        cancel(dialog);
    } else {
        begin(dialog, answer);
    }
}

void DialogAnswers::begin(HWND dialog, const Answer& answer) {
    try {
        Steps steps = stepsOf(answer, dialog);
        if (!steps.empty())
            tasks_.push_back({dialog, answer, std::move(steps)});
    } catch (const DialogComplaint& complaint) {
        refuse(dialog, answer, complaint.text);
    }
}

void DialogAnswers::runStep(Tasks::iterator task) {
    std::wstring complaint;
    Progress progress = Progress::Finished;
    try {
        progress = task->steps.front()();
    } catch (const DialogComplaint& problem) {
        complaint = problem.text;
    }
    if (progress == Progress::Done)
        task->steps.pop_front();
    if (progress == Progress::Again && ++task->waits > kMostWaits)
        complaint = L"The dialog does not react.";
    if (complaint.empty() && progress != Progress::Finished && !task->steps.empty())
        return;
    const HWND dialog = task->dialog;
    const Answer answer = task->answer;
    tasks_.erase(task);
    if (!complaint.empty())
        refuse(dialog, answer, complaint);
}

void DialogAnswers::refuse(HWND dialog, const Answer& answer, const std::wstring& complaint) {
    if (!host_.input().refuse(answer, describe(describeDialog(dialog)), complaint))
        cancel(dialog);
}

void DialogAnswers::cancel(HWND dialog) {
    const int tries = ++cancellations_[dialog];
    if (tries == 1) {
        if (++cancelled_ >= kMostCancelled)
            host_.failRun(L"dialogs are shown again and again, and nobody answers them");
        if (cancelled_ >= 2 * kMostCancelled)
            TerminateProcess(GetCurrentProcess(), kGivenUpStatus);
        pressCancel(dialog);
    } else if (tries % kTicksUntilClosed == 0) {
        insist(dialog);
    }
}

// The dialog was cancelled and is still there.
void DialogAnswers::insist(HWND dialog) {
    const int tries = cancellations_[dialog];
    if (tries >= kTicksUntilGivenUp) {
        host_.failRun(L"the dialog \"" + framework::textOf(dialog) + L"\" cannot be closed");
        TerminateProcess(GetCurrentProcess(), kGivenUpStatus);
    } else if (tries >= kTicksUntilEnded) {
        host_.failRun(L"the dialog \"" + framework::textOf(dialog) + L"\" does not close");
        EndDialog(dialog, IDCANCEL);
    } else {
        PostMessageW(dialog, WM_CLOSE, 0, 0);
    }
}

}  // namespace drafthost::dialogs
