#include "host/documents/document_manager.h"

#include <algorithm>

#include "host/database/database_impl.h"
#include "host/documents/host.h"
#include "host/exchange/drawing_file.h"

namespace drafthost {

namespace {

class Iterator final : public AcApDocumentIterator {
public:
    explicit Iterator(std::vector<AcApDocument*> documents) : documents_(std::move(documents)) {}
    bool done() const override { return position_ >= documents_.size(); }
    void step() override {
        if (!done())
            ++position_;
    }
    AcApDocument* document() override { return done() ? nullptr : documents_[position_]; }

private:
    std::vector<AcApDocument*> documents_;
    std::size_t position_ = 0;
};

}  // namespace

DocumentManager::~DocumentManager() = default;

AcApDocumentIterator* DocumentManager::newAcApDocumentIterator() {
    std::vector<AcApDocument*> documents;
    for (const auto& document : documents_)
        documents.push_back(document.get());
    return new Iterator(std::move(documents));
}

Document* DocumentManager::find(const AcApDocument* document) const {
    for (const auto& open : documents_) {
        if (open.get() == document)
            return open.get();
    }
    return nullptr;
}

Document* DocumentManager::find(const AcDbDatabase* database) const {
    for (const auto& open : documents_) {
        if (open->database() == database)
            return open.get();
    }
    return nullptr;
}

Acad::ErrorStatus DocumentManager::lockDocument(AcApDocument* document, AcAp::DocLockMode, const ACHAR*,
                                                const ACHAR*, bool) {
    Document* const open = find(document);
    if (!open)
        return Acad::eNoDocument;
    ++open->locks_;
    return Acad::eOk;
}

Acad::ErrorStatus DocumentManager::unlockDocument(AcApDocument* document) {
    Document* const open = find(document);
    if (!open)
        return Acad::eNoDocument;
    if (open->locks_ == 0)
        return Acad::eLockViolation;
    --open->locks_;
    return Acad::eOk;
}

int DocumentManager::heldLocks() const {
    int locks = 0;
    for (const auto& document : documents_)
        locks += document->locks();
    return locks;
}

void DocumentManager::setCurrent(Document* document) {
    current_ = document;
    host_.services().setWorkingDatabase(document ? document->database() : nullptr);
}

Document* DocumentManager::open(const std::wstring& path, std::wstring& problem) {
    auto database = std::make_unique<AcDbDatabase>(path.empty());
    std::wstring name =
        path.empty() ? L"Drawing" + std::to_wstring(newDrawings_ + 1) + L".dxf" : fullPath(path);
    if (!path.empty()) {
        const exchange::DxfReadResult result = exchange::readDrawing(*database, name, AcDb::kDenyNone);
        if (result.status != Acad::eOk) {
            problem =
                result.message.empty() ? name + L": " + acadErrorStatusText(result.status) : result.message;
            return nullptr;
        }
        if (result.audit.errorsFound() > 0)
            host_.commandLine().write(L"\n" + result.audit.summary() + L"\n");
        // What is not in the drawing any more should be known before it is saved.
        for (const exchange::AuditFinding& finding : result.audit.findings()) {
            if (finding.code == exchange::AuditCode::LeftOut)
                host_.commandLine().write(finding.text + L"\n");
        }
    } else {
        ++newDrawings_;
    }
    database->impl().modifications = 0;
    documents_.push_back(std::make_unique<Document>(host_, std::move(database), std::move(name)));
    Document* const document = documents_.back().get();
    setCurrent(document);
    host_.modules().documentOpened();
    return document;
}

void DocumentManager::close(Document& document) {
    Document* const before = current_;
    setCurrent(&document);
    host_.modules().documentCloses();
    host_.selectionSets().forgetDocument(document);
    std::erase_if(documents_, [&](const auto& open) { return open.get() == &document; });
    if (before != &document) {
        setCurrent(before);
    } else {
        setCurrent(documents_.empty() ? nullptr : documents_.back().get());
    }
}

void DocumentManager::closeAll() {
    while (!documents_.empty())
        close(*documents_.back());
}

}  // namespace drafthost

AcApDocumentIterator::~AcApDocumentIterator() = default;

AcApDocManager* acDocManagerPtr() {
    return &drafthost::theHost().documents();
}
