// car, cdr and their combinations up to four levels: one function for each path, made from its letters.

#include "host/lisp/language_functions.h"

#include <cstddef>

namespace drafthost::lisp {

namespace {

// The path of a name such as caddr, applied from its last letter to its first. nil has nil as both halves.
template <char... letters>
Value access(Interpreter&, Arguments arguments) {
    static constexpr char path[] = {letters...};
    Value value = arguments[0];
    for (std::size_t index = sizeof path; index-- > 0;) {
        if (value.isNil()) {
            return value;
        }
        if (!value.isPair()) {
            raiseBadArgumentType(L"consp", value);
        }
        value = path[index] == 'a' ? value.car() : value.cdr();
    }
    return value;
}

constexpr BuiltinDefinition table[] = {
    {L"car", access<'a'>, 1, 1, L"(car list) -> first element"},
    {L"cdr", access<'d'>, 1, 1, L"(cdr list) -> all but the first element; second half of a dotted pair"},
    {L"caar", access<'a', 'a'>, 1, 1, L"(caar list) -> (car (car list))"},
    {L"cadr", access<'a', 'd'>, 1, 1, L"(cadr list) -> second element"},
    {L"cdar", access<'d', 'a'>, 1, 1, L"(cdar list) -> (cdr (car list))"},
    {L"cddr", access<'d', 'd'>, 1, 1, L"(cddr list) -> all but the first two elements"},
    {L"caaar", access<'a', 'a', 'a'>, 1, 1, L"(caaar list) -> (car (caar list))"},
    {L"caadr", access<'a', 'a', 'd'>, 1, 1, L"(caadr list) -> (car (cadr list))"},
    {L"cadar", access<'a', 'd', 'a'>, 1, 1, L"(cadar list) -> (car (cdar list))"},
    {L"caddr", access<'a', 'd', 'd'>, 1, 1, L"(caddr list) -> third element"},
    {L"cdaar", access<'d', 'a', 'a'>, 1, 1, L"(cdaar list) -> (cdr (caar list))"},
    {L"cdadr", access<'d', 'a', 'd'>, 1, 1, L"(cdadr list) -> (cdr (cadr list))"},
    {L"cddar", access<'d', 'd', 'a'>, 1, 1, L"(cddar list) -> (cdr (cdar list))"},
    {L"cdddr", access<'d', 'd', 'd'>, 1, 1, L"(cdddr list) -> all but the first three elements"},
    {L"caaaar", access<'a', 'a', 'a', 'a'>, 1, 1, L"(caaaar list) -> (car (caaar list))"},
    {L"caaadr", access<'a', 'a', 'a', 'd'>, 1, 1, L"(caaadr list) -> (car (caadr list))"},
    {L"caadar", access<'a', 'a', 'd', 'a'>, 1, 1, L"(caadar list) -> (car (cadar list))"},
    {L"caaddr", access<'a', 'a', 'd', 'd'>, 1, 1, L"(caaddr list) -> (car (caddr list))"},
    {L"cadaar", access<'a', 'd', 'a', 'a'>, 1, 1, L"(cadaar list) -> (car (cdaar list))"},
    {L"cadadr", access<'a', 'd', 'a', 'd'>, 1, 1, L"(cadadr list) -> (car (cdadr list))"},
    {L"caddar", access<'a', 'd', 'd', 'a'>, 1, 1, L"(caddar list) -> (car (cddar list))"},
    {L"cadddr", access<'a', 'd', 'd', 'd'>, 1, 1, L"(cadddr list) -> fourth element"},
    {L"cdaaar", access<'d', 'a', 'a', 'a'>, 1, 1, L"(cdaaar list) -> (cdr (caaar list))"},
    {L"cdaadr", access<'d', 'a', 'a', 'd'>, 1, 1, L"(cdaadr list) -> (cdr (caadr list))"},
    {L"cdadar", access<'d', 'a', 'd', 'a'>, 1, 1, L"(cdadar list) -> (cdr (cadar list))"},
    {L"cdaddr", access<'d', 'a', 'd', 'd'>, 1, 1, L"(cdaddr list) -> (cdr (caddr list))"},
    {L"cddaar", access<'d', 'd', 'a', 'a'>, 1, 1, L"(cddaar list) -> (cdr (cdaar list))"},
    {L"cddadr", access<'d', 'd', 'a', 'd'>, 1, 1, L"(cddadr list) -> (cdr (cdadr list))"},
    {L"cdddar", access<'d', 'd', 'd', 'a'>, 1, 1, L"(cdddar list) -> (cdr (cddar list))"},
    {L"cddddr", access<'d', 'd', 'd', 'd'>, 1, 1, L"(cddddr list) -> all but the first four elements"},
};

}  // namespace

std::span<const BuiltinDefinition> listAccessFunctions() {
    return table;
}

}  // namespace drafthost::lisp
