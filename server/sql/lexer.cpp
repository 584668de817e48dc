#include "server/sql/lexer.h"

#include <charconv>
#include <limits>

namespace tessary::server::sql {

namespace {

bool isBlank(char16_t character) {
    return character == u' ' || (character >= u'\t' && character <= u'\r') || character == 0xA0 ||
           character == 0x3000 || character == 0xFEFF;
}

bool isDigit(char16_t character) {
    return character >= u'0' && character <= u'9';
}

// 16 and more: not a digit.
int digitValue(char16_t character) {
    if (isDigit(character)) {
        return character - u'0';
    }
    const char16_t lower = static_cast<char16_t>(character | 0x20);
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : 16;
}

// Typographic blanks, dashes and quotes are no letters: a text pasted with them gets an error and not a
// strange name.
bool isLetter(char16_t character) {
    if (character < 0x80) {
        const char16_t lower = static_cast<char16_t>(character | 0x20);
        return (lower >= u'a' && lower <= u'z') || character == u'_';
    }
    const bool ordinal = character == 0xAA || character == 0xB5 || character == 0xBA;
    const bool sign = character == 0xD7 || character == 0xF7 ||
                      (character >= 0x2000 && character <= 0x206F) ||
                      (character >= 0x3000 && character <= 0x3003) || character == 0xFEFF;
    return ordinal || (character >= 0xC0 && !sign);
}

bool isNamePart(char16_t character) {
    return isLetter(character) || isDigit(character);
}

TextView trimmed(TextView text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Whole numbers of 32 bits stay whole. False when the number is out of range.
bool numberOf(TextView text, Value& value) {
    const std::string digits(text.begin(), text.end());
    const char* const end = digits.data() + digits.size();
    std::int32_t whole = 0;
    if (const auto read = std::from_chars(digits.data(), end, whole);
        read.ec == std::errc() && read.ptr == end) {
        value = whole;
        return true;
    }
    double number = 0;
    const auto read = std::from_chars(digits.data(), end, number);
    value = number;
    return read.ec == std::errc() && read.ptr == end;
}

}  // namespace

bool isWord(TextView text, TextView word) {
    if (text.size() != word.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t character = text[i];
        const bool capital = character >= u'A' && character <= u'Z';
        if ((capital ? character + 32 : character) != word[i]) {
            return false;
        }
    }
    return true;
}

Token Lexer::next() {
    if (!skipBlanks()) {
        return bad(u"the comment has no end", 2);
    }
    const char16_t first = at(place_);
    const char16_t second = at(place_ + 1);
    if (place_ == statement_.size()) {
        return finish(TokenKind::end, place_);
    }
    if (isLetter(first)) {
        return word();
    }
    // Behind a name the dot of "t.1" leads to a field, even though no plain name begins with a digit.
    const bool adjacent =
        place_ > 0 && (isNamePart(statement_[place_ - 1]) || statement_[place_ - 1] == u']');
    if (isDigit(first) || (first == u'.' && isDigit(second) && !adjacent)) {
        return number();
    }
    if (first == u'&' && (second == u'H' || second == u'h') && digitValue(at(place_ + 2)) < 16) {
        return basedNumber(16);
    }
    if (first == u'&' && (second == u'O' || second == u'o') && digitValue(at(place_ + 2)) < 8) {
        return basedNumber(8);
    }
    switch (first) {
        case u'"':
        case u'\'': return quotedText(first);
        case u'[': return quotedName(u']');
        case u'`': return quotedName(u'`');
        case u'#': return date();
        default: return symbol();
    }
}

// False: a comment begins here that does not end.
bool Lexer::skipBlanks() {
    while (place_ < statement_.size()) {
        if (isBlank(statement_[place_])) {
            ++place_;
        } else if (statement_[place_] == u'/' && at(place_ + 1) == u'*') {
            const std::size_t end = statement_.find(u"*/", place_ + 2);
            if (end == TextView::npos) {
                return false;
            }
            place_ = end + 2;
        } else {
            break;
        }
    }
    return true;
}

Token Lexer::finish(TokenKind kind, std::size_t end) {
    Token token;
    token.kind = kind;
    token.offset = place_;
    token.length = end - place_;
    place_ = end;
    return token;
}

Token Lexer::bad(TextView problem, std::size_t length) {
    Token token = finish(TokenKind::bad, place_ + length);
    token.text = problem;
    return token;
}

Token Lexer::constant(Value value, std::size_t end) {
    Token token = finish(TokenKind::constant, end);
    token.value = std::move(value);
    return token;
}

// A dollar sign ends the older names of text functions, as in "left$".
Token Lexer::word() {
    std::size_t end = place_ + 1;
    while (isNamePart(at(end))) {
        ++end;
    }
    const TextView text = statement_.substr(place_, end - place_);
    Token token = finish(TokenKind::word, end + (at(end) == u'$' && at(end + 1) == u'(' ? 1 : 0));
    token.text = text;
    return token;
}

Token Lexer::number() {
    std::size_t end = place_;
    const auto skipDigits = [&] {
        while (isDigit(at(end))) {
            ++end;
        }
    };
    skipDigits();
    if (at(end) == u'.') {
        ++end;
        skipDigits();
    }
    if (at(end) == u'e' || at(end) == u'E') {
        const std::size_t sign = at(end + 1) == u'+' || at(end + 1) == u'-' ? 1 : 0;
        if (isDigit(at(end + 1 + sign))) {
            end += 1 + sign;
            skipDigits();
        }
    }
    Value value;
    if (!numberOf(statement_.substr(place_, end - place_), value)) {
        return bad(u"the number is out of range", end - place_);
    }
    return constant(std::move(value), end);
}

// &HFF and &O17, of at most 32 bits; the highest bit is the sign, as in a long integer.
Token Lexer::basedNumber(int base) {
    std::size_t end = place_ + 2;
    std::uint64_t number = 0;
    for (; digitValue(at(end)) < base; ++end) {
        number = number * static_cast<unsigned>(base) + static_cast<unsigned>(digitValue(at(end)));
        if (number > std::numeric_limits<std::uint32_t>::max()) {
            return bad(u"the number is out of range", end + 1 - place_);
        }
    }
    return constant(static_cast<std::int32_t>(static_cast<std::uint32_t>(number)), end);
}

Token Lexer::quotedText(char16_t quote) {
    Text text;
    std::size_t from = place_ + 1;
    for (;;) {
        const std::size_t end = statement_.find(quote, from);
        if (end == TextView::npos) {
            return bad(u"the text has no closing quote", statement_.size() - place_);
        }
        text += statement_.substr(from, end - from);
        if (at(end + 1) != quote) {
            return constant(std::move(text), end + 1);
        }
        text += quote;
        from = end + 2;
    }
}

Token Lexer::quotedName(char16_t close) {
    const std::size_t end = statement_.find(close, place_ + 1);
    if (end == TextView::npos) {
        return bad(close == u']' ? TextView(u"the name has no closing bracket")
                                 : u"the name has no closing backquote",
                   statement_.size() - place_);
    }
    const TextView text = statement_.substr(place_ + 1, end - place_ - 1);
    if (text.empty()) {
        return bad(u"the name is empty", end + 1 - place_);
    }
    Token token = finish(TokenKind::name, end + 1);
    token.text = text;
    return token;
}

Token Lexer::date() {
    const std::size_t end = statement_.find(u'#', place_ + 1);
    if (end == TextView::npos) {
        return bad(u"the date has no closing #", statement_.size() - place_);
    }
    Date value;
    if (!parseDate(trimmed(statement_.substr(place_ + 1, end - place_ - 1)), value)) {
        return bad(u"this is not a date", end + 1 - place_);
    }
    return constant(value, end + 1);
}

Token Lexer::symbol() {
    static constexpr TextView single = u"()+-*/\\^&=<>,.;!?";
    static constexpr TextView pairs[] = {u"<>", u"<=", u">="};
    std::size_t length = 1;
    for (const TextView pair : pairs) {
        if (statement_.substr(place_, 2) == pair) {
            length = 2;
        }
    }
    if (single.find(statement_[place_]) == TextView::npos) {
        return bad(u"this character has no meaning here", 1);
    }
    const TextView text = statement_.substr(place_, length);
    Token token = finish(TokenKind::symbol, place_ + length);
    token.text = text;
    return token;
}

}  // namespace tessary::server::sql
