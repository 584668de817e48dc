#include "host/editor/selection_set.h"

#include <algorithm>

namespace drafthost::editor {

namespace {

// Second word of a selection set's name, which no entity name has.
constexpr std::int64_t kNameMark = 0x53534554;

}  // namespace

bool SelectionSet::add(AcDbObjectId id) {
    if (!known_.insert(id).second)
        return false;
    members_.push_back(id);
    return true;
}

bool SelectionSet::remove(AcDbObjectId id) {
    if (known_.erase(id) == 0)
        return false;
    members_.erase(std::find(members_.begin(), members_.end(), id));
    return true;
}

std::shared_ptr<SelectionSet> SelectionSets::make(const Document& document) {
    std::erase_if(sets_, [](const auto& entry) { return entry.second.expired(); });
    auto set = std::make_shared<SelectionSet>(++lastNumber_, document);
    sets_[lastNumber_] = set;
    return set;
}

std::shared_ptr<SelectionSet> SelectionSets::find(const ads_name name) const {
    if (name[1] != kNameMark)
        return nullptr;
    const auto found = sets_.find(static_cast<int>(name[0]));
    return found == sets_.end() ? nullptr : found->second.lock();
}

void SelectionSets::nameOf(const SelectionSet& set, ads_name name) {
    name[0] = set.number();
    name[1] = kNameMark;
}

void SelectionSets::hold(const std::shared_ptr<SelectionSet>& set) {
    held_[set->number()] = set;
}

bool SelectionSets::release(const ads_name name) {
    return name[1] == kNameMark && held_.erase(static_cast<int>(name[0])) > 0;
}

void SelectionSets::forgetDocument(const Document& document) {
    std::erase_if(held_, [&](const auto& entry) { return entry.second->document() == &document; });
}

}  // namespace drafthost::editor
