#pragma once

// The open documents, which one is current, and the locks on them.

#include <memory>
#include <string>
#include <vector>

#include "host/documents/document.h"

namespace drafthost {

class DocumentManager final : public AcApDocManager {
public:
    explicit DocumentManager(Host& host) : host_(host) {}
    ~DocumentManager() override;

    AcApDocument* curDocument() const override { return current_; }
    AcApDocument* mdiActiveDocument() const override { return current_; }
    AcApDocument* document(const AcDbDatabase* database) const override { return find(database); }
    AcApDocumentIterator* newAcApDocumentIterator() override;
    Acad::ErrorStatus lockDocument(AcApDocument* document, AcAp::DocLockMode mode, const ACHAR* globalCommand,
                                   const ACHAR* localCommand, bool prompt) override;
    Acad::ErrorStatus unlockDocument(AcApDocument* document) override;

    // Opens a drawing, makes it current and tells the modules. path empty: a new drawing.
    // Null when the file cannot be read, for the reason in problem; everything stays as it was then.
    Document* open(const std::wstring& path, std::wstring& problem);
    // Tells the modules, closes the document without saving and makes another one current.
    void close(Document& document);
    void closeAll();

    Document* current() const { return current_; }
    // Also changes the working database.
    void setCurrent(Document* document);
    Document* find(const AcDbDatabase* database) const;
    const std::vector<std::unique_ptr<Document>>& all() const { return documents_; }
    // Locks held on all documents.
    int heldLocks() const;

private:
    Document* find(const AcApDocument* document) const;

    Host& host_;
    std::vector<std::unique_ptr<Document>> documents_;
    Document* current_ = nullptr;
    int newDrawings_ = 0;
};

}  // namespace drafthost
