#include "module/binding/variant_conversion.h"

#include "host/api/editor.h"
#include "module/binding/result_list.h"

#include <cmath>
#include <cwctype>
#include <string_view>
#include <vector>

namespace tessary {

namespace {

constexpr const wchar_t* listBeginMarker = L"*RTLB*";
constexpr const wchar_t* listEndMarker = L"*RTLE*";
constexpr const wchar_t* dotMarker = L"*RTDOTE*";
constexpr std::wstring_view newRecordMarker = L"*NewRecord*";

const wchar_t* structureMarker(short type) {
    switch (type) {
        case RTLB: return listBeginMarker;
        case RTLE: return listEndMarker;
        case RTDOTE: return dotMarker;
        default: return nullptr;
    }
}

ValueList textNode(const wchar_t* text) {
    return ownValueList(acutBuildList(RTSTR, text, RTNONE));
}

ValueList realNode(double value) {
    return ownValueList(acutBuildList(RTREAL, std::isnan(value) ? 0.0 : value, RTNONE));
}

ValueList longNode(std::int32_t value) {
    return ownValueList(acutBuildList(RTLONG, value, RTNONE));
}

// The characters of a text where they lie; a null character follows them. Large results are made of these.
std::wstring_view charactersOf(BSTR text) {
    return text ? std::wstring_view(text, SysStringLen(text)) : std::wstring_view(L"");
}

std::wstring_view trimmedView(std::wstring_view text) {
    const auto isSpace = [](wchar_t character) { return std::iswspace(character) != 0; };
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

// Fields that keep their blanks still say "empty" with one blank: the server cannot store the empty text.
std::wstring_view untrimmed(std::wstring_view text) {
    return text == L" " ? text.substr(1) : text;
}

ValueList stringNode(BSTR value, bool trim) {
    const std::wstring_view whole = charactersOf(value);
    const std::wstring_view text = trim ? trimmedView(whole) : untrimmed(whole);
    const bool reachesEnd = text.data() + text.size() == whole.data() + whole.size();
    return reachesEnd ? textNode(text.data()) : textNode(std::wstring(text).c_str());
}

bool isNewRecord(const VARIANT& value) {
    return value.vt == VT_BSTR && charactersOf(value.bstrVal) == newRecordMarker;
}

// Element as the name of a pair; what is no text has the empty name.
const wchar_t* nameText(const VARIANT& value) {
    return value.vt == VT_BSTR && value.bstrVal ? value.bstrVal : L"";
}

// Appends the pair whose name is element i; a name that ends the array is left without a value.
void addPairAt(ResultList& list, std::span<const VARIANT> elements, std::size_t i) {
    const Variant nothing;
    const VARIANT& value = i + 1 < elements.size() ? elements[i + 1] : nothing.get();
    addNamedVariant(list, nameText(elements[i]), value);
}

void addNode(ResultList& list, int type) {
    list.append(ownValueList(acutNewRb(type)));
}

void returnElements(void (*append)(ResultList&, SAFEARRAY*), SAFEARRAY* array) {
    ResultList list;
    beginResultList(list);
    append(list, array);
    endAndReturnList(list);
}

// Takes the pair at the node and returns the node after it. An incomplete or unusable pair is left out.
const resbuf* takePair(const resbuf* name, std::vector<Variant>& elements, bool& complete) {
    Variant nameVariant;
    const bool isNamed = name->restype == RTSTR && valueToVariant(*name, nameVariant);
    if (!isNamed) {
        acedRetNil();
        complete = false;
    }
    const resbuf* value = name->rbnext;
    if (value && value->restype == RTDOTE) {
        value = value->rbnext;
    }
    if (!value) {
        complete = false;
        return nullptr;
    }
    Variant valueVariant = Variant::null();
    if (value->restype != RTLE && !valueToVariant(*value, valueVariant)) {
        complete = false;
    } else if (isNamed) {
        elements.push_back(std::move(nameVariant));
        elements.push_back(std::move(valueVariant));
    }
    return value->rbnext;
}

}  // namespace

std::wstring trimmed(const std::wstring& text) {
    return std::wstring(trimmedView(text));
}

std::wstring dateText(DATE date) {
    BSTR formatted = nullptr;
    if (FAILED(VarBstrFromDate(date, LOCALE_USER_DEFAULT, 0, &formatted))) {
        return L"Invalid DateTime";
    }
    const std::unique_ptr<OLECHAR, decltype(&SysFreeString)> owner(formatted, &SysFreeString);
    return trimmed(textOf(formatted));
}

bool valueToVariant(const resbuf& node, Variant& variant) {
    switch (node.restype) {
        case RTREAL: variant = Variant::fromReal(node.resval.rreal); return true;
        case RTSHORT: variant = variantFromLong(node.resval.rint); return true;
        case RTLONG: variant = variantFromLong(node.resval.rlong); return true;
        case RTSTR: variant = variantFromString(node.resval.rstring ? node.resval.rstring : L""); return true;
        case RTNIL: variant = Variant(); return true;
        case RTT: variant = Variant::fromBool(true); return true;
        default: return false;
    }
}

ValueList variantToValueList(const VARIANT& variant, bool trim) {
    switch (variant.vt) {
        case VT_I2: return longNode(variant.iVal);
        case VT_I4: return longNode(variant.lVal);
        case VT_UI1: return longNode(variant.bVal);
        // LISP code compares truth values with 0, so they stay numbers.
        case VT_BOOL: return longNode(variant.boolVal);
        case VT_R4: return realNode(variant.fltVal);
        case VT_R8: return realNode(variant.dblVal);
        case VT_DATE: return textNode(dateText(variant.date).c_str());
        case VT_BSTR: return stringNode(variant.bstrVal, trim);
        default: return ownValueList(acutNewRb(RTNIL));
    }
}

bool listToVariantArray(const resbuf* list, SafeArray& array) {
    std::vector<Variant> elements;
    for (; list; list = list->rbnext) {
        Variant element;
        if (const wchar_t* marker = structureMarker(list->restype)) {
            element = variantFromString(marker);
        } else if (!valueToVariant(*list, element)) {
            return false;
        }
        elements.push_back(std::move(element));
    }
    array = makeVariantArray(elements);
    return true;
}

bool pairsToVariantArray(const resbuf* list, SafeArray& array) {
    std::vector<Variant> elements;
    bool complete = true;
    while (list) {
        list = structureMarker(list->restype) ? list->rbnext : takePair(list, elements, complete);
    }
    if (!complete || elements.empty()) {
        return false;
    }
    array = makeVariantArray(elements);
    return true;
}

void addArrayValues(ResultList& list, SAFEARRAY* array) {
    const VariantElements elements(array);
    for (const VARIANT& element : elements.values()) {
        addVariantValue(list, element);
    }
}

void addArrayPairs(ResultList& list, SAFEARRAY* array) {
    const VariantElements elements(array);
    for (std::size_t i = 0; i < elements.values().size(); i += 2) {
        addPairAt(list, elements.values(), i);
    }
}

void addArrayRecords(ResultList& list, SAFEARRAY* array) {
    const VariantElements elements(array);
    bool isRecordOpen = false;
    for (std::size_t i = 0; i < elements.values().size(); ++i) {
        const VARIANT& element = elements.values()[i];
        if (isNewRecord(element)) {
            if (isRecordOpen) {
                addNode(list, RTLE);
            }
            addNode(list, RTLB);
            isRecordOpen = true;
        } else if (isRecordOpen) {
            addPairAt(list, elements.values(), i++);
        } else {
            addVariantValue(list, element);
        }
    }
    if (isRecordOpen) {
        addNode(list, RTLE);
    }
}

void arrayToValueList(SAFEARRAY* array) {
    returnElements(addArrayValues, array);
}

void pairArrayToValueList(SAFEARRAY* array) {
    returnElements(addArrayPairs, array);
}

void recordArrayToValueList(SAFEARRAY* array) {
    returnElements(addArrayRecords, array);
}

}  // namespace tessary
