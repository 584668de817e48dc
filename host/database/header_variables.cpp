#include "host/database/header_variables.h"

#include "host/database/names.h"

namespace drafthost {
namespace {

template <class T>
const T* firstValue(const HeaderVariables::Entry* entry) {
    return entry && !entry->groups.empty() ? std::get_if<T>(&entry->groups.front().value) : nullptr;
}

}  // namespace

const HeaderVariables::Entry* HeaderVariables::find(std::wstring_view name) const {
    const auto found = index_->find(foldCase(name));
    return found == index_->end() ? nullptr : entries_[found->second].get();
}

HeaderVariables::Index& HeaderVariables::ownIndex() {
    if (index_.use_count() > 1)
        index_ = std::make_shared<Index>(*index_);
    return *index_;
}

void HeaderVariables::set(std::wstring_view name, std::vector<DxfGroup> groups) {
    if (const auto known = index_->find(foldCase(name)); known != index_->end()) {
        std::shared_ptr<const Entry>& entry = entries_[known->second];
        entry = std::make_shared<const Entry>(entry->name, std::move(groups));
        return;
    }
    ownIndex().emplace(foldCase(name), entries_.size());
    entries_.push_back(std::make_shared<const Entry>(std::wstring(name), std::move(groups)));
}

void HeaderVariables::remove(std::wstring_view name) {
    const auto found = index_->find(foldCase(name));
    if (found == index_->end())
        return;
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(found->second));
    Index& index = ownIndex();
    index.clear();
    for (std::size_t i = 0; i < entries_.size(); ++i)
        index.emplace(foldCase(entries_[i]->name), i);
}

double HeaderVariables::real(std::wstring_view name, double fallback) const {
    const auto* const value = firstValue<double>(find(name));
    return value ? *value : fallback;
}

std::int32_t HeaderVariables::integer(std::wstring_view name, std::int32_t fallback) const {
    const auto* const value = firstValue<std::int64_t>(find(name));
    return value ? static_cast<std::int32_t>(*value) : fallback;
}

std::wstring HeaderVariables::text(std::wstring_view name) const {
    const auto* const value = firstValue<std::wstring>(find(name));
    return value ? *value : std::wstring();
}

AcGePoint3d HeaderVariables::point(std::wstring_view name, const AcGePoint3d& fallback) const {
    if (const auto* const flat = firstValue<AcGePoint2d>(find(name)))
        return {flat->x, flat->y, 0};
    const auto* const value = firstValue<AcGePoint3d>(find(name));
    return value ? *value : fallback;
}

short HeaderVariables::codeOf(std::wstring_view name, short fallback) const {
    const Entry* const entry = find(name);
    return entry && !entry->groups.empty() ? entry->groups.front().code : fallback;
}

void HeaderVariables::setReal(std::wstring_view name, double value) {
    set(name, {{codeOf(name, 40), value}});
}

void HeaderVariables::setInteger(std::wstring_view name, std::int32_t value) {
    set(name, {{codeOf(name, 70), std::int64_t{value}}});
}

void HeaderVariables::setText(std::wstring_view name, std::wstring value) {
    set(name, {{codeOf(name, 1), std::move(value)}});
}

void HeaderVariables::setPoint(std::wstring_view name, const AcGePoint3d& value) {
    const bool flat = firstValue<AcGePoint2d>(find(name)) != nullptr;
    const short code = codeOf(name, 10);
    if (flat)
        set(name, {{code, AcGePoint2d(value.x, value.y)}});
    else
        set(name, {{code, value}});
}

}  // namespace drafthost
