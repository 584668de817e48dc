#pragma once

// What all parts of the parser share while one statement is read: the tokens ahead, what is expected of them,
// the errors, and the limits that keep recursion within a small stack.

#include "server/sql/lexer.h"
#include "server/sql/syntax.h"
#include "server/values/error.h"

#include <array>

namespace tessary::server::sql {

class ParserContext {
public:
    // The statement must outlive the context.
    explicit ParserContext(TextView statement) : lexer_(statement) {}

    // The token `ahead` places (0 to 2) behind the next one. Throws for one that cannot be read.
    const Token& peek(std::size_t ahead = 0);
    Token take();

    bool atWord(TextView word, std::size_t ahead = 0);
    bool atSymbol(TextView symbol, std::size_t ahead = 0);
    // A word that can be a name without brackets, or any name in brackets.
    bool atName(std::size_t ahead = 0);
    bool atStatementEnd() { return peek().kind == TokenKind::end || atSymbol(u";"); }

    bool acceptWord(TextView word);
    bool acceptSymbol(TextView symbol);
    void expectWord(TextView word);
    void expectSymbol(TextView symbol);
    Text takeName();
    // Behind the dot of t.f, where words of the language are names too.
    Text takeFieldName();
    // Nothing but a semicolon may follow.
    void expectEnd();

    // The statement from one place to another, without blanks at its end.
    Text written(std::size_t from, std::size_t end) const;

    // Throws the error of the statement's kind: the reason, the next token and its place.
    [[noreturn]] void fail(TextView reason);
    // The same with another code.
    [[noreturn]] void fail(ErrorCode code, TextView reason);

    ErrorCode errorCode = ErrorCode::syntax;
    int placeholders = 0;

    // Height of the tallest tree made since somebody set this to 0. Throws tooComplex above the limit.
    int tallest = 0;
    void raiseTallest(int height);

private:
    friend class Nesting;
    [[noreturn]] void fail(ErrorCode code, TextView reason, const Token& token) const;

    Lexer lexer_;
    std::array<Token, 4> ahead_;  // a ring
    std::size_t first_ = 0;
    std::size_t count_ = 0;
    int depth_ = 0;
};

// One level of recursion, or several for a function that takes much stack. Throws tooComplex below the
// deepest.
class Nesting {
public:
    explicit Nesting(ParserContext& context, int levels = 1);
    ~Nesting() { context_.depth_ -= levels_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

private:
    ParserContext& context_;
    int levels_;
};

}  // namespace tessary::server::sql
