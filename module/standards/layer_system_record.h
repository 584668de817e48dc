#pragma once

// The rows of tblLayerSystem.

#include "module/standards/standards_record.h"

namespace tessary {

// The kinds of ducts that a layer system hatches in their own way.
enum class HatchedDuct { supply, returnAir, exhaust, outside };

struct DuctHatch {
    bool on = false;
    std::wstring type;  // "Predefined" or "Custom"
    std::wstring pattern;
    double angle = 0;
    double scale = 0;
};

class CTblLayerSystem final : public StandardsRecord {
public:
    CTblLayerSystem(bool skipMasterLink, ConnectionPointer connection);

    using StandardsRecord::addNew;
    using StandardsRecord::isEOF;
    using StandardsRecord::moveFirst;
    using StandardsRecord::moveNext;

    int ixLayerSystem() const;
    const std::wstring& sDescription() const;
    int iSortOrder() const;
    bool bSolid() const;
    const std::wstring& sPrefix() const;
    const std::wstring& sSuffix() const;
    DuctHatch hatch(HatchedDuct duct) const;
    bool bHatchFlexDucts() const;
    double dHatchOverhang() const;

    void setDescription(const std::wstring& text);
    void setSortOrder(int position);
    void setSolid(bool solid);
    void setPrefix(const std::wstring& text);
    void setSuffix(const std::wstring& text);
    // Each of the five settings counts as set.
    void setHatch(HatchedDuct duct, const DuctHatch& hatch);
    void setHatchFlexDucts(bool hatched);
    void setHatchOverhang(double distance);
};

}  // namespace tessary
