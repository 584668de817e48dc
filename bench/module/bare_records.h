#pragma once

// (bench-bare-records FILE STATEMENT) -> (((name . value) ...) ...), nil when SQLite does not take it.
//
// The records of a statement read by SQLite alone, in a plain loop that builds the value list that LISP gets.
// Its time is the baseline of bench/database_calls.lsp, taken in the same process.
int bareRecords();
