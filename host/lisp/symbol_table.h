#pragma once

// The names of one interpreter. Names are compared without case and kept in upper case.

#include "host/lisp/value.h"

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

namespace drafthost::lisp {

class SymbolTable {
public:
    // The address is stable for the life of the table.
    Symbol* intern(std::wstring_view name);
    // null when no symbol has this name
    Symbol* find(std::wstring_view name) const;
    // in order of creation
    const std::deque<Symbol>& all() const { return symbols_; }

private:
    std::deque<Symbol> symbols_;
    std::unordered_map<std::wstring_view, Symbol*> byName_;
};

}  // namespace drafthost::lisp
