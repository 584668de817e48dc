#pragma once

// Ownership of the automation values exchanged with the database server.

#include <windows.h>

#include <oleauto.h>

#include <memory>
#include <span>
#include <string>

namespace tessary {

struct DestroySafeArray {
    void operator()(SAFEARRAY* array) const { SafeArrayDestroy(array); }
};
// An array with its elements; null when there is none.
using SafeArray = std::unique_ptr<SAFEARRAY, DestroySafeArray>;

// A VARIANT that is cleared with this object. Failing automation calls throw std::bad_alloc: they can only be
// short of memory here.
class Variant {
public:
    Variant() noexcept { VariantInit(&value_); }
    Variant(const Variant& other);
    Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
    Variant& operator=(Variant other) noexcept;
    ~Variant() { VariantClear(&value_); }

    static Variant fromReal(double value);
    static Variant fromBool(bool value);
    static Variant fromShort(short value);
    static Variant null();
    static Variant fromArray(SafeArray array);

    const VARIANT& get() const { return value_; }
    VARTYPE type() const { return value_.vt; }
    // The array of VT_VARIANT that the value holds; null for any other value. Stays the value's.
    SAFEARRAY* array() const { return value_.vt == (VT_ARRAY | VT_VARIANT) ? value_.parray : nullptr; }
    // The place for a value that a callee hands over; what was held before is cleared.
    VARIANT* receive();
    // Hands the value to a caller that clears it.
    VARIANT release();

private:
    friend Variant variantFromString(const std::wstring& text);
    friend Variant variantFromLong(int number);
    VARIANT value_;
};

// VT_BSTR and VT_I4.
Variant variantFromString(const std::wstring& text);
Variant variantFromLong(int number);

// Text of a BSTR with all its characters; null is the empty text.
std::wstring textOf(BSTR text);

// A new one-dimensional VT_VARIANT array from index 0. The values are moved out of the elements, which are
// left empty.
SafeArray makeVariantArray(std::span<Variant> elements);

// The elements of a one-dimensional VT_VARIANT array, in place; the array stays locked while this object
// lives. Any other array, and null, counts as empty.
class VariantElements {
public:
    explicit VariantElements(SAFEARRAY* array);
    ~VariantElements();
    VariantElements(const VariantElements&) = delete;
    VariantElements& operator=(const VariantElements&) = delete;

    // From the lower to the upper bound.
    std::span<const VARIANT> values() const { return values_; }

private:
    SAFEARRAY* array_ = nullptr;
    std::span<const VARIANT> values_;
};

}  // namespace tessary
