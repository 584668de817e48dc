#include "host/lisp/symbol_table.h"

#include "host/lisp/characters.h"

#include <utility>

namespace drafthost::lisp {

Symbol* SymbolTable::intern(std::wstring_view name) {
    std::wstring key = toUpper(name);
    if (const auto found = byName_.find(key); found != byName_.end()) {
        return found->second;
    }
    Symbol& created = symbols_.emplace_back(Value(), std::move(key));
    byName_.emplace(created.name, &created);
    return &created;
}

Symbol* SymbolTable::find(std::wstring_view name) const {
    const auto found = byName_.find(toUpper(name));
    return found == byName_.end() ? nullptr : found->second;
}

}  // namespace drafthost::lisp
