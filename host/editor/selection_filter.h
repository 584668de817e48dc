#pragma once

// Filters of ssget: which entities of a drawing a group list lets through.
//
// A filter is a list of groups that must all match. Texts are wildcard patterns. (-4 . "<OR") ... (-4 .
// "OR>") and the same with AND, XOR and NOT group tests; (-4 . ">=") and the other relational operators apply
// to the next group: = == != /= <> < <= > >= * for numbers, comma-separated for the coordinates of points
// ("<,<,*"), & (some bits set) and
// &= (all bits set) for integers. (-3 ("APP")) asks for extended data of an application.

#include <memory>
#include <string>
#include <vector>

#include "host/api/database.h"

namespace drafthost::editor {

class SelectionFilter {
public:
    SelectionFilter();
    ~SelectionFilter();
    SelectionFilter(SelectionFilter&&) noexcept;
    SelectionFilter& operator=(SelectionFilter&&) noexcept;

    // groups: as a program gives them; also the nodes of a LISP list of pairs. Null lets everything through.
    // Returns false for a malformed filter, for the reason in problem.
    bool parse(const resbuf* groups, std::wstring& problem);
    bool matches(AcDbObjectId entity) const;

    struct Test;

private:
    std::unique_ptr<Test> root_;  // null: everything matches
};

}  // namespace drafthost::editor
