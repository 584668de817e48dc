#include "host/editor/terminal_input.h"

#include <windows.h>

#include "host/lisp/utf8.h"

namespace drafthost::editor {

namespace {

// A block of standard input; empty at its end.
std::string readStandardInput() {
    char block[4096];
    DWORD count = 0;
    if (!ReadFile(GetStdHandle(STD_INPUT_HANDLE), block, sizeof block, &count, nullptr))
        return {};
    return {block, count};
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
        const std::string block = readStandardInput();
        ended = block.empty();
        pending += block;
    }
}

}  // namespace

LineReader::LineReader() : reader_([this] { return readBlockLine(pending_, ended_); }) {}

std::optional<std::wstring> LineReader::next() {
    std::optional<std::string> line = reader_();
    if (!line)
        return std::nullopt;
    if (!line->empty() && line->back() == '\r')
        line->pop_back();
    return lisp::fromUtf8(*line);
}

std::optional<std::wstring> TerminalInput::read() {
    commandLine_.flush();
    std::optional<std::wstring> line = lines_.next();
    if (line && !echo_)
        commandLine_.lineEndedOutside();
    if (line || warned_)
        return line;
    warned_ = true;
    reportOnStandardError(L"warning: the input has ended: the host waits and gets an empty response");
    return line;
}

Answer TerminalInput::next(const InputRequest&) {
    const std::optional<std::wstring> line = read();
    if (!line)
        return Answer::of(Answer::Kind::Exhausted);
    if (*line == L"\x1b")
        return Answer::of(Answer::Kind::Cancel);
    return Answer::ofText(Answer::Kind::Typed, *line);
}

Answer TerminalInput::nextForBox(const BoxRequest& box) {
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
    const std::optional<std::wstring> line = read();
    if (line && echo_)
        commandLine_.write(*line + L"\n");
    if (!line)
        return Answer::of(Answer::Kind::Exhausted);
    return line->empty() ? Answer::of(Answer::Kind::Cancel) : Answer::ofText(Answer::Kind::Press, *line);
}

bool TerminalInput::refuse(const Answer&, const std::wstring&, const std::wstring& complaint) {
    commandLine_.freshLine();
    commandLine_.write(complaint + L"\n");
    return true;
}

}  // namespace drafthost::editor
