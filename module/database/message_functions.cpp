#include "module/database/message_functions.h"

#include "host/api/editor.h"
#include "module/binding/message_box.h"

#include <windows.h>

#include <cstdlib>
#include <string_view>

namespace tessary {

namespace {

constexpr unsigned simpleBeep = 0xFFFFFFFF;

struct Sound {
    std::wstring_view kind;
    unsigned type;
};

constexpr Sound sounds[] = {
    {L"?", MB_ICONQUESTION},    {L"*", MB_ICONASTERISK}, {L"HAND", MB_ICONHAND},
    {L"!", MB_ICONEXCLAMATION}, {L"OK", MB_OK},
};

// The style becomes (style AND kept) OR added.
struct StyleKeyword {
    std::wstring_view word;
    unsigned kept;
    unsigned added;
};

// Buttons replace the whole style, icons and default buttons add to it: programs give the buttons first, and
// what stands before them has no effect.
constexpr unsigned nothing = 0;
constexpr unsigned everything = ~0U;
constexpr StyleKeyword styleKeywords[] = {
    {L"ABORT", nothing, MB_ABORTRETRYIGNORE},
    {L"OK", nothing, MB_OK},
    {L"OKCANCEL", nothing, MB_OKCANCEL},
    {L"RETRYCANCEL", nothing, MB_RETRYCANCEL},
    {L"YESNO", nothing, MB_YESNO},
    {L"YESNOCANCEL", nothing, MB_YESNOCANCEL},
    {L"!", everything, MB_ICONEXCLAMATION},
    {L"i", everything, MB_ICONINFORMATION},
    {L"?", everything, MB_ICONQUESTION},
    {L"STOP", everything, MB_ICONSTOP},
    {L"DEF1", everything, MB_DEFBUTTON1},
    {L"DEF2", everything, MB_DEFBUTTON2},
    {L"DEF3", everything, MB_DEFBUTTON3},
};

struct ButtonWord {
    int button;
    const wchar_t* word;
};

constexpr ButtonWord buttonWords[] = {
    {IDOK, L"OK"},         {IDCANCEL, L"CANCEL"}, {IDABORT, L"ABORT"}, {IDRETRY, L"RETRY"},
    {IDIGNORE, L"IGNORE"}, {IDYES, L"YES"},       {IDNO, L"NO"},
};

unsigned soundOf(const std::wstring& kind) {
    for (const Sound& sound : sounds) {
        if (sound.kind == kind) {
            return sound.type;
        }
    }
    return simpleBeep;
}

unsigned applyKeyword(unsigned style, const std::wstring& word) {
    for (const StyleKeyword& keyword : styleKeywords) {
        if (keyword.word == word) {
            return (style & keyword.kept) | keyword.added;
        }
    }
    return style;
}

void returnButton(int pressed) {
    for (const ButtonWord& known : buttonWords) {
        if (known.button == pressed) {
            acedRetStr(known.word);
        }
    }
}

}  // namespace

HandlerStatus beep() {
    MessageBeep(simpleBeep);
    acedRetT();
    return HandlerStatus::success;
}

HandlerStatus messageBeep() {
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring kind;
    if (readString(cursor, kind)) {
        MessageBeep(soundOf(kind));
    }
    acedRetT();
    return HandlerStatus::success;
}

HandlerStatus messageBox() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring text;
    std::wstring caption;
    if (!readString(cursor, text) || !readString(cursor, caption)) {
        return HandlerStatus::wrongType;
    }
    returnButton(showMessageBox(text, caption, readMessageBoxStyle(cursor)));
    return HandlerStatus::success;
}

HandlerStatus libraryRandomNumber() {
    acedRetInt(std::rand());
    return HandlerStatus::success;
}

unsigned readMessageBoxStyle(ArgCursor& keywords) {
    readListBegin(keywords);
    unsigned style = 0;
    std::wstring word;
    while (readString(keywords, word)) {
        style = applyKeyword(style, word);
    }
    return style;
}

}  // namespace tessary
