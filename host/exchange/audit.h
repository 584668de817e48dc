#pragma once

// Findings about a drawing: what a file said that cannot be, and what was done about it.
//
// Each kind of finding has a number of its own, which stays the same from version to version: see
// docs/dxf.md.

#include <cstddef>
#include <string>
#include <vector>

#include "host/api/database.h"

namespace drafthost::exchange {

enum class AuditCode {
    // The file.
    MissingEndMark = 101,   // no "0 EOF" behind the last section
    DamagedText = 102,      // texts that are not in the file's encoding
    ForeignCodePage = 103,  // texts of a code page that is not translated
    LateVariables = 104,    // header variables behind the end of the header: read as if they stood in it
    // Handles.
    DuplicateHandle = 201,    // of two objects one gets a new handle
    UnusableHandle = 202,     // zero or too large: a new one is given
    DanglingReference = 203,  // reference to an object that does not exist: set to null or taken out
    // Tables and blocks.
    DuplicateRecord = 301,        // a second record of the same name: left out
    MissingLayer = 302,           // a layer that entities name: added
    MissingLinetype = 303,        // added, without dashes
    MissingTextStyle = 304,       // added, with the standard font
    MissingDimensionStyle = 305,  // added
    MissingBlock = 306,           // an insertion of a block without definition: an empty one is added
    MissingApplication = 307,     // of extended data: added
    BlockCycle = 308,             // a block that contains itself: that insertion is left out
    DuplicateBlock = 309,         // a second definition: left out
    InvalidLayerName = 310,       // with characters that names cannot hold: these become "_"
    // Entities and objects.
    OrphanedPart = 401,  // attribute, vertex or sequence end that follows nothing it belongs to: left out
    MissingSequenceEnd = 402,  // added
    WrongOwner = 403,          // owner corrected
    RepeatedSubclass = 406,    // an object with the data of two: the second are left out
    NoRadius = 405,            // circle or arc whose radius is not positive: left out
    UnreadableObject = 407,    // what a module's class cannot read: kept as a proxy
    ModuleFinding = 408,       // what an object of a module's class found in itself
    // The drawing as a whole.
    Completed = 501,  // something every drawing has was missing and has been added
    // Other formats.
    LeftOut = 601,         // entities that cannot be read from a DWG file
    ObjectsLeftOut = 602,  // objects of a DWG file that are not seen and not read
};

struct AuditFinding {
    AuditCode code;
    bool fixed = true;
    std::wstring text;     // "layer "WALLS" was missing and has been added"
    std::size_t line = 0;  // in the file; 0: none
};

class AuditReport {
public:
    const std::vector<AuditFinding>& findings() const { return findings_; }
    void add(AuditCode code, std::wstring text, std::size_t line = 0, bool fixed = true);
    // Errors that somebody counted without telling them one by one.
    void addUntold(std::size_t found, std::size_t fixed);
    std::size_t errorsFound() const { return found_; }
    std::size_t errorsFixed() const { return fixed_; }
    // For a file whose lines nobody sees.
    void forgetLines();
    // "Auditing: 3 errors found, 3 fixed". Objects that are not read from DWG files and additions to complete
    // a drawing are no errors and are not counted.
    std::wstring summary() const;

private:
    std::vector<AuditFinding> findings_;
    std::size_t found_ = 0;
    std::size_t fixed_ = 0;
};

// Checks the references between the objects of a drawing and corrects them: owners, reactors, extension
// dictionaries, dictionary entries, and handles in kept groups that no object has. Arbitrary handles (groups
// 320 to 329) and handles in extended data (1005) are left alone: they may be meant for another drawing.
// Objects of modules' classes then check themselves. No object may be open for write.
void auditDatabase(AcDbDatabase& database, AuditReport& report);

}  // namespace drafthost::exchange
