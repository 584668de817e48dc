#pragma once

// Texts made of numbers and variants, for statements and list fields.

#include <windows.h>

#include <oaidl.h>

#include <string>

namespace tessary {

std::wstring intToString(int number);
// The text as an SQL literal. The empty text becomes a literal of one blank: the product's tables store
// "empty" so.
std::wstring sqlQuote(const std::wstring& text);

// Fractions are dropped; what is neither a number nor a truth value (-1 or 0) gives 0.
int variantToInt(const VARIANT& variant);
// Empty for VT_NULL.
std::wstring variantToIntText(const VARIANT& variant);
// Reals with at most `decimals` decimals and commas between thousands, dates in the drafter's own format,
// texts trimmed, truth values "-1" and "0", everything else empty.
std::wstring variantToText(const VARIANT& variant, int decimals);
// formatFixed of the value as a real (0 for what is no number); empty for VT_NULL.
std::wstring variantToRealText(const VARIANT& variant, int decimals, bool trimZeros);

}  // namespace tessary
