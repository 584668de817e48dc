#pragma once

// What SQLite is taught: the order of texts, and the functions of the product's SQL dialect. A function that
// fails raises an error whose text is "#NNNN text", with the number of an ErrorCode in front.

struct sqlite3;

namespace tessary::server {

// Name of the collation of all text and memo columns: compareText.
inline constexpr const char* textCollation = "TESSARY_TEXT";

// Every connection needs this before it does anything else: the collation, the dialect's functions under
// names that begin with ts_, and conversion functions for assignments. Throws std::bad_alloc.
void registerFunctions(sqlite3* connection);

}  // namespace tessary::server
