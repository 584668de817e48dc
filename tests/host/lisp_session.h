#pragma once

// An interpreter with a recording console, for tests of the language.

#include "host/lisp/interpreter.h"
#include "host/lisp/utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace drafthost::lisp::testing {

class RecordingConsole final : public Console {
public:
    void write(std::wstring_view text) override { printed += toUtf8(text); }
    bool atLineStart() const override { return printed.empty() || printed.back() == '\n'; }

    std::string printed;
};

class Session {
public:
    explicit Session(const Limits& limits = {}) : interpreter(console, limits) {}

    // What the command line shows when the text is typed: each form's value, or the error. Without the
    // last line end.
    std::string type(std::string_view text) {
        console.printed.clear();
        interpreter.evaluateAndPrint(fromUtf8(text));
        if (console.printed.ends_with('\n')) {
            console.printed.pop_back();
        }
        return console.printed;
    }

    // What is shown when the text is loaded as a program file.
    std::string load(std::string_view text, std::wstring_view name = L"program.lsp") {
        console.printed.clear();
        interpreter.evaluateTopLevel(fromUtf8(text), name);
        return console.printed;
    }

    RecordingConsole console;
    Interpreter interpreter;
};

struct Case {
    const char* input;
    const char* shown;
};

// Each case in an interpreter of its own.
template <std::size_t count>
void expectShown(const Case (&cases)[count]) {
    for (const auto& [input, shown] : cases) {
        Session session;
        EXPECT_EQ(session.type(input), shown) << input;
    }
}

}  // namespace drafthost::lisp::testing
