// The undo history: what a step is, what ends it, and what U, marks and groups do with steps.

#include "host/editor/undo_history.h"

#include "host/documents/host.h"
#include "host/editor/commands.h"
#include "tests/host/database_drawing.h"
#include "tests/host/undo_states.h"

using namespace drafthost;
using drafthost::editor::UndoHistory;

namespace {

class Undo : public DrawingTest {
protected:
    Undo() : history(db()) {}
    static double startOf(AcDbObjectId id) {
        return AcDbObjectPointer<AcDbLine>(id, AcDb::kForRead, true)->startPoint().x;
    }
    static void moveTo(AcDbObjectId id, double x) {
        AcDbObjectPointer<AcDbLine>(id, AcDb::kForWrite)->setStartPoint({x, 0, 0});
    }
    AcDbTransactionManager& transactions() { return *db().transactionManager(); }

    UndoHistory history;
};

using Names = std::vector<std::wstring>;

TEST_F(Undo, StepsComeBackNewestFirstAndGoForthInTheirOrder) {
    const AcDbObjectId line = addLine(1);
    history.endStep(L"LINE");
    history.endStep(L"ZOOM");  // changed nothing
    moveTo(line, 2);
    history.endStep(L"MOVE");
    UndoHistory::Outcome outcome = history.undo(5);
    EXPECT_EQ(outcome.names, (Names{L"MOVE", L"LINE"}));
    EXPECT_EQ(outcome.stop, UndoHistory::Stop::Everything);
    EXPECT_EQ(modelSpaceCount(), 0);
    outcome = history.redo();
    EXPECT_EQ(outcome.names, (Names{L"LINE", L"MOVE"}));
    EXPECT_EQ(startOf(line), 2);
    history.undo(1);
    addLine(3);
    history.endStep(L"LINE");
    EXPECT_EQ(history.redo().stop, UndoHistory::Stop::Everything);
    EXPECT_EQ(startOf(line), 1);
}

TEST_F(Undo, WhatUndoTookBackCannotBeRestoredByErasingItAgain) {
    const AcDbObjectId id = addLine(1);
    history.endStep(L"LINE");
    history.undo(1);
    EXPECT_EQ(AcDbObjectPointer<AcDbLine>(id, AcDb::kForWrite, true)->erase(false), Acad::ePermanentlyErased);
    history.redo();
    EXPECT_FALSE(id.isErased());
    AcDbObjectPointer<AcDbLine>(id, AcDb::kForWrite)->erase();
    EXPECT_EQ(AcDbObjectPointer<AcDbLine>(id, AcDb::kForWrite, true)->erase(false), Acad::eOk);
}

// A definition that is erased and restored restores its entities, but not those that undo took back.
TEST_F(Undo, RestoringABlockLeavesUndoneEntitiesOut) {
    const AcDbObjectId block = addBlock(L"B");
    append(new AcDbLine({0, 0, 0}, {1, 0, 0}), block);
    history.endStep(L"BLOCK");
    append(new AcDbLine({0, 0, 0}, {2, 0, 0}), block);
    history.endStep(L"LISP");
    history.undo(1);
    AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
    ASSERT_EQ(record->erase(), Acad::eOk);
    ASSERT_EQ(record->erase(false), Acad::eOk);
    EXPECT_EQ(record->entityIds().length(), 1);
}

TEST_F(Undo, NameOfAnErasedRecordLeadsBackToIt) {
    const AcDbObjectId first = addLayer(L"A");
    history.endStep(L"LAYER");
    AcDbObjectPointer<AcDbLayerTableRecord>(first, AcDb::kForWrite)->erase();
    history.endStep(L"PURGE");
    const AcDbObjectId second = addLayer(L"A");
    history.endStep(L"LAYER");
    history.undo(2);
    EXPECT_EQ(findRecord(&db(), TableIndex::Layer, L"A"), first);
    history.redo();
    EXPECT_EQ(findRecord(&db(), TableIndex::Layer, L"A"), second);
}

TEST_F(Undo, TransactionsAreTransparent) {
    const AcDbObjectId line = addLine(1);
    history.endStep(L"LINE");
    const std::string before = stateOf(db());
    transactions().startTransaction();
    addLine(5);
    addLayer(L"A");
    moveTo(line, 5);
    transactions().abortTransaction();
    history.endStep(L"LISP");
    EXPECT_EQ(history.steps(), 1u) << "an aborted transaction is no step";
    EXPECT_EQ(stateOf(db()), before);

    moveTo(line, 2);
    transactions().startTransaction();
    moveTo(line, 3);
    transactions().startTransaction();
    addLine(6);
    transactions().abortTransaction();
    const AcDbObjectId kept = addLine(7);
    history.endStep(L"LISP");  // the transaction still runs, so the step does
    EXPECT_EQ(history.undo(1).stop, UndoHistory::Stop::Busy);
    transactions().endTransaction();
    history.endStep(L"LISP");
    const std::string after = stateOf(db());
    EXPECT_EQ(history.undo(1).names, Names{L"LISP"});
    EXPECT_EQ(stateOf(db()), before);
    history.redo();
    EXPECT_EQ(stateOf(db()), after);
    EXPECT_FALSE(kept.isErased());
    transactions().startTransaction();
    AcDbObjectPointer<AcDbLine>(kept, AcDb::kForWrite)->erase();
    transactions().abortTransaction();
    history.undo(2);
    EXPECT_EQ(modelSpaceCount(), 0);
}

TEST_F(Undo, OpenObjectsAreNotChangedUnderTheirReaders) {
    const AcDbObjectId line = addLine(1);
    history.endStep(L"LINE");
    AcDbObjectPointer<AcDbLine> reader(line, AcDb::kForRead);
    EXPECT_EQ(history.undo(1).stop, UndoHistory::Stop::Busy);
    EXPECT_FALSE(line.isErased());
    reader.close();
    EXPECT_EQ(history.undo(1).stop, UndoHistory::Stop::Done);
    EXPECT_TRUE(line.isErased());
}

TEST_F(Undo, DrawingIsUnmodifiedWhereItWasSaved) {
    std::uint64_t& modifications = db().impl().modifications;
    addLine(1);
    history.endStep(L"LINE");
    modifications = 0;
    history.saved();
    addLine(2);
    history.endStep(L"LINE");
    EXPECT_NE(modifications, 0u);
    history.undo(1);
    EXPECT_EQ(modifications, 0u);
    history.undo(1);
    EXPECT_NE(modifications, 0u);
    history.redo();
    EXPECT_EQ(modifications, 0u);
    history.redo();
    EXPECT_NE(modifications, 0u);
    modifications = 0;
    history.saved();
    history.undo(1);
    EXPECT_NE(modifications, 0u);
}

TEST_F(Undo, OldestStepsAreForgottenButNoPartOfAnOpenGroup) {
    const AcDbObjectId line = addLine(0);
    history.endStep(L"LINE");
    history.beginGroup();
    constexpr int kCount = UndoHistory::kMaxSteps + 50;
    for (int i = 1; i <= kCount; ++i) {
        moveTo(line, i);
        history.endStep(L"MOVE");
    }
    EXPECT_EQ(history.steps(), UndoHistory::kMaxSteps);
    history.endGroup();
    EXPECT_EQ(history.undo(1).names, Names{L"GROUP"});
    EXPECT_EQ(startOf(line), 0);
    history.redo();
    for (int i = 1; i <= kCount; ++i) {
        moveTo(line, -i);
        history.endStep(L"MOVE");
    }
    EXPECT_EQ(history.undoToMark().names.size(), UndoHistory::kMaxSteps);
    EXPECT_EQ(startOf(line), -50);
}

class DocumentUndo : public testing::Test {
protected:
    DocumentUndo() {
        std::wstring problem;
        document_ = theHost().documents().open(L"", problem);
        evaluate(L"(defun made () (entmake '((0 . \"CIRCLE\") (10 0.0 0.0 0.0) (40 . 1.0))))");
    }
    ~DocumentUndo() override { endHost(); }

    void evaluate(const wchar_t* program) {
        const EvaluationScope running(*document_);
        document_->interpreter().evaluateTopLevel(program);
    }
    // What the steps were that the program made, newest first.
    Names stepsOf(const wchar_t* program) {
        evaluate(program);
        return document_->undo().undo(100).names;
    }

    Document* document_ = nullptr;
};

TEST_F(DocumentUndo, FormsOfAProgramAreSteps) {
    EXPECT_EQ(stepsOf(L"(made) (progn (made) (made)) (+ 1 2) (made)"), (Names{L"LISP", L"LISP", L"LISP"}));
    EXPECT_EQ(stepsOf(L"(progn (made) (car 1)) (made)"), Names{L"LISP"});
    EXPECT_EQ(stepsOf(L"(foreach x '(1 2) (made) (command \"_LINE\" '(0 0) '(1 1) \"\"))"),
              (Names{L"LINE", L"LISP", L"LINE", L"LISP"}));
}

TEST_F(DocumentUndo, AnUnfinishedCommandGoesOnOverForms) {
    EXPECT_EQ(stepsOf(L"(command \"_LINE\" '(0 0)) (made) (command '(1 1) \"\") (made)"),
              (Names{L"LISP", L"LINE"}));
    evaluate(L"(command \"_LINE\" '(0 0) '(1 1)) (made)");
    EXPECT_EQ(document_->undo().steps(), 0u);
    document_->commands().cancel();
    EXPECT_EQ(document_->undo().undo(100).names, Names{L"LINE"});
    evaluate(L"(command \"_LINE\" '(0 0) '(1 1))");  // ends with the document
}

TEST_F(DocumentUndo, AProgramMayTakeBackItsOwnCommands) {
    evaluate(L"(progn (made) (command \"_CIRCLE\" '(0 0) 5) (command \"_U\"))");
    EXPECT_EQ(document_->undo().steps(), 1u);
    EXPECT_EQ(document_->undo().redo().names, Names{L"CIRCLE"});
}

}  // namespace
