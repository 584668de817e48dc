#pragma once

// What the command line shows: text as UTF-8 to standard output, buffered, flushed before the host waits.

#include <functional>
#include <string>
#include <string_view>

#include "host/lisp/console.h"

namespace drafthost::editor {

class CommandLine final : public lisp::Console {
public:
    // sink: takes the bytes. The default one is the process's standard output.
    using Sink = std::function<void(std::string_view utf8)>;
    CommandLine();
    explicit CommandLine(Sink sink);
    ~CommandLine() override;

    void write(std::wstring_view text) override;
    void flush() override;
    // Ends a line that was begun.
    void freshLine();
    bool atLineStart() const override { return atLineStart_; }
    // Somebody else showed the end of a line: the drafter's Return in a terminal.
    void lineEndedOutside() { atLineStart_ = endedOutside_ = true; }
    // As freshLine, and an end of line where only the drafter's Return has shown one, so that what follows
    // begins a line also in a file that this goes to.
    void ownFreshLine();

private:
    Sink sink_;
    std::string buffer_;
    wchar_t pendingSurrogate_ = 0;  // first half of a character whose second half is still to come
    bool atLineStart_ = true;
    bool endedOutside_ = false;
};

// Diagnostics of the host itself: one line on standard error, behind all that was shown so far.
void reportOnStandardError(const std::wstring& message);

}  // namespace drafthost::editor
