#pragma once

// Text from which new drawings are made: one group a line, the code and then the value; a point's coordinates
// follow each other. Metric, A3 layout. Handles are those that drawings usually have.

namespace drafthost {

extern const wchar_t* const kDefaultHeader;
extern const wchar_t* const kDefaultClasses;
extern const wchar_t* const kDefaultTables;   // tables and records
extern const wchar_t* const kDefaultObjects;  // dictionaries first, owners before what they own

}  // namespace drafthost
