#include "module/binding/variant.h"

#include <new>
#include <utility>

namespace tessary {

namespace {

void check(HRESULT result) {
    if (FAILED(result)) {
        throw std::bad_alloc();
    }
}

}  // namespace

Variant::Variant(const Variant& other) {
    VariantInit(&value_);
    // Only reads its source, although it is not declared so.
    check(VariantCopy(&value_, const_cast<VARIANT*>(&other.value_)));
}

Variant& Variant::operator=(Variant other) noexcept {
    std::swap(value_, other.value_);
    return *this;
}

Variant Variant::fromReal(double value) {
    Variant result;
    result.value_.vt = VT_R8;
    result.value_.dblVal = value;
    return result;
}

Variant Variant::fromBool(bool value) {
    Variant result;
    result.value_.vt = VT_BOOL;
    result.value_.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return result;
}

Variant Variant::fromShort(short value) {
    Variant result;
    result.value_.vt = VT_I2;
    result.value_.iVal = value;
    return result;
}

Variant Variant::null() {
    Variant result;
    result.value_.vt = VT_NULL;
    return result;
}

Variant Variant::fromArray(SafeArray array) {
    Variant result;
    result.value_.vt = VT_ARRAY | VT_VARIANT;
    result.value_.parray = array.release();
    return result;
}

VARIANT* Variant::receive() {
    VariantClear(&value_);
    return &value_;
}

VARIANT Variant::release() {
    const VARIANT released = value_;
    VariantInit(&value_);
    return released;
}

Variant variantFromString(const std::wstring& text) {
    Variant result;
    BSTR copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (!copy) {
        throw std::bad_alloc();
    }
    result.value_.vt = VT_BSTR;
    result.value_.bstrVal = copy;
    return result;
}

Variant variantFromLong(int number) {
    Variant result;
    result.value_.vt = VT_I4;
    result.value_.lVal = number;
    return result;
}

std::wstring textOf(BSTR text) {
    return text ? std::wstring(text, SysStringLen(text)) : std::wstring();
}

SafeArray makeVariantArray(std::span<Variant> elements) {
    SafeArray array(SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(elements.size())));
    void* data = nullptr;
    if (!array || FAILED(SafeArrayAccessData(array.get(), &data))) {
        throw std::bad_alloc();
    }
    VARIANT* target = static_cast<VARIANT*>(data);
    for (Variant& element : elements) {
        *target++ = element.release();
    }
    SafeArrayUnaccessData(array.get());
    return array;
}

VariantElements::VariantElements(SAFEARRAY* array) {
    VARTYPE type = VT_EMPTY;
    if (!array || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) ||
        type != VT_VARIANT) {
        return;
    }
    void* data = nullptr;
    check(SafeArrayAccessData(array, &data));
    array_ = array;
    values_ = std::span(static_cast<const VARIANT*>(data), array->rgsabound[0].cElements);
}

VariantElements::~VariantElements() {
    if (array_) {
        SafeArrayUnaccessData(array_);
    }
}

}  // namespace tessary
