#pragma once

// Conversion between LISP values and the variants and variant arrays of the database server. Nothing here
// prints.
//
// Variant arrays are one-dimensional arrays of VT_VARIANT. List structure travels through a flat array as
// texts:
// "*RTLB*" and "*RTLE*" for parentheses, "*RTDOTE*" for the dot of a pair, "*NewRecord*" before each record
// of a result.

#include "module/binding/value_list.h"
#include "module/binding/variant.h"

#include <string>

namespace tessary {

class ResultList;

// Numbers, texts, T (VT_BOOL) and nil (VT_EMPTY). False for everything else; the variant is then unchanged.
bool valueToVariant(const resbuf& node, Variant& variant);

// A new one-node list. Integers and VT_BOOL (-1 or 0) give 32-bit integers, VT_R4 and VT_R8 reals (0.0 for
// what is no number), VT_DATE its text, everything without a LISP form nil. trim: texts lose the white space
// at both ends; otherwise they stay as they are, only a single blank becomes the empty text.
ValueList variantToValueList(const VARIANT& variant, bool trim);

// Converts every node, list structure included. False when one could not be converted; array is then
// unchanged.
bool listToVariantArray(const resbuf* list, SafeArray& array);

// Converts dotted pairs, with or without a list around them, to name, value, name, value ... A name without a
// value gets VT_NULL. False when a name is not a text (the LISP result is then nil), a value cannot be
// converted, or there is no pair; array is then unchanged.
bool pairsToVariantArray(const resbuf* list, SafeArray& array);

// Each appends the elements of an array to a list under construction. The values themselves:
void addArrayValues(ResultList& list, SAFEARRAY* array);
// name, value, name, value ... as (name . value) ...; a last name without a value is paired with nil:
void addArrayPairs(ResultList& list, SAFEARRAY* array);
// The same in records, each after a "*NewRecord*": ((name . value) ...) ...; values before the first one stay
// single:
void addArrayRecords(ResultList& list, SAFEARRAY* array);

// Each makes a list of all elements, appended as above, the result of the LISP call.
void arrayToValueList(SAFEARRAY* array);
void pairArrayToValueList(SAFEARRAY* array);
void recordArrayToValueList(SAFEARRAY* array);

// Date and time in the drafter's own format, trimmed; "Invalid DateTime" for a number that is no date.
std::wstring dateText(DATE date);

// The text without white space at both ends.
std::wstring trimmed(const std::wstring& text);

}  // namespace tessary
