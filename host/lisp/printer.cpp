#include "host/lisp/printer.h"

#include "host/lisp/file_object.h"
#include "host/lisp/functions.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <vector>

namespace drafthost::lisp {

namespace {

std::wstring widen(std::string_view ascii) {
    return std::wstring(ascii.begin(), ascii.end());
}

std::wstring hexadecimal(std::uint64_t number) {
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, 16).ptr;
    return widen(std::string_view(digits, end));
}

std::wstring addressText(const Object* object) {
    const std::wstring digits = hexadecimal(reinterpret_cast<std::uintptr_t>(object));
    return std::wstring(16 - digits.size(), L'0') + digits;
}

std::wstring functionText(const Object* object) {
    std::wstring name = L"-lambda-";
    if (object->type == Type::builtin) {
        name = static_cast<const BuiltinObject*>(object)->definition.name;
        for (wchar_t& letter : name) {
            letter = letter >= L'a' && letter <= L'z' ? static_cast<wchar_t>(letter - 32) : letter;
        }
    } else if (object->type == Type::external) {
        name = static_cast<const ExternalObject*>(object)->name;
    } else if (const Symbol* symbol = static_cast<const UserFunctionObject*>(object)->name) {
        name = symbol->name;
    }
    return L"#<" + std::wstring(typeName(object->type)) + L" @" + addressText(object) + L" " + name + L">";
}

std::wstring objectText(const Object* object) {
    switch (object->type) {
        case Type::entityName:
            return L"<Entity name: " + hexadecimal(static_cast<const EntityNameObject*>(object)->name.first) +
                   L">";
        case Type::selectionSet: {
            const auto& set = static_cast<const SelectionSetObject*>(object)->set;
            return L"<Selection set: " + hexadecimal(static_cast<std::uint32_t>(set ? set->number() : 0)) +
                   L">";
        }
        case Type::file: return L"#<file \"" + static_cast<const FileObject*>(object)->name + L"\">";
        case Type::caughtError: return L"#<%catch-all-apply-error%>";
        default: return functionText(object);
    }
}

void appendEscaped(const std::wstring& text, std::wstring& out) {
    out += L'"';
    for (const wchar_t character : text) {
        switch (character) {
            case L'"': out += L"\\\""; break;
            case L'\\': out += L"\\\\"; break;
            case L'\n': out += L"\\n"; break;
            case L'\t': out += L"\\t"; break;
            case L'\r': out += L"\\r"; break;
            case L'\x1b': out += L"\\e"; break;
            default:
                if (character < 0x20) {
                    out += L"\\0";
                    out += static_cast<wchar_t>(L'0' + character / 8);
                    out += static_cast<wchar_t>(L'0' + character % 8);
                } else {
                    out += character;
                }
        }
    }
    out += L'"';
}

void appendAtom(Value value, PrintStyle style, std::wstring& out) {
    if (value.isNil()) {
        out += L"nil";
    } else if (value.isInteger()) {
        out += std::to_wstring(value.asInteger());
    } else if (value.isReal()) {
        out += formatReal(value.asReal());
    } else if (value.isSymbol()) {
        out += value.asSymbol()->name;
    } else if (!value.isString()) {
        out += objectText(value.asObject());
    } else if (style == PrintStyle::readable) {
        appendEscaped(value.asString(), out);
    } else {
        out += value.asString();
    }
}

}  // namespace

std::wstring formatReal(double number) {
    if (!std::isfinite(number)) {
        return std::isnan(number) ? L"1.#QNAN" : number < 0 ? L"-1.#INF" : L"1.#INF";
    }
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, 6).ptr;
    std::wstring text = widen(std::string_view(digits, end));
    if (text.find(L'.') == std::wstring::npos) {
        const std::size_t exponent = text.find(L'e');
        text.insert(exponent == std::wstring::npos ? text.size() : exponent, L".0");
    }
    return text;
}

bool printValue(Value value, PrintStyle style, std::wstring& out, std::size_t limit) {
    std::vector<Value> rests;  // what is still to print of each open list
    for (;;) {
        while (value.isPair()) {
            out += L'(';
            rests.push_back(value.cdr());
            value = value.car();
        }
        appendAtom(value, style, out);
        while (!rests.empty() && !rests.back().isPair()) {
            if (!rests.back().isNil()) {
                out += L" . ";
                appendAtom(rests.back(), style, out);
            }
            out += L')';
            rests.pop_back();
        }
        if (out.size() > limit) {
            out.resize(limit);
            return false;
        }
        if (rests.empty()) {
            return true;
        }
        out += L' ';
        value = rests.back().car();
        rests.back() = rests.back().cdr();
    }
}

}  // namespace drafthost::lisp
