// Documents and their locks, and what goes over the command line interface.

#include <gtest/gtest.h>

#include <fstream>

#include "host/api/editor.h"
#include "host/documents/host.h"
#include "host/editor/value_conversion.h"

using namespace drafthost;

namespace {

class DocumentsTest : public testing::Test {
protected:
    ~DocumentsTest() override { endHost(); }

    Document& open() {
        std::wstring problem;
        Document* const document = theHost().documents().open(L"", problem);
        EXPECT_TRUE(document) << "no new drawing";
        return *document;
    }
    static Acad::ErrorStatus openModelSpace(const AcDbDatabase& database, AcDb::OpenMode mode) {
        return AcDbObjectPointer<AcDbBlockTableRecord>(database.modelSpaceId(), mode).openStatus();
    }
};

TEST_F(DocumentsTest, WritingNeedsALockOrARunningEvaluation) {
    Document& document = open();
    const AcDbDatabase& database = *document.database();
    EXPECT_EQ(openModelSpace(database, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(openModelSpace(database, AcDb::kForWrite), Acad::eLockViolation);
    {
        const EvaluationScope running(document);
        EXPECT_EQ(document.lockMode(), AcAp::kAutoWrite);
        EXPECT_EQ(openModelSpace(database, AcDb::kForWrite), Acad::eOk);
    }
    EXPECT_EQ(openModelSpace(database, AcDb::kForWrite), Acad::eLockViolation);
    const AcDbDatabase side(true, true);
    EXPECT_EQ(openModelSpace(side, AcDb::kForWrite), Acad::eOk);
}

TEST_F(DocumentsTest, LocksNestAndEachNeedsItsUnlock) {
    Document& document = open();
    AcApDocManager& manager = *acDocManager;
    EXPECT_EQ(manager.lockDocument(&document), Acad::eOk);
    EXPECT_EQ(manager.lockDocument(&document), Acad::eOk);
    EXPECT_EQ(theHost().documents().heldLocks(), 2);
    EXPECT_EQ(manager.unlockDocument(&document), Acad::eOk);
    EXPECT_EQ(openModelSpace(*document.database(), AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(manager.unlockDocument(&document), Acad::eOk);
    EXPECT_EQ(openModelSpace(*document.database(), AcDb::kForWrite), Acad::eLockViolation);
    EXPECT_EQ(manager.unlockDocument(&document), Acad::eLockViolation);
    EXPECT_EQ(manager.lockDocument(nullptr), Acad::eNoDocument);
}

TEST_F(DocumentsTest, EachDocumentHasItsOwnNamesAndTheCurrentOneIsTheWorkingOne) {
    Document& first = open();
    first.interpreter().evaluateTopLevel(L"(setq x 1)");
    Document& second = open();
    EXPECT_EQ(acDocManager->curDocument(), &second);
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), second.database());
    EXPECT_TRUE(second.interpreter().symbolValue(L"x").isNil());
    EXPECT_STRNE(first.fileName(), second.fileName());
    EXPECT_EQ(acDocManager->document(first.database()), &first);

    const std::unique_ptr<AcApDocumentIterator> documents(acDocManager->newAcApDocumentIterator());
    int count = 0;
    for (; !documents->done(); documents->step()) {
        ++count;
    }
    EXPECT_EQ(count, 2);

    theHost().documents().close(second);
    EXPECT_EQ(acDocManager->curDocument(), &first);
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), first.database());
    theHost().documents().close(first);
    EXPECT_EQ(acDocManager->curDocument(), nullptr);
    EXPECT_EQ(acedDefun(L"f", 1), RTERROR);
}

TEST_F(DocumentsTest, AFailedOpeningLeavesTheDocumentsAsTheyWere) {
    Document& document = open();
    std::ofstream("damaged.dxf") << "  0\nSECTION\n  2\nHEADER\n  9\n";
    std::wstring problem;
    EXPECT_EQ(theHost().documents().open(L"damaged.dxf", problem), nullptr);
    EXPECT_NE(problem.find(L"damaged.dxf"), std::wstring::npos);
    EXPECT_EQ(acDocManager->curDocument(), &document);
    EXPECT_EQ(theHost().documents().all().size(), 1u);
    std::remove("damaged.dxf");
}

TEST_F(DocumentsTest, SelectionSetNamesGoStaleWithTheirDocument) {
    Document& document = open();
    ads_name empty = {0, 0}, set = {0, 0};
    ASSERT_EQ(acedSSAdd(nullptr, empty, set), RTNORM);
    std::int32_t length = -1;
    EXPECT_EQ(acedSSLength(set, &length), RTNORM);
    EXPECT_EQ(length, 0);
    ads_name entity = {0, 0};
    EXPECT_EQ(acedSSName(set, 0, entity), RTERROR);
    theHost().documents().close(document);
    EXPECT_EQ(acedSSLength(set, &length), RTERROR);
    EXPECT_EQ(acedSSFree(set), RTERROR);
}

TEST_F(DocumentsTest, FilesAreFoundByNameAndInTheSupportFolders) {
    open();
    ACHAR path[260];
    AcDbHostApplicationServices& services = *acdbHostApplicationServices();
    EXPECT_EQ(services.findFile(path, 260, L"no such file.lsp"), Acad::eFileNotFound);
    EXPECT_EQ(services.findFile(nullptr, 0, L"x"), Acad::eInvalidInput);
    theHost().services().addSupportFolder(L"C:\\windows");
    EXPECT_EQ(services.findFile(path, 260, L"win.ini"), Acad::eOk);
    EXPECT_EQ(services.findFile(path, 4, L"win.ini"), Acad::eInvalidInput);
}

TEST_F(DocumentsTest, ValueListsKeepTheirShapeThroughLisp) {
    lisp::Interpreter& interpreter = open().interpreter();
    const auto there = [&](const wchar_t* text) {
        const lisp::Value value = interpreter.evaluateTopLevel(text).value;
        const lisp::Root kept(interpreter, value);
        const editor::ValueList list = editor::toValueList({&value, 1});
        return interpreter.prin1ToString(editor::fromValueList(interpreter, list.get()).car());
    };
    for (const wchar_t* text :
         {L"'(1 (2 (3)) nil)", L"'(1 . 2)", L"'(1 2 . 3)", L"'((1 . \"a\") (2 3 . 4))"}) {
        EXPECT_EQ(there(text), std::wstring(text).substr(1));
    }
    EXPECT_EQ(there(L"'(1.0 2.0)"), L"(1.0 2.0)");
    EXPECT_EQ(there(L"'foo"), L"\"FOO\"");
    EXPECT_EQ(there(L"car"), L"nil");
    EXPECT_EQ(editor::toValueList({}), nullptr);
    const lisp::Outcome deep = interpreter.evaluateTopLevel(L"(repeat 6000 (setq d (list d)))");
    EXPECT_THROW(editor::toValueList({&deep.value, 1}), lisp::LispError);
}

}  // namespace
