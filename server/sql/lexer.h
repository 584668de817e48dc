#pragma once

// Cuts the text of a statement into words, names, constants and symbols. Each is read once, in order, so that
// a long statement costs no more than its length.
//
// Two minus signs are two minus signs, not a comment: statements are put together from pieces, and "a - -3"
// written without the blank must not lose the condition behind it. /* ... */ is a comment.

#include "server/values/value.h"

namespace tessary::server::sql {

enum class TokenKind {
    end,
    word,      // a plain name, or a word of the language
    name,      // in brackets or backquotes: never a word of the language
    constant,  // a number, text or date
    symbol,    // an operator or separator
    bad,       // what cannot be read: an opening quote without its end, a stray character
};

struct Token {
    TokenKind kind = TokenKind::end;
    std::size_t offset = 0;  // in the statement, in UTF-16 code units
    std::size_t length = 0;
    Text text;    // word, name and symbol: what it says; bad: what is wrong with it
    Value value;  // constant
};

class Lexer {
public:
    // The statement must outlive the lexer.
    explicit Lexer(TextView statement) : statement_(statement) {}

    // The next token; `end` again and again behind the last one.
    Token next();

    TextView statement() const { return statement_; }

private:
    char16_t at(std::size_t place) const { return place < statement_.size() ? statement_[place] : u'\0'; }
    bool skipBlanks();
    Token finish(TokenKind kind, std::size_t end);
    Token bad(TextView problem, std::size_t length);
    Token constant(Value value, std::size_t end);
    Token word();
    Token number();
    Token basedNumber(int base);
    Token quotedText(char16_t quote);
    Token quotedName(char16_t close);
    Token date();
    Token symbol();

    TextView statement_;
    std::size_t place_ = 0;  // where the token begins that is being read
};

// Words of the language do not depend on case, and are given here in small letters.
bool isWord(TextView text, TextView word);

}  // namespace tessary::server::sql
