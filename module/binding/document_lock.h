#pragma once

// The write lock of a document, held for a while.

#include "host/api/documents.h"

namespace tessary {

// Not checked: without a lock, as without a document, the host refuses the changes themselves.
class DocumentLock {
public:
    // document: null locks nothing. It may be closed meanwhile.
    explicit DocumentLock(AcApDocument* document) : document_(document) {
        acDocManager->lockDocument(document_, AcAp::kWrite, nullptr, nullptr, true);
    }
    ~DocumentLock() { acDocManager->unlockDocument(document_); }
    DocumentLock(const DocumentLock&) = delete;
    DocumentLock& operator=(const DocumentLock&) = delete;

private:
    AcApDocument* document_;
};

}  // namespace tessary
