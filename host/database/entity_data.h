#pragma once

// Entities as lists of groups: what entget gives, and what entmake and entmod take.

#include <string>
#include <vector>

#include "host/api/resbuf.h"
#include "host/database/database_impl.h"

namespace drafthost {

// Why the last function on entity data failed: value for the system variable ERRNO, and a text for messages.
struct EntityProblem {
    int number = 0;
    std::wstring text;
};
EntityProblem& lastEntityProblem();

// Values of ERRNO.
enum EntityErrno : int {
    kErrnoNone = 0,
    kErrnoInvalidTable = 2,
    kErrnoInvalidEntity = 3,  // name or selection set does not exist
    kErrnoDeletedEntity = 5,
    kErrnoOnLockedLayer = 33,
    kErrnoBadList = 46,  // entity data that cannot be used
    kErrnoOpenConflict = 63,
};

// Records the problem and returns RTERROR; the second for a status of the database.
int entityError(int number, std::wstring text);
int entityError(Acad::ErrorStatus status);

// Groups of an object in the order LISP programs know: name (-1), type, owner, handle, then its subclasses.
// Angles are radians; references are ids. Extended data are left out.
std::vector<DxfGroup> entityGroups(AcDbObjectId id);

std::vector<DxfGroup> groupsOfList(const resbuf* list);
resbuf* listOfGroups(const std::vector<DxfGroup>& groups);

// Entity groups without what identifies an object or ties it to others: names, handles, owner, {...} groups.
// Extended data (behind group -3, or from the first 1001 on) go to xdata.
std::vector<DxfGroup> contentGroups(const std::vector<DxfGroup>& groups, std::vector<DxfGroup>& xdata);

// Groups of an object after those given replaced what they name: a group replaces the one of its code in the
// same subclass; when codes repeat (vertices), all repeated ones of that subclass make way for those given.
std::vector<DxfGroup> mergedGroups(const std::vector<DxfGroup>& present, const std::vector<DxfGroup>& given);

// First text under the code, empty when there is none.
const std::wstring& textGroup(const std::vector<DxfGroup>& groups, short code);

// Reads groups into a new object; when markers are there but not the ones expected, once more without them.
// Layers that were made for it are taken back when it fails; problem says why.
Acad::ErrorStatus readEntityData(AcDbObject& object, AcDbDatabase& database, std::vector<DxfGroup> groups,
                                 std::wstring& problem);

// The database goes away: what entmake has begun in it and where tblnext stands in it is dropped.
void forgetMaking(const AcDbDatabase* database);
// The class goes: a block that entmake has begun with entities of the class, or of one that derives from it,
// is dropped. They are in no drawing yet and so cannot become proxies.
void forgetMakingOf(const AcRxClass* cls);
void forgetTableSteps(const AcDbDatabase* database);

// The working database; null when there is none.
AcDbDatabase* workingDatabase();

}  // namespace drafthost
