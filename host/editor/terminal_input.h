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
    LineReader();  // standard input
    explicit LineReader(Reader reader) : reader_(std::move(reader)) {}
    std::optional<std::wstring> next();

private:
    Reader reader_;
    std::string pending_;  // read but not handed out: standard input comes in blocks
    bool ended_ = false;
};

class TerminalInput final : public InputSource {
public:
    // echo: the lines are printed, because no terminal shows them.
    TerminalInput(LineReader& lines, CommandLine& commandLine, bool echo, Dialogs dialogs = Dialogs::Answered)
        : lines_(lines), commandLine_(commandLine), echo_(echo), dialogs_(dialogs) {}
    Answer next(const InputRequest& request) override;
    // A box with one button is shown as text and closed; others are asked like a prompt.
    Answer nextForBox(const BoxRequest& box) override;
    bool refuse(const Answer& answer, const std::wstring& waitedFor, const std::wstring& complaint) override;
    bool answersDialogs() const override { return dialogs_ == Dialogs::Answered; }
    bool needsEcho() const override { return echo_; }

private:
    std::optional<std::wstring> read();

    LineReader& lines_;
    CommandLine& commandLine_;
    bool echo_;
    Dialogs dialogs_;
    bool warned_ = false;
};

}  // namespace drafthost::editor
