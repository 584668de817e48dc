#pragma once

// Sets of entities that the drafter or a program selected.

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/api/database_ids.h"
#include "host/api/types.h"
#include "host/lisp/value.h"

namespace drafthost {
class Document;
}

namespace drafthost::editor {

// Entities in the order in which they were added; each once. Erased entities stay until they are removed.
class SelectionSet final : public lisp::SelectionSetBase {
public:
    SelectionSet(int number, const Document& document) : number_(number), document_(&document) {}
    int number() const override { return number_; }
    const Document* document() const { return document_; }
    const std::vector<AcDbObjectId>& members() const { return members_; }
    bool contains(AcDbObjectId id) const { return known_.contains(id); }
    bool add(AcDbObjectId id);     // false: it was there
    bool remove(AcDbObjectId id);  // false: it was not there

private:
    int number_;
    const Document* document_;
    std::vector<AcDbObjectId> members_;
    std::unordered_set<AcDbObjectId> known_;
};

// The sets that live. LISP holds its sets as values; those handed to modules by name are held here until
// acedSSFree.
class SelectionSets {
public:
    std::shared_ptr<SelectionSet> make(const Document& document);
    // Null for a stale or made-up name.
    std::shared_ptr<SelectionSet> find(const ads_name name) const;
    static void nameOf(const SelectionSet& set, ads_name name);
    void hold(const std::shared_ptr<SelectionSet>& set);
    bool release(const ads_name name);
    void forgetDocument(const Document& document);
    // Sets that modules have not freed.
    std::size_t held() const { return held_.size(); }

private:
    int lastNumber_ = 0;
    mutable std::unordered_map<int, std::weak_ptr<SelectionSet>> sets_;
    std::unordered_map<int, std::shared_ptr<SelectionSet>> held_;
};

}  // namespace drafthost::editor
