#pragma once

// The engine's values as automation values and back.

#include "server/engine/engine.h"

#include <windows.h>

#include <oleauto.h>

namespace tessary::server {

// The caller owns what the functions make. All throw std::bad_alloc.
BSTR newText(TextView text);
// Null is the empty text.
TextView viewOf(BSTR text);
// VT_NULL, VT_BOOL, VT_DATE and VT_BSTR; numbers in the width of the field: VT_UI1, VT_I2, VT_I4, VT_R4,
// VT_R8.
VARIANT variantOf(const Value& value, FieldType type);
// Results of statements have no field's width: VT_I4 and VT_R8.
VARIANT variantOf(const Value& value);
VARIANT variantOf(const Cell& cell);
VARIANT textVariant(TextView text);

// Gives an out parameter its value; what it held before is no value. Script engines do not always align their
// variables.
void assign(VARIANT* target, const VARIANT& value);

inline VARIANT_BOOL variantBool(bool value) {
    return value ? VARIANT_TRUE : VARIANT_FALSE;
}

// What a client passed, directly or by reference. Empty, null and left-out values are null; whole numbers are
// long integers where they fit, otherwise doubles. Throws conversion (3421) for what is no field's value.
Value valueOf(const VARIANT& variant);
// Elements of a one-dimensional array of variants; an empty value has none. Throws invalidArgument (3001) for
// anything else.
std::vector<Value> valuesOf(const VARIANT& array);
// Such an array with names and values by turns. Throws invalidArgument when it has an odd length or a name
// that is no text.
std::vector<FieldValue> fieldValuesOf(const VARIANT& array);

// Variants on their way into an array. Whatever is left in the list is freed with it.
class VariantList {
public:
    VariantList() = default;
    ~VariantList();
    VariantList(const VariantList&) = delete;
    VariantList& operator=(const VariantList&) = delete;

    bool isEmpty() const { return variants_.empty(); }
    // Room for so many more.
    void reserve(std::size_t count);
    // Takes the value over, whether it throws or not.
    void add(VARIANT variant);
    void addText(TextView text) { add(textVariant(text)); }

    // A VT_ARRAY | VT_VARIANT from index 0 with all elements, and an empty list.
    VARIANT releaseArray();

private:
    std::vector<VARIANT> variants_;
};

// The rows of a result in the form in which they cross the interface: "*NewRecord*", name, value, name, value
// ...
class ResultRows : public RowSink {
public:
    void columns(std::span<const Text> names) override;
    void row(std::span<const Cell> cells) override;

    // VT_EMPTY when there was no row.
    VARIANT release();

private:
    std::vector<Text> names_;
    VariantList values_;
};

}  // namespace tessary::server
