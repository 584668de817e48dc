#pragma once

// Turns program text into values, one form at a time.

#include "host/lisp/interpreter.h"
#include "host/lisp/value.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace drafthost::lisp {

class Reader {
public:
    // Text and source name are not copied. A byte order mark at the start is skipped. Reader errors
    // carry the source name and line.
    Reader(Interpreter& interpreter, std::wstring_view text, std::wstring_view sourceName = {});

    // The next form; nothing at the end of the text. Raises "malformed list on input", "extra right paren
    // on input", "malformed string on input", "misplaced dot on input" or "syntax error". The form is not
    // rooted.
    std::optional<Value> next();

private:
    enum class DotState { none, waiting, filled };

    // A list or quote that is open while reading; nesting takes no native stack.
    struct Open {
        int line;
        bool isQuote;
        Value head;
        Pair* last = nullptr;
        DotState dot = DotState::none;
    };

    bool atEnd() const { return position_ >= text_.size(); }
    void advance();
    void skipBlanks();
    void skipBlockComment();
    [[noreturn]] void raise(std::wstring_view message, int line) const;
    Value readString();
    wchar_t readEscape(int startLine);
    wchar_t readOctal();
    std::optional<wchar_t> readUnicodeEscape();
    std::wstring_view readToken();
    Value closeList();
    std::optional<Value> complete(Value value);
    std::optional<Value> readElement();
    void append(Open& list, Value value) const;
    void readDot();

    Interpreter& interpreter_;
    std::wstring_view text_;
    std::wstring_view source_;
    std::size_t position_ = 0;
    int line_ = 1;
    std::vector<Open> open_;
};

// An integer or real as program text writes it; integers beyond 32 bits become reals. Nothing when the
// token is not a number.
std::optional<Value> parseNumber(std::wstring_view token);

}  // namespace drafthost::lisp
