#pragma once

// What a command asks the drafter for, and the ways it changes the drawing. Every question ends the command
// when the drafter cancels.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/api/entity.h"
#include "host/documents/document.h"
#include "host/editor/selection.h"

namespace drafthost::editor {

// Ends a command; nothing is printed.
struct CommandCancelled {};

class CommandContext {
public:
    CommandContext(Document& document, std::wstring name) : document_(document), name_(std::move(name)) {}

    struct Reply {
        bool given = false;    // false: an empty response
        std::wstring keyword;  // empty: a value
        AcGePoint3d point;     // UCS
        double number = 0;
        int integer = 0;
        std::wstring text;
    };
    struct Question {
        std::wstring prompt;
        const wchar_t* keywords = L"";
        std::optional<AcGePoint3d> base = std::nullopt;
        int control = 0;
    };
    Reply ask(InputRequest::Kind kind, const Question& question);
    // The point; ends the command for an empty response.
    AcGePoint3d point(const wchar_t* prompt, std::optional<AcGePoint3d> base = std::nullopt);
    double distance(const wchar_t* prompt, std::optional<AcGePoint3d> base = std::nullopt);
    double angle(const wchar_t* prompt, std::optional<AcGePoint3d> base = std::nullopt);
    std::wstring keyword(const wchar_t* prompt, const wchar_t* keywords);  // empty: an empty response
    std::wstring text(const wchar_t* prompt, bool allowBlanks = false);
    std::vector<AcDbObjectId> selection();  // ends the command when nothing is selected
    SelectResult selectionByWindow();       // the same, with the crossing windows that were used

    void print(const std::wstring& text);
    AcGeMatrix3d ucsToWorld() const;
    AcGePoint3d world(const AcGePoint3d& ucs) const { return ucsToWorld() * ucs; }

    // Puts a new entity into the current space, with the current layer, colour and linetype.
    void add(std::unique_ptr<AcDbEntity> entity);
    // Puts a new entity into the block as it is; the current layer when it has none. False: it was refused.
    bool append(std::unique_ptr<AcDbEntity> entity, AcDbObjectId block);
    // Opens each for a change; those that cannot be changed are counted and reported.
    void change(const std::vector<AcDbObjectId>& entities,
                const std::function<Acad::ErrorStatus(AcDbEntity&)>& each);
    // Applies the matrix (world); entities that cannot be changed are counted and reported.
    void transform(const std::vector<AcDbObjectId>& entities, const AcGeMatrix3d& matrix);
    void copy(const std::vector<AcDbObjectId>& entities, const AcGeMatrix3d& matrix);
    void erase(const std::vector<AcDbObjectId>& entities);
    // Says how many entities stayed as they were; nothing for zeros.
    void reportUnchanged(int locked, int failed);

    Document& document() { return document_; }
    AcDbDatabase& database() { return *document_.database(); }
    const std::wstring& name() const { return name_; }

private:
    Document& document_;
    std::wstring name_;
};

}  // namespace drafthost::editor
