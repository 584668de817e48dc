#pragma once

// What undo and transactions save of an object of a module's class: what the class files. The class may go
// before the change is taken back; what is saved then becomes a proxy's contents, while the class can still
// say what they are.

#include <memory>

#include "host/database/memory_filer.h"
#include "host/database/object_imp.h"

namespace drafthost {

class SavedFields {
public:
    explicit SavedFields(const AcDbObject& object);
    ~SavedFields();
    SavedFields(const SavedFields&) = delete;
    SavedFields& operator=(const SavedFields&) = delete;

    // Gives the object of the stub the saved contents, whatever its open state and whatever became of it
    // since. state: its state as it was then. The fields are used up.
    void restore(AcDbStub& stub, std::unique_ptr<ObjectState> state);

    // All that is saved of objects of the class, or of one derived from it, becomes contents of proxies.
    static void classGoes(const AcRxClass& cls);

private:
    void becomeProxy();

    const AcRxClass* cls_;  // null: it has gone, and the proxy has the contents
    AcDbDatabase* database_;
    DwgRecord record_;
    std::unique_ptr<AcDbObject> proxy_;
    // All that are saved, in whatever log, are one list.
    static SavedFields* newest;
    SavedFields* older_;
    SavedFields* newer_ = nullptr;
};

}  // namespace drafthost
