#include "host/editor/terminal_input.h"

#include <windows.h>

#include <cwctype>
#include <thread>

#include "host/database/names.h"
#include "host/editor/answers_file.h"
#include "host/lisp/utf8.h"

namespace drafthost::editor {

namespace {

const wchar_t* const kEscape = L"\x1b";
const wchar_t* const kHint =
    L"Type an action: press OK, type #ID TEXT, row #ID ROW, show #ID, cancel or another one of answers "
    L"files.\n";

std::wstring trimmed(const std::wstring& text) {
    const std::size_t first = text.find_first_not_of(L" \t");
    return first == std::wstring::npos ? L"" : text.substr(first, text.find_last_not_of(L" \t") + 1 - first);
}

HANDLE makeEvent(BOOL staysSet) {
    return CreateEventW(nullptr, staysSet, FALSE, nullptr);
}

// Standard input, read by a thread of its own: a read from a pipe cannot be called off. The thread lives as
// long as the process.
struct StandardInput {
    HANDLE wanted = makeEvent(FALSE), there = makeEvent(TRUE), interrupted = makeEvent(FALSE);
    std::string block;  // the thread's, from `wanted` to `there`; empty: the end
    bool reading = false;

    void readBlocks() {
        for (;;) {
            WaitForSingleObject(wanted, INFINITE);
            char bytes[4096];
            DWORD count = 0;
            const BOOL good = ReadFile(GetStdHandle(STD_INPUT_HANDLE), bytes, sizeof bytes, &count, nullptr);
            block.assign(bytes, good ? count : 0);
            SetEvent(there);
        }
    }
};

StandardInput& standardInput() {
    // Never destroyed: the thread may still be reading.
    static StandardInput* const input = [] {
        auto* const made = new StandardInput;
        std::thread([made] { made->readBlocks(); }).detach();
        return made;
    }();
    return *input;
}

// Nothing when it was interrupted; what comes later is then the next one's.
std::optional<std::string> readStandardInput() {
    StandardInput& input = standardInput();
    if (!input.reading)
        SetEvent(input.wanted);
    input.reading = true;
    const HANDLE events[] = {input.there, input.interrupted};
    if (WaitForMultipleObjects(2, events, FALSE, INFINITE) != WAIT_OBJECT_0)
        return std::nullopt;
    ResetEvent(input.there);
    input.reading = false;
    return std::move(input.block);
}

std::optional<std::string> readBlockLine(std::string& pending, bool& ended) {
    for (;;) {
        const std::size_t end = pending.find('\n');
        if (end != std::string::npos || (ended && !pending.empty())) {
            std::string line = pending.substr(0, end);
            pending.erase(0, end == std::string::npos ? end : end + 1);
            return line;
        }
        if (ended)
            return std::nullopt;
        const std::optional<std::string> block = readStandardInput();
        if (!block)
            return "\x1b";
        ended = block->empty();
        pending += *block;
    }
}

}  // namespace

void interruptReading() {
    SetEvent(standardInput().interrupted);
}

void forgetInterruption() {
    ResetEvent(standardInput().interrupted);
}

LineReader::LineReader() : reader_([this] { return readBlockLine(pending_, ended_); }) {}

std::optional<std::wstring> LineReader::next() {
    std::optional<std::string> line = reader_();
    if (!line)
        return std::nullopt;
    if (!line->empty() && line->back() == '\r')
        line->pop_back();
    return lisp::fromUtf8(*line);
}

std::optional<std::wstring> TerminalInput::read(const wchar_t* ending) {
    commandLine_.flush();
    std::optional<std::wstring> line = lines_.next();
    if (line && !echo_)
        commandLine_.lineEndedOutside();
    if (line || warned_)
        return line;
    warned_ = true;
    reportOnStandardError(std::wstring(L"warning: the input has ended: the host waits and ") + ending);
    return line;
}

Answer TerminalInput::next(const InputRequest&) {
    const std::optional<std::wstring> line = read(L"gets an empty response");
    if (!line)
        return Answer::of(Answer::Kind::Exhausted);
    if (*line == kEscape)
        return Answer::of(Answer::Kind::Cancel);
    return Answer::ofText(Answer::Kind::Typed, *line);
}

std::optional<std::wstring> TerminalInput::readAtBox() {
    std::optional<std::wstring> line = read(L"the dialog is cancelled");
    if (line && echo_)
        commandLine_.write(*line + L"\n");
    return line;
}

Answer TerminalInput::nextForMessageBox(const BoxRequest& box) {
    commandLine_.freshLine();
    commandLine_.write(box.caption + L": " + box.text);
    if (box.buttons.size() <= 1) {
        commandLine_.write(L"\n");
        return box.buttons.empty() ? Answer::of(Answer::Kind::Cancel)
                                   : Answer::ofText(Answer::Kind::Press, box.buttons.front());
    }
    std::wstring names;
    for (const std::wstring& button : box.buttons)
        names += (names.empty() ? L"" : L"/") + button;
    commandLine_.write(L" [" + names + L"]: ");
    const std::optional<std::wstring> line = readAtBox();
    if (!line)
        return Answer::of(Answer::Kind::Exhausted);
    return line->empty() || *line == kEscape ? Answer::of(Answer::Kind::Cancel)
                                             : Answer::ofText(Answer::Kind::Press, *line);
}

// Exhausted for a line that is none, which is told.
Answer TerminalInput::actionOf(const std::wstring& line, const BoxRequest& box) {
    const std::wstring text = trimmed(line);
    if (text.empty())
        return Answer::of(Answer::Kind::Show);
    if (text == kEscape)
        return Answer::of(Answer::Kind::Cancel);
    for (const std::wstring& button : box.buttons) {
        if (equalNames(button, text))
            return Answer::ofText(Answer::Kind::Press, button);
    }
    Answer answer;
    std::wstring complaint = parseAction(text, answer);
    if (complaint.empty())
        return answer;
    complaint[0] = static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(complaint[0])));
    refuse(answer, {}, complaint + L".");
    return Answer::of(Answer::Kind::Exhausted);
}

Answer TerminalInput::nextForBox(const BoxRequest& box) {
    if (box.isMessageBox)
        return nextForMessageBox(box);
    if (!box.contents.empty()) {
        commandLine_.freshLine();
        commandLine_.write(box.caption + L"\n" + box.contents);
        if (!hinted_)
            commandLine_.write(kHint);
        hinted_ = true;
    }
    for (;;) {
        commandLine_.freshLine();
        commandLine_.write(box.caption + L": ");
        const std::optional<std::wstring> line = readAtBox();
        if (!line)
            return Answer::of(Answer::Kind::Exhausted);
        const Answer answer = actionOf(*line, box);
        if (answer.kind != Answer::Kind::Exhausted)
            return answer;
    }
}

bool TerminalInput::refuse(const Answer&, const std::wstring&, const std::wstring& complaint) {
    commandLine_.freshLine();
    commandLine_.write(complaint + L"\n");
    return true;
}

}  // namespace drafthost::editor
