#pragma once

// One open drawing: its database, its LISP, its prompts, commands and system variables, and the locks on it.
//
// Who may write: the database is open for changes while a write lock is held (AcApDocManager::lockDocument),
// and while LISP or a command runs in the document, because the host itself holds its lock for them.
// Functions of modules that LISP calls run under the same lock; they count their own on top.

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/api/documents.h"
#include "host/editor/prompts.h"
#include "host/editor/selection_set.h"
#include "host/editor/system_variables.h"
#include "host/editor/undo_history.h"
#include "host/lisp/interpreter.h"

namespace drafthost {

class Host;
struct Module;

namespace editor {
class CommandRunner;
}

// A LISP function of a module in one document (acedDefun, acedRegFunc).
struct ModuleFunction {
    Module* module = nullptr;
    short number = 0;
    std::wstring name;
    int (*function)() = nullptr;  // null: the module is sent kInvkSubrMsg
};

class Document final : public AcApDocument, public editor::PromptSurroundings {
public:
    // name: full path of the drawing's file, or what a new one is called.
    Document(Host& host, std::unique_ptr<AcDbDatabase> database, std::wstring name);
    ~Document() override;

    const ACHAR* fileName() const override { return name_.c_str(); }
    AcDbDatabase* database() const override { return database_.get(); }
    AcDbTransactionManager* transactionManager() const override { return database_->transactionManager(); }
    AcAp::DocLockMode lockMode() const override;

    Host& host() { return host_; }
    void setName(std::wstring name) { name_ = std::move(name); }
    lisp::Interpreter& interpreter() { return *interpreter_; }
    editor::Prompts& prompts() { return prompts_; }
    editor::CommandRunner& commands() { return *commands_; }
    editor::VariableStore& variables() { return variables_; }
    editor::UndoHistory& undo() { return undo_; }
    bool& undoAuto() { return undoAuto_; }  // UNDO Auto
    const std::shared_ptr<editor::SelectionSet>& previousSelection() const { return previousSelection_; }
    void setPreviousSelection(std::shared_ptr<editor::SelectionSet> set) {
        previousSelection_ = std::move(set);
    }
    const std::shared_ptr<editor::SelectionSet>& pickFirst() const { return pickFirst_; }
    void setPickFirst(std::shared_ptr<editor::SelectionSet> set) { pickFirst_ = std::move(set); }

    // Where dictnext goes on.
    std::unordered_map<AcDbObjectId, int>& dictionaryPositions() { return dictionaryPositions_; }

    // Defines or finds the function of a module in this document.
    ModuleFunction& moduleFunction(Module* module, short number);
    ModuleFunction* findModuleFunction(Module* module, short number);
    void forgetModule(Module* module);

    int locks() const { return locks_; }
    bool writable() const { return locks_ > 0 || evaluations_ > 0; }

    // PromptSurroundings
    editor::InputSource& source() override;
    editor::CommandLine& commandLine() override;
    bool stopped() const override;
    AcGeMatrix3d worldToUcs() const override;
    double angleBase() const override;
    editor::LengthUnits lengthUnits() const override;
    std::optional<editor::Answer> evaluateTyped(const std::wstring& text) override;

private:
    friend class DocumentManager;
    friend class EvaluationScope;

    // What LISP has changed outside of commands becomes a step, unless a command waits for more words.
    void endLispStep();

    Host& host_;
    std::unique_ptr<AcDbDatabase> database_;
    editor::UndoHistory undo_;
    bool undoAuto_ = true;
    std::wstring name_;
    editor::VariableStore variables_;
    editor::Prompts prompts_;
    std::shared_ptr<editor::SelectionSet> previousSelection_, pickFirst_;
    std::unordered_map<AcDbObjectId, int> dictionaryPositions_;
    std::vector<std::unique_ptr<ModuleFunction>> functions_;
    std::unique_ptr<lisp::Interpreter> interpreter_;
    std::unique_ptr<editor::CommandRunner> commands_;
    int locks_ = 0;        // by lockDocument
    int evaluations_ = 0;  // LISP or commands that are running
};

// While LISP or a command runs in a document. The end of the outermost one ends an undo step.
class EvaluationScope {
public:
    explicit EvaluationScope(Document& document) : document_(document) { ++document_.evaluations_; }
    ~EvaluationScope() {
        if (--document_.evaluations_ == 0)
            document_.endLispStep();
    }
    EvaluationScope(const EvaluationScope&) = delete;
    EvaluationScope& operator=(const EvaluationScope&) = delete;

private:
    Document& document_;
};

}  // namespace drafthost
