#pragma once

// Variables of a drawing's header: named groups, in the order of the file they were read from.

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/database/dxf_group.h"

namespace drafthost {

// Copies share the variables that neither of them changed since, so that keeping one for each undo step is
// cheap.
class HeaderVariables {
public:
    struct Entry {
        std::wstring name;  // with the dollar sign: "$LTSCALE"
        std::vector<DxfGroup> groups;
    };

    const std::vector<std::shared_ptr<const Entry>>& entries() const { return entries_; }
    // Null when there is no such variable. Names are compared without regard to case.
    const Entry* find(std::wstring_view name) const;
    // Replaces the groups, or adds the variable at the end.
    void set(std::wstring_view name, std::vector<DxfGroup> groups);
    void remove(std::wstring_view name);

    // First value of the variable, or the fallback when it is missing or of another kind.
    double real(std::wstring_view name, double fallback) const;
    std::int32_t integer(std::wstring_view name, std::int32_t fallback) const;
    std::wstring text(std::wstring_view name) const;  // empty when missing
    AcGePoint3d point(std::wstring_view name, const AcGePoint3d& fallback) const;
    // Keep the group code of an existing variable; a new one gets the usual code of its kind (40, 70, 1, 10).
    void setReal(std::wstring_view name, double value);
    void setInteger(std::wstring_view name, std::int32_t value);
    void setText(std::wstring_view name, std::wstring value);
    void setPoint(std::wstring_view name, const AcGePoint3d& value);

private:
    short codeOf(std::wstring_view name, short fallback) const;
    using Index = std::unordered_map<std::wstring, std::size_t>;  // by upper-case name
    std::vector<std::shared_ptr<const Entry>> entries_;
    Index& ownIndex();  // after which no copy shares it
    std::shared_ptr<Index> index_ = std::make_shared<Index>();
};

// Variables of a new drawing (metric, decimal), complete enough for a file of 2000 format. Handles and the
// names that depend on tables ($CLAYER, $HANDSEED and so on) are set when a file is written.
HeaderVariables defaultHeaderVariables();

}  // namespace drafthost
