#include "module/database/document_connections.h"

#include <new>

namespace tessary {

std::list<DocumentConnection>& documentConnections() {
    static std::list<DocumentConnection> records;
    return records;
}

void addDocumentConnection(const wchar_t* fileName) {
    try {
        documentConnections().push_front({fileName, nullptr, L"", false});
    } catch (const std::bad_alloc&) {
        // The drawing's other functions still work, so its opening goes on.
    }
}

void removeNewestDocumentConnection() {
    if (!documentConnections().empty()) {
        documentConnections().pop_front();
    }
}

void closeAllConnections() {
    documentConnections().clear();
}

void ensureDatabaseConnection() {}

void closeCurrentConnection() {}

}  // namespace tessary
