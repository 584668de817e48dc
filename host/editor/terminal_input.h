#pragma once

// The drafter at a terminal, or whatever is connected to standard input: one line of text an answer.

#include <functional>
#include <istream>
#include <optional>
#include <string>

#include "host/editor/command_line.h"
#include "host/editor/input_source.h"

namespace drafthost::editor {

// Lines of UTF-8 text; the host's prompt loop and the prompts of programs share one.
class LineReader {
public:
    // Answers nothing at the end of the input.
    using Reader = std::function<std::optional<std::string>()>;
    LineReader();  // standard input; a line that is Esc when interruptReading() was called
    explicit LineReader(Reader reader) : reader_(std::move(reader)) {}
    std::optional<std::wstring> next();

private:
    Reader reader_;
    std::string pending_;  // read but not handed out: standard input comes in blocks
    bool ended_ = false;
};

// Ctrl-C: ends a wait for standard input, or the next one when nobody waits. Any thread.
void interruptReading();
void forgetInterruption();

class TerminalInput final : public InputSource {
public:
    // echo: the lines are printed, because no terminal shows them.
    TerminalInput(LineReader& lines, CommandLine& commandLine, bool echo, Dialogs dialogs = Dialogs::Answered)
        : lines_(lines), commandLine_(commandLine), echo_(echo), dialogs_(dialogs) {}
    Answer next(const InputRequest& request) override;
    // A message box with one button is shown as text and closed; others are asked like a prompt. A dialog is
    // told when it is new, and takes the actions of answers files, or the text of one of its buttons.
    Answer nextForBox(const BoxRequest& box) override;
    bool refuse(const Answer& answer, const std::wstring& waitedFor, const std::wstring& complaint) override;
    bool answersDialogs() const override { return dialogs_ == Dialogs::Answered; }
    bool needsEcho() const override { return echo_; }

private:
    // ending: what happens at the end of the input.
    std::optional<std::wstring> read(const wchar_t* ending);
    std::optional<std::wstring> readAtBox();
    Answer nextForMessageBox(const BoxRequest& box);
    Answer actionOf(const std::wstring& line, const BoxRequest& box);

    LineReader& lines_;
    CommandLine& commandLine_;
    bool echo_;
    Dialogs dialogs_;
    bool warned_ = false;
    bool hinted_ = false;
};

}  // namespace drafthost::editor
