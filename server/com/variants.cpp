#include "server/com/variants.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <new>

namespace tessary::server {

namespace {

constexpr TextView newRecordMarker = u"*NewRecord*";

// A VARIANT that is cleared with this object.
struct OwnedVariant {
    VARIANT value;
    OwnedVariant() { VariantInit(&value); }
    ~OwnedVariant() { VariantClear(&value); }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;
};

VARIANT emptyVariant(VARTYPE type) {
    VARIANT variant;
    VariantInit(&variant);
    variant.vt = type;
    return variant;
}

VARIANT longVariant(std::int32_t value) {
    VARIANT variant = emptyVariant(VT_I4);
    variant.lVal = value;
    return variant;
}

VARIANT realVariant(double value) {
    VARIANT variant = emptyVariant(VT_R8);
    variant.dblVal = value;
    return variant;
}

VARIANT dateVariant(double days) {
    VARIANT variant = emptyVariant(VT_DATE);
    variant.date = days;
    return variant;
}

VARIANT boolVariant(bool value) {
    VARIANT variant = emptyVariant(VT_BOOL);
    variant.boolVal = variantBool(value);
    return variant;
}

struct VariantMaker {
    VARIANT operator()(const Null&) const { return emptyVariant(VT_NULL); }
    VARIANT operator()(bool value) const { return boolVariant(value); }
    VARIANT operator()(std::int32_t value) const { return longVariant(value); }
    VARIANT operator()(double value) const { return realVariant(value); }
    VARIANT operator()(const Date& value) const { return dateVariant(value.days); }
    VARIANT operator()(const Text& value) const { return textVariant(value); }
};

[[noreturn]] void throwUnusable(VARTYPE type) {
    throw DatabaseError(ErrorCode::conversion, u"A value of automation type " +
                                                   textOf(Value(std::int32_t(type))) + u" cannot be stored.");
}

Value realValue(double value) {
    if (!std::isfinite(value)) {
        throw DatabaseError(ErrorCode::conversion, u"A value is not a finite number.");
    }
    return value;
}

template <class Number>
Value wholeValue(Number value) {
    if (std::in_range<std::int32_t>(value)) {
        return static_cast<std::int32_t>(value);
    }
    return static_cast<double>(value);
}

// Currency and decimal numbers. Their digits do not depend on the user's country.
Value convertedNumber(const VARIANT& variant) {
    OwnedVariant number;
    if (FAILED(
            VariantChangeTypeEx(&number.value, const_cast<VARIANT*>(&variant), LOCALE_INVARIANT, 0, VT_R8))) {
        throwUnusable(variant.vt);
    }
    return realValue(number.value.dblVal);
}

// A variant without VT_BYREF.
Value directValue(const VARIANT& variant) {
    switch (variant.vt) {
        case VT_EMPTY:
        case VT_NULL:
        // A scripting language's left-out argument.
        case VT_ERROR: return Null();
        case VT_BOOL: return variant.boolVal != VARIANT_FALSE;
        case VT_I1: return wholeValue(static_cast<signed char>(variant.cVal));
        case VT_UI1: return wholeValue(variant.bVal);
        case VT_I2: return wholeValue(variant.iVal);
        case VT_UI2: return wholeValue(variant.uiVal);
        case VT_I4: return wholeValue(variant.lVal);
        case VT_INT: return wholeValue(variant.intVal);
        case VT_UI4: return wholeValue(variant.ulVal);
        case VT_UINT: return wholeValue(variant.uintVal);
        case VT_I8: return wholeValue(variant.llVal);
        case VT_UI8: return wholeValue(variant.ullVal);
        case VT_R4: return realValue(variant.fltVal);
        case VT_R8: return realValue(variant.dblVal);
        case VT_DATE: return Date{std::get<double>(realValue(variant.date))};
        case VT_BSTR: return Text(viewOf(variant.bstrVal));
        case VT_CY:
        case VT_DECIMAL: return convertedNumber(variant);
        default: throwUnusable(variant.vt);
    }
}

// What lies behind the reference of scripting languages, which pass their variables themselves. It is still
// theirs.
VARIANT withoutReference(const VARIANT& variant) {
    VARIANT direct = variant;
    if (variant.vt == (VT_BYREF | VT_VARIANT) && variant.pvarVal) {
        std::memcpy(&direct, static_cast<const void*>(variant.pvarVal), sizeof direct);
    }
    return direct;
}

// Null when the value is no array of variants.
SAFEARRAY* arrayOf(const VARIANT& variant) {
    switch (variant.vt) {
        case VT_ARRAY | VT_VARIANT: return variant.parray;
        case VT_BYREF | VT_ARRAY | VT_VARIANT: return variant.pparray ? *variant.pparray : nullptr;
        default: return nullptr;
    }
}

bool isNothing(const VARIANT& variant) {
    return variant.vt == VT_EMPTY || variant.vt == VT_NULL || variant.vt == VT_ERROR;
}

// The elements of an array, in place: the array stays locked while this object lives.
class ArrayElements {
public:
    explicit ArrayElements(const VARIANT& variant) : array_(arrayOf(withoutReference(variant))) {
        if (!array_ && isNothing(withoutReference(variant))) {
            return;
        }
        void* data = nullptr;
        LONG lower = 0;
        LONG upper = -1;
        if (!array_ || SafeArrayGetDim(array_) != 1 || FAILED(SafeArrayGetLBound(array_, 1, &lower)) ||
            FAILED(SafeArrayGetUBound(array_, 1, &upper)) || FAILED(SafeArrayAccessData(array_, &data))) {
            throw DatabaseError(ErrorCode::invalidArgument, u"A one-dimensional array of values is needed.");
        }
        elements_ = {static_cast<const VARIANT*>(data),
                     static_cast<std::size_t>(std::int64_t(upper) - lower + 1)};
        locked_ = true;
    }
    ~ArrayElements() {
        if (locked_) {
            SafeArrayUnaccessData(array_);
        }
    }
    ArrayElements(const ArrayElements&) = delete;
    ArrayElements& operator=(const ArrayElements&) = delete;

    std::span<const VARIANT> get() const { return elements_; }

private:
    SAFEARRAY* array_;
    bool locked_ = false;
    std::span<const VARIANT> elements_;
};

Text fieldName(const VARIANT& variant, std::size_t place) {
    Value name = variant.vt & VT_ARRAY ? Value() : valueOf(variant);
    if (Text* text = std::get_if<Text>(&name)) {
        return std::move(*text);
    }
    throw DatabaseError(ErrorCode::invalidArgument, u"The name of field " +
                                                        textOf(Value(std::int32_t(place))) +
                                                        u" in the list of fields and values is not a text.");
}

}  // namespace

BSTR newText(TextView text) {
    if (text.size() > std::numeric_limits<UINT>::max() / sizeof(OLECHAR)) {
        throw std::bad_alloc();
    }
    BSTR copy =
        SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
    if (!copy) {
        throw std::bad_alloc();
    }
    return copy;
}

TextView viewOf(BSTR text) {
    return text ? TextView(reinterpret_cast<const char16_t*>(text), SysStringLen(text)) : TextView();
}

void assign(VARIANT* target, const VARIANT& value) {
    std::memcpy(static_cast<void*>(target), &value, sizeof value);
}

VARIANT textVariant(TextView text) {
    VARIANT variant = emptyVariant(VT_BSTR);
    variant.bstrVal = newText(text);
    return variant;
}

VARIANT variantOf(const Value& value) {
    return std::visit(VariantMaker(), value);
}

VARIANT variantOf(const Value& value, FieldType type) {
    VARIANT variant = variantOf(value);
    if (variant.vt == VT_I4 && type == FieldType::byte) {
        variant.bVal = static_cast<BYTE>(variant.lVal);
        variant.vt = VT_UI1;
    } else if (variant.vt == VT_I4 && type == FieldType::integer) {
        variant.iVal = static_cast<SHORT>(variant.lVal);
        variant.vt = VT_I2;
    } else if (variant.vt == VT_R8 && type == FieldType::single) {
        variant.fltVal = static_cast<FLOAT>(variant.dblVal);
        variant.vt = VT_R4;
    }
    return variant;
}

VARIANT variantOf(const Cell& cell) {
    switch (cell.kind) {
        case Cell::Kind::yesNo: return boolVariant(cell.integer != 0);
        case Cell::Kind::longInteger: return longVariant(cell.integer);
        case Cell::Kind::number: return realVariant(cell.number);
        case Cell::Kind::date: return dateVariant(cell.number);
        case Cell::Kind::text: return textVariant(cell.text);
        case Cell::Kind::null: break;
    }
    return emptyVariant(VT_NULL);
}

Value valueOf(const VARIANT& variant) {
    if (!(variant.vt & VT_BYREF)) {
        return directValue(variant);
    }
    OwnedVariant direct;
    if (!variant.byref || FAILED(VariantCopyInd(&direct.value, const_cast<VARIANT*>(&variant)))) {
        throwUnusable(variant.vt);
    }
    return directValue(direct.value);
}

std::vector<Value> valuesOf(const VARIANT& array) {
    const ArrayElements elements(array);
    std::vector<Value> values;
    values.reserve(elements.get().size());
    for (const VARIANT& element : elements.get()) {
        values.push_back(valueOf(element));
    }
    return values;
}

std::vector<FieldValue> fieldValuesOf(const VARIANT& array) {
    const ArrayElements elements(array);
    const std::span<const VARIANT> pairs = elements.get();
    if (pairs.size() % 2 != 0) {
        throw DatabaseError(ErrorCode::invalidArgument,
                            u"The list of fields and values ends with a name without a value.");
    }
    std::vector<FieldValue> fields;
    fields.reserve(pairs.size() / 2);
    for (std::size_t i = 0; i < pairs.size(); i += 2) {
        fields.push_back({fieldName(pairs[i], i / 2 + 1), valueOf(pairs[i + 1])});
    }
    return fields;
}

VariantList::~VariantList() {
    for (VARIANT& variant : variants_) {
        VariantClear(&variant);
    }
}

void VariantList::reserve(std::size_t count) {
    // Doubling: rows are reserved one by one.
    if (variants_.capacity() - variants_.size() < count) {
        variants_.reserve(std::max(variants_.size() + count, 2 * variants_.capacity()));
    }
}

void VariantList::add(VARIANT variant) {
    try {
        variants_.push_back(variant);
    } catch (...) {
        VariantClear(&variant);
        throw;
    }
}

VARIANT VariantList::releaseArray() {
    if (variants_.size() > std::numeric_limits<ULONG>::max()) {
        throw std::bad_alloc();
    }
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(variants_.size()));
    void* data = nullptr;
    if (!array || FAILED(SafeArrayAccessData(array, &data))) {
        SafeArrayDestroy(array);
        throw std::bad_alloc();
    }
    // The array takes the texts over; they are not copied.
    std::copy(variants_.begin(), variants_.end(), static_cast<VARIANT*>(data));
    SafeArrayUnaccessData(array);
    variants_.clear();
    VARIANT result = emptyVariant(VT_ARRAY | VT_VARIANT);
    result.parray = array;
    return result;
}

void ResultRows::columns(std::span<const Text> names) {
    names_.assign(names.begin(), names.end());
}

void ResultRows::row(std::span<const Cell> cells) {
    values_.reserve(1 + 2 * cells.size());
    values_.addText(newRecordMarker);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        values_.addText(names_[i]);
        values_.add(variantOf(cells[i]));
    }
}

VARIANT ResultRows::release() {
    return values_.isEmpty() ? emptyVariant(VT_EMPTY) : values_.releaseArray();
}

}  // namespace tessary::server
