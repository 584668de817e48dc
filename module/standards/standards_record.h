#pragma once

// What the record classes of the standards database have in common. A record stands for one row of its table
// at a time: the one that a seek or a move found last, or one that is being added. All work goes through a
// connection that has the database open already; without a connection nothing is done and the answers are
// false.
//
// A call that fails as such is thrown as a _com_error.

#include "module/database/server_connection.h"

#include <optional>
#include <string>

namespace tessary {

class StandardsRecord {
public:
    // skipMasterLink: the two fields that link a row to the master database are not written.
    StandardsRecord(bool skipMasterLink, ConnectionPointer connection);
    virtual ~StandardsRecord() = default;

    bool seekByIx(int key);
    // The index becomes the order of moveFirst and moveNext.
    void setIndex(const std::wstring& name);

    // The next update changes the loaded row.
    void edit();
    // Writes the fields that were set since edit or addNew, and loads the row as the database keeps it. When
    // nothing was set, nothing is written and the record stays in its mode. A row that the database declines
    // is lost without a sign.
    void update();
    // row: name, value, name, value ... Names that are no field are ignored.
    void loadRecord(const VARIANT& row);
};

}  // namespace tessary
