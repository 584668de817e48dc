#include "host/lisp/reader.h"

#include "host/lisp/characters.h"

#include <charconv>
#include <cstdint>
#include <limits>

namespace drafthost::lisp {

namespace {

constexpr wchar_t byteOrderMark = 0xFEFF;

bool isBlank(wchar_t character) {
    return character <= L' ' || character == 0xA0 || character == byteOrderMark;
}

bool isDelimiter(wchar_t character) {
    return isBlank(character) || std::wstring_view(L"()'\";").find(character) != std::wstring_view::npos;
}

std::size_t skipDigits(std::wstring_view token, std::size_t from) {
    while (from < token.size() && isDigit(token[from])) {
        ++from;
    }
    return from;
}

int hexadecimalDigit(wchar_t character) {
    if (isDigit(character)) {
        return character - L'0';
    }
    const wchar_t lower = static_cast<wchar_t>(character | 0x20);
    return lower >= L'a' && lower <= L'f' ? lower - L'a' + 10 : -1;
}

// [sign] digits [. [digits]] [e [sign] digits]
bool looksLikeNumber(std::wstring_view token, bool& isInteger) {
    const std::size_t start = !token.empty() && (token[0] == L'+' || token[0] == L'-') ? 1 : 0;
    std::size_t end = skipDigits(token, start);
    if (end == start) {
        return false;
    }
    isInteger = end == token.size();
    if (end < token.size() && token[end] == L'.') {
        end = skipDigits(token, end + 1);
    }
    if (end < token.size() && (token[end] == L'e' || token[end] == L'E')) {
        std::size_t digits = end + 1;
        if (digits < token.size() && (token[digits] == L'+' || token[digits] == L'-')) {
            ++digits;
        }
        end = skipDigits(token, digits);
        return end > digits && end == token.size();
    }
    return end == token.size();
}

}  // namespace

std::optional<Value> parseNumber(std::wstring_view token) {
    bool isInteger = false;
    if (!looksLikeNumber(token, isInteger)) {
        return std::nullopt;
    }
    if (token[0] == L'+') {
        token.remove_prefix(1);
    }
    const std::string narrow(token.begin(), token.end());
    if (isInteger) {
        std::int32_t number = 0;
        if (std::from_chars(narrow.data(), narrow.data() + narrow.size(), number).ec == std::errc()) {
            return Value::integer(number);
        }
    }
    double number = 0;
    if (std::from_chars(narrow.data(), narrow.data() + narrow.size(), number).ec != std::errc()) {
        const bool tiny = narrow.find("e-") != std::string::npos || narrow.find("E-") != std::string::npos;
        number = tiny ? 0.0 : std::numeric_limits<double>::infinity();
        number = narrow[0] == '-' ? -number : number;
    }
    return Value::real(number);
}

Reader::Reader(Interpreter& interpreter, std::wstring_view text, std::wstring_view sourceName)
    : interpreter_(interpreter), text_(text), source_(sourceName) {}

void Reader::raise(std::wstring_view message, int line) const {
    LispError error(std::wstring(message), ErrorKind::reader);
    if (!source_.empty()) {
        error.setLocation(std::wstring(source_), line);
    }
    throw error;
}

void Reader::advance() {
    line_ += text_[position_] == L'\n';
    ++position_;
}

void Reader::skipBlockComment() {
    const int start = line_;
    while (position_ + 1 < text_.size()) {
        if (text_[position_] == L'|' && text_[position_ + 1] == L';') {
            position_ += 2;
            return;
        }
        advance();
    }
    raise(L"malformed list on input", start);
}

void Reader::skipBlanks() {
    while (!atEnd()) {
        if (isBlank(text_[position_])) {
            advance();
        } else if (text_[position_] != L';') {
            return;
        } else if (position_ + 1 < text_.size() && text_[position_ + 1] == L'|') {
            position_ += 2;
            skipBlockComment();
        } else {
            while (!atEnd() && text_[position_] != L'\n') {
                advance();
            }
        }
    }
}

wchar_t Reader::readOctal() {
    int code = 0;
    for (int count = 0; count < 3 && !atEnd() && text_[position_] >= L'0' && text_[position_] <= L'7';
         ++count) {
        code = code * 8 + (text_[position_++] - L'0');
    }
    return static_cast<wchar_t>(code);
}

// \U+XXXX behind the U; leaves the position unchanged when there is none.
std::optional<wchar_t> Reader::readUnicodeEscape() {
    if (position_ + 5 > text_.size() || text_[position_] != L'+') {
        return std::nullopt;
    }
    int code = 0;
    for (std::size_t index = 1; index <= 4; ++index) {
        const int digit = hexadecimalDigit(text_[position_ + index]);
        if (digit < 0) {
            return std::nullopt;
        }
        code = code * 16 + digit;
    }
    position_ += 5;
    return static_cast<wchar_t>(code);
}

// The character an escape stands for; a backslash before any other character is dropped.
wchar_t Reader::readEscape(int startLine) {
    if (atEnd()) {
        raise(L"malformed string on input", startLine);
    }
    const wchar_t letter = text_[position_];
    if (letter >= L'0' && letter <= L'7') {
        return readOctal();
    }
    advance();
    switch (letter) {
        case L'n': return L'\n';
        case L't': return L'\t';
        case L'r': return L'\r';
        case L'e': return L'\x1b';
        case L'U': return readUnicodeEscape().value_or(letter);
        default: return letter;
    }
}

Value Reader::readString() {
    const int start = line_;
    ++position_;
    std::wstring content;
    while (!atEnd()) {
        const wchar_t character = text_[position_];
        advance();
        if (character == L'"') {
            return interpreter_.string(std::move(content));
        }
        content += character == L'\\' ? readEscape(start) : character;
    }
    raise(L"malformed string on input", start);
}

std::wstring_view Reader::readToken() {
    const std::size_t start = position_;
    while (!atEnd() && !isDelimiter(text_[position_])) {
        ++position_;
    }
    return text_.substr(start, position_ - start);
}

void Reader::append(Open& list, Value value) const {
    if (list.dot == DotState::filled) {
        raise(L"misplaced dot on input", line_);
    }
    if (list.dot == DotState::waiting) {
        list.last->cdr = value;
        list.dot = DotState::filled;
        return;
    }
    const Value pair = interpreter_.cons(value, Value());
    if (list.last) {
        list.last->cdr = pair;
    } else {
        list.head = pair;
    }
    list.last = pair.asPair();
}

void Reader::readDot() {
    if (open_.empty() || open_.back().isQuote || !open_.back().last || open_.back().dot != DotState::none) {
        raise(L"misplaced dot on input", line_);
    }
    open_.back().dot = DotState::waiting;
}

Value Reader::closeList() {
    ++position_;
    if (open_.empty()) {
        raise(L"extra right paren on input", line_);
    }
    if (open_.back().isQuote) {
        raise(L"syntax error", line_);
    }
    if (open_.back().dot == DotState::waiting) {
        raise(L"misplaced dot on input", line_);
    }
    const Value list = open_.back().head;
    open_.pop_back();
    return list;
}

// Puts a finished value into what is open around it; answers it when nothing is.
std::optional<Value> Reader::complete(Value value) {
    while (!open_.empty() && open_.back().isQuote) {
        value = interpreter_.list({interpreter_.symbol(L"QUOTE"), value});
        open_.pop_back();
    }
    if (open_.empty()) {
        return value;
    }
    append(open_.back(), value);
    return std::nullopt;
}

std::optional<Value> Reader::readElement() {
    const std::wstring_view token = readToken();
    if (token == L".") {
        readDot();
        return std::nullopt;
    }
    if (token[0] == L'.' && token.size() > 1 && isDigit(token[1])) {
        raise(L"misplaced dot on input", line_);
    }
    const std::optional<Value> number = parseNumber(token);
    return complete(number ? *number : interpreter_.symbol(token));
}

std::optional<Value> Reader::next() {
    open_.clear();
    for (;;) {
        skipBlanks();
        if (atEnd()) {
            if (!open_.empty()) {
                raise(open_.front().isQuote ? L"syntax error" : L"malformed list on input",
                      open_.front().line);
            }
            return std::nullopt;
        }
        std::optional<Value> finished;
        switch (text_[position_]) {
            case L'(':
            case L'\'':
                open_.push_back(Open{line_, text_[position_] == L'\'', {}});
                ++position_;
                break;
            case L')': finished = complete(closeList()); break;
            case L'"': finished = complete(readString()); break;
            default: finished = readElement();
        }
        if (finished) {
            return finished;
        }
    }
}

}  // namespace drafthost::lisp
