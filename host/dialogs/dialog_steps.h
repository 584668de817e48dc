#pragma once

// What one action of the scripted drafter does in a dialog, as small steps. Each step looks at the dialog and
// posts what mouse or keyboard would send; the next one is run when the dialog has dealt with that and waits
// again. Between two steps other dialogs may have come and gone.

#include <windows.h>

#include <deque>
#include <functional>
#include <string>

#include "host/editor/answer.h"

namespace drafthost::dialogs {

enum class Progress {
    Done,      // go on with the next step
    Again,     // this step is run again, a bounded number of times
    Finished,  // the steps that are left have nothing to do
};
using Step = std::function<Progress()>;
using Steps = std::deque<Step>;

// Thrown by steps and what makes them: the action cannot be done, with the reason as a sentence.
struct DialogComplaint {
    std::wstring text;
};

// The steps of an action that isForDialog, Enter or Cancel. Throws DialogComplaint.
Steps stepsOf(const editor::Answer& answer, HWND dialog);

// ---- Of use to the actions

// The control with the id, which can be seen and used. Throws DialogComplaint.
HWND usableControl(HWND dialog, int id);
std::wstring nameOfControl(int id);
Step once(std::function<void()> action);
// A click at a place that is asked for at each of its messages: what was clicked at may move under the mouse.
void addClick(Steps& steps, HWND window, std::function<POINT()> place);
void addClick(Steps& steps, HWND window);
// Picks the entry in the combo box's list; opens the list where it is not open. Throws DialogComplaint, also
// the steps, when there is none.
void addPick(Steps& steps, HWND combo, const std::wstring& text);
// The text of an entry of a list box or combo box; empty when there is none.
std::wstring textOfEntry(HWND list, int index);
// The number of the entry of a list box or combo box, its case ignored only where no other fits; -1 for none.
int entryOfList(HWND list, const std::wstring& text);
int entryOfCombo(HWND combo, const std::wstring& text);

// The actions on grids (grid_steps.cpp).
Steps stepsOfGridRow(const editor::Answer& answer, HWND grid);
Steps stepsOfGridCell(const editor::Answer& answer, HWND grid);
Steps stepsOfDoubleClick(const editor::Answer& answer, HWND grid);

}  // namespace drafthost::dialogs
