#pragma once

// What is kept of an object whose class is not there, beside what every object has: its groups, and the exact
// values that its class filed last, when it was there in this session. Both are kept because neither can be
// made from the other without the class: files are written from the groups, and a class need not write
// everything into them; the object comes back from the values.

#include <string>
#include <vector>

#include "host/database/dxf_group.h"
#include "host/database/memory_filer.h"

class AcDbObject;

namespace drafthost {

struct KeptContents {
    std::wstring dxfName;          // empty: objects of the class are not written to DXF files
    std::wstring className;        // empty: only the DXF name is known
    std::int32_t proxyFlags = -1;  // AcRxProxyFlags of the class; -1: not known here
    std::vector<DxfGroup> groups;  // of the class's own subclasses, extended data left out
    // The values behind those that every object (or entity) files, which are the state's and may change while
    // the class is away.
    DwgRecord record;
    bool hasRecord = false;
    bool wholeRecord = false;  // the class does not file them first: the record is all that it filed

    void fileContents(StateWalker& walker);
};

// Of an object of an unknown class; null for others.
const KeptContents* keptContents(const AcDbObject& object);
KeptContents* keptContents(AcDbObject& object);

// A record as groups, for files: behind a subclass marker of their own, each value under a code that tells
// its type. For objects whose class wrote no groups.
std::vector<DxfGroup> recordGroups(const KeptContents& contents);
bool areRecordGroups(const std::vector<DxfGroup>& groups);
// Takes the record out of such groups; false, and nothing changed, when they are something else.
bool takeRecord(KeptContents& contents);

}  // namespace drafthost
