#include "host/dialogs/dialog_steps.h"

#include <memory>

#include "framework/window.h"
#include "framework/window_picture.h"
#include "host/database/names.h"
#include "host/dialogs/dialog_contents.h"
#include "host/dialogs/dialog_input.h"
#include "host/dialogs/dialog_windows.h"
#include "host/documents/host.h"
#include "host/documents/host_services.h"

namespace drafthost::dialogs {

namespace {

using editor::Answer;

// ---- Buttons

bool isButton(HWND window) {
    return (SendMessageW(window, WM_GETDLGCODE, 0, 0) & DLGC_BUTTON) != 0;
}

HWND findButton(HWND dialog, const Answer& answer) {
    if (answer.control != 0) {
        const HWND button = usableControl(dialog, answer.control);
        if (!isButton(button))
            throw DialogComplaint{nameOfControl(answer.control) + L" is no button."};
        return button;
    }
    const std::wstring text = withoutAmpersand(answer.text);
    HWND found = nullptr;
    for (HWND button : buttonsOf(dialog)) {
        if (equalNames(withoutAmpersand(framework::textOf(button)), text) &&
            (!found || !IsWindowEnabled(found))) {
            found = button;
        }
    }
    if (!found)
        throw DialogComplaint{L"There is no such button."};
    if (!IsWindowEnabled(found))
        throw DialogComplaint{L"The button \"" + text + L"\" is disabled."};
    return found;
}

Steps stepsOfPress(const Answer& answer, HWND dialog) {
    Steps steps;
    addClick(steps, findButton(dialog, answer));
    return steps;
}

// BST_ value
LRESULT checkState(HWND button) {
    return SendMessageW(button, BM_GETCHECK, 0, 0);
}

Steps stepsOfCheck(const Answer& answer, HWND dialog) {
    const HWND button = usableControl(dialog, answer.control);
    const LONG style = GetWindowLongW(button, GWL_STYLE) & BS_TYPEMASK;
    const bool radio = style == BS_RADIOBUTTON || style == BS_AUTORADIOBUTTON;
    const bool threeStates = style == BS_3STATE || style == BS_AUTO3STATE;
    if (!hasClass(button, L"Button") ||
        !(radio || threeStates || style == BS_CHECKBOX || style == BS_AUTOCHECKBOX))
        throw DialogComplaint{nameOfControl(answer.control) + L" is no check box or radio button."};
    const LRESULT wanted = answer.on ? BST_CHECKED : BST_UNCHECKED;
    if (checkState(button) == wanted)
        return {};
    if (radio && !answer.on) {
        throw DialogComplaint{nameOfControl(answer.control) +
                              L" is a radio button, which is only cleared by another one."};
    }
    Steps steps;
    addClick(steps, button);
    if (threeStates) {
        steps.push_back([=] {
            return IsWindow(button) && checkState(button) != wanted ? Progress::Done : Progress::Finished;
        });
        addClick(steps, button);
    }
    return steps;
}

// ---- Texts

HWND editFieldOf(HWND control) {
    if (hasClass(control, L"ComboBoxEx32"))
        control = GetWindow(control, GW_CHILD);
    COMBOBOXINFO info{};
    info.cbSize = sizeof info;
    if (hasClass(control, L"ComboBox") && GetComboBoxInfo(control, &info))
        return info.hwndItem != control ? info.hwndItem : nullptr;
    return (SendMessageW(control, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0 ? control : nullptr;
}

void focus(HWND dialog, HWND control) {
    PostMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
}

Steps stepsOfType(const Answer& answer, HWND dialog) {
    const HWND control = usableControl(dialog, answer.control);
    const HWND edit = editFieldOf(control);
    if (!edit)
        throw DialogComplaint{nameOfControl(answer.control) + L" takes no text."};
    if ((GetWindowLongW(edit, GWL_STYLE) & ES_READONLY) != 0)
        throw DialogComplaint{nameOfControl(answer.control) + L" is read-only."};
    Steps steps;
    steps.push_back(once([=] { focus(GetParent(control), edit); }));
    steps.push_back(once([=, text = answer.text] { typeOver(edit, text); }));
    return steps;
}

// ---- Lists

// An entry's text by the two messages that a list box or a combo box has for it.
std::wstring entryText(HWND list, UINT lengthMessage, UINT textMessage, int index) {
    const LRESULT length = SendMessageW(list, lengthMessage, static_cast<WPARAM>(index), 0);
    if (length < 0)
        return {};
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    const LRESULT copied =
        SendMessageW(list, textMessage, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<std::size_t>(copied > 0 ? copied : 0));
    return text;
}

int entry(HWND list, UINT countMessage, UINT lengthMessage, UINT textMessage, const std::wstring& wanted) {
    const auto count = static_cast<int>(SendMessageW(list, countMessage, 0, 0));
    int alike = -1;
    for (int i = 0; i < count; ++i) {
        const std::wstring text = entryText(list, lengthMessage, textMessage, i);
        if (text == wanted)
            return i;
        if (alike < 0 && equalNames(text, wanted))
            alike = i;
    }
    return alike;
}

// Where to click at the entry, which is scrolled into view.
POINT placeOfEntry(HWND list, int index) {
    RECT area{};
    SendMessageW(list, LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&area));
    RECT client{}, seen{};
    GetClientRect(list, &client);
    if (!IntersectRect(&seen, &area, &client)) {
        SendMessageW(list, LB_SETTOPINDEX, static_cast<WPARAM>(index), 0);
        SendMessageW(list, LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&area));
        IntersectRect(&seen, &area, &client);
    }
    return middleOf(seen);
}

[[noreturn]] void complainOfEntry(const std::wstring& text) {
    throw DialogComplaint{L"There is no entry \"" + text + L"\"."};
}

Steps stepsOfListBox(HWND list, const std::wstring& text) {
    const int index = entryOfList(list, text);
    if (index < 0)
        complainOfEntry(text);
    Steps steps;
    const bool toggles = (GetWindowLongW(list, GWL_STYLE) & LBS_MULTIPLESEL) != 0;
    if (!toggles || SendMessageW(list, LB_GETSEL, static_cast<WPARAM>(index), 0) <= 0)
        addClick(steps, list, [=] { return placeOfEntry(list, index); });
    return steps;
}

Steps stepsOfChoose(const Answer& answer, HWND dialog) {
    HWND control = usableControl(dialog, answer.control);
    if (hasClass(control, L"ListBox"))
        return stepsOfListBox(control, answer.text);
    if (hasClass(control, L"ComboBoxEx32"))
        control = GetWindow(control, GW_CHILD);
    if (!hasClass(control, L"ComboBox"))
        throw DialogComplaint{nameOfControl(answer.control) + L" is no list."};
    Steps steps;
    addPick(steps, control, answer.text);
    return steps;
}

COMBOBOXINFO comboParts(HWND combo) {
    COMBOBOXINFO info{};
    info.cbSize = sizeof info;
    if (!GetComboBoxInfo(combo, &info))
        throw DialogComplaint{L"The drop-down has been closed."};
    return info;
}

bool isListSeen(HWND combo) {
    const bool simple = (GetWindowLongW(combo, GWL_STYLE) & 3) == CBS_SIMPLE;
    return simple || SendMessageW(combo, CB_GETDROPPEDSTATE, 0, 0) != 0;
}

// ---- Keys and the dialog's window

Steps stepsOfKey(HWND dialog, const editor::KeyStroke& key) {
    return {once([=] { pressKey(dialog, key); })};
}

Steps stepsOfScreenshot(const Answer& answer, HWND dialog) {
    return {once([=, file = fullPath(answer.text)] {
        std::wstring problem;
        if (!framework::saveWindowPicture(dialog, file, problem))
            throw DialogComplaint{L"The picture cannot be saved: " + problem};
    })};
}

// What the control holds, at the command line; without a control what is in the dialog.
Steps stepsOfShow(const Answer& answer, HWND dialog) {
    const HWND control = answer.control != 0 ? findControl(dialog, answer.control) : nullptr;
    if (answer.control != 0 && !control)
        throw DialogComplaint{L"There is no control #" + std::to_wstring(answer.control) + L"."};
    return {once([=] {
        editor::CommandLine& commandLine = theHost().commandLine();
        commandLine.freshLine();
        commandLine.write(control ? rowsOf(control) : contentsOf(dialog));
    })};
}

Steps stepsOfResize(const Answer& answer, HWND dialog) {
    if ((GetWindowLongW(dialog, GWL_STYLE) & WS_THICKFRAME) == 0)
        throw DialogComplaint{L"The dialog's size is fixed."};
    return {once([=, width = answer.width, height = answer.height] {
        SetWindowPos(dialog, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    })};
}

}  // namespace

Steps stepsOf(const Answer& answer, HWND dialog) {
    switch (answer.kind) {
        case Answer::Kind::Press: return stepsOfPress(answer, dialog);
        case Answer::Kind::Type: return stepsOfType(answer, dialog);
        case Answer::Kind::Check: return stepsOfCheck(answer, dialog);
        case Answer::Kind::Choose: return stepsOfChoose(answer, dialog);
        case Answer::Kind::GridRow: return stepsOfGridRow(answer, usableControl(dialog, answer.control));
        case Answer::Kind::GridCell: return stepsOfGridCell(answer, usableControl(dialog, answer.control));
        case Answer::Kind::GridDoubleClick:
            return stepsOfDoubleClick(answer, usableControl(dialog, answer.control));
        case Answer::Kind::Key:
            return stepsOfKey(dialog, editor::parseKey(answer.text).value_or(editor::KeyStroke{}));
        case Answer::Kind::Screenshot: return stepsOfScreenshot(answer, dialog);
        case Answer::Kind::Show: return stepsOfShow(answer, dialog);
        case Answer::Kind::Resize: return stepsOfResize(answer, dialog);
        case Answer::Kind::Enter: return stepsOfKey(dialog, {.virtualKey = VK_RETURN});
        case Answer::Kind::Cancel: return stepsOfKey(dialog, {.virtualKey = VK_ESCAPE});
        default: throw DialogComplaint{L"It is no action of a dialog."};
    }
}

std::wstring nameOfControl(int id) {
    return L"The control #" + std::to_wstring(id);
}

HWND usableControl(HWND dialog, int id) {
    const HWND control = findControl(dialog, id);
    if (!control)
        throw DialogComplaint{L"There is no control #" + std::to_wstring(id) + L"."};
    if (!IsWindowVisible(control))
        throw DialogComplaint{nameOfControl(id) + L" is hidden."};
    if (!IsWindowEnabled(control))
        throw DialogComplaint{nameOfControl(id) + L" is disabled."};
    return control;
}

Step once(std::function<void()> action) {
    return [action = std::move(action)] {
        action();
        return Progress::Done;
    };
}

void addClick(Steps& steps, HWND window, std::function<POINT()> place) {
    steps.push_back(once([=] { pressMouse(window, place()); }));
    steps.push_back([=] {
        if (!IsWindow(window))
            return Progress::Finished;
        releaseMouse(window, place());
        return Progress::Done;
    });
}

void addClick(Steps& steps, HWND window) {
    addClick(steps, window, [=] { return middleOf(window); });
}

void addPick(Steps& steps, HWND combo, const std::wstring& text) {
    const int index = entryOfCombo(combo, text);
    if (index < 0)
        complainOfEntry(text);
    if (!isListSeen(combo))
        addClick(steps, combo, [=] { return middleOf(comboParts(combo).rcButton); });
    const HWND list = comboParts(combo).hwndList;
    steps.push_back([=] { return isListSeen(combo) ? Progress::Done : Progress::Again; });
    addClick(steps, list, [=] { return placeOfEntry(list, index); });
}

std::wstring textOfEntry(HWND list, int index) {
    return hasClass(list, L"ListBox") ? entryText(list, LB_GETTEXTLEN, LB_GETTEXT, index)
                                      : entryText(list, CB_GETLBTEXTLEN, CB_GETLBTEXT, index);
}

int entryOfList(HWND list, const std::wstring& text) {
    return entry(list, LB_GETCOUNT, LB_GETTEXTLEN, LB_GETTEXT, text);
}

int entryOfCombo(HWND combo, const std::wstring& text) {
    return entry(combo, CB_GETCOUNT, CB_GETLBTEXTLEN, CB_GETLBTEXT, text);
}

}  // namespace drafthost::dialogs
