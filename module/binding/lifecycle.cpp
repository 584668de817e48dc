#include "module/binding/lifecycle.h"

#include "host/api/documents.h"
#include "host/api/editor.h"
#include "host/api/rx.h"
#include "module/binding/function_table.h"
#include "module/database/document_connections.h"
#include "module/database/service_object.h"
#include "module/drawing/editor_reactor.h"
#include "module/leader/leader_class.h"

#include <windows.h>

#include <objbase.h>

#include <cstdlib>
#include <ctime>
#include <memory>

namespace tessary {

namespace {

constexpr const ACHAR* solidModuleName = L"qn_qn-solid2010x64.dbx";

// Lets other programs of the product see that the module runs. It belongs to the process: the handle is kept
// nowhere and the system closes it at the process's end, so that a module loaded anew counts as still
// running.
void announceModule() {
    CreateMutexW(nullptr, FALSE, L"QuarnelTessary");
}

// At most one document is open, the one that is closing.
bool isLastDocumentClosing() {
    const std::unique_ptr<AcApDocumentIterator> documents(acDocManager->newAcApDocumentIterator());
    if (documents->done()) {
        return true;
    }
    documents->step();
    return documents->done();
}

}  // namespace

void loadModule(void* packet) {
    // Drawings without solids work without the companion module, so its absence is no error here.
    acrxLoadModule(solidModuleName, false, false);
    announceModule();
    std::srand(static_cast<unsigned>(_time64(nullptr)));
    // The service object comes before COM is initialised below: the host has initialised it for its own
    // thread.
    createServiceObject();
    attachEditorReactor();
    acrxUnlockApplication(packet);
    acrxRegisterAppMDIAware(packet);
    registerLeaderClass();
    acrxBuildClassHierarchy();
    CoInitialize(nullptr);
}

void unloadModule() {
    removeLeaderClass();
    // Also when the server cannot be reached any more, which releasing its object reports: the module's code
    // goes in any case, and nothing in the host may point to it then.
    const struct Detachment {
        ~Detachment() {
            detachEditorReactor();
            acrxUnloadModule(solidModuleName, false);
            CoUninitialize();
        }
    } detachment;
    releaseServiceObject();
}

void openDocument() {
    acutPrintf(L"\nLoading Quarnel Tessary (Jet64)");
    registerDatabaseFunctions();
    addDocumentConnection(acDocManager->curDocument()->fileName());
    registerDrawingFunctions();
}

void closeDocument() {
    ensureDatabaseConnection();
    closeCurrentConnection();
    removeNewestDocumentConnection();
    if (isLastDocumentClosing()) {
        closeAllConnections();
    }
}

}  // namespace tessary
