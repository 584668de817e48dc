#include "module/drawing/text_helpers.h"

#include "module/binding/number_format.h"
#include "module/binding/truncation.h"
#include "module/binding/variant_conversion.h"

namespace tessary {

namespace {

double variantToReal(const VARIANT& variant) {
    switch (variant.vt) {
        case VT_R4: return variant.fltVal;
        case VT_R8: return variant.dblVal;
        default: return variantToInt(variant);
    }
}

}  // namespace

std::wstring intToString(int number) {
    return std::to_wstring(number);
}

std::wstring sqlQuote(const std::wstring& text) {
    if (text.empty()) {
        return L"' '";
    }
    std::wstring quoted = L"'";
    for (const wchar_t character : text) {
        quoted.append(character == L'\'' ? 2 : 1, character);
    }
    return quoted + L"'";
}

int variantToInt(const VARIANT& variant) {
    switch (variant.vt) {
        case VT_I2: return variant.iVal;
        case VT_BOOL: return variant.boolVal;
        case VT_I4: return variant.lVal;
        case VT_R4: return truncatedToInt(variant.fltVal);
        case VT_R8: return truncatedToInt(variant.dblVal);
        case VT_UI1: return variant.bVal;
        default: return 0;
    }
}

std::wstring variantToIntText(const VARIANT& variant) {
    return variant.vt == VT_NULL ? std::wstring() : intToString(variantToInt(variant));
}

std::wstring variantToText(const VARIANT& variant, int decimals) {
    switch (variant.vt) {
        case VT_I2:
        case VT_I4:
        case VT_UI1: return intToString(variantToInt(variant));
        case VT_R4:
        case VT_R8: return formatFixedWithThousands(variantToReal(variant), decimals);
        case VT_DATE: return dateText(variant.date);
        case VT_BSTR: return trimmed(textOf(variant.bstrVal));
        case VT_BOOL: return variant.boolVal ? L"-1" : L"0";
        default: return {};
    }
}

std::wstring variantToRealText(const VARIANT& variant, int decimals, bool trimZeros) {
    return variant.vt == VT_NULL ? std::wstring() : formatFixed(variantToReal(variant), decimals, trimZeros);
}

}  // namespace tessary
