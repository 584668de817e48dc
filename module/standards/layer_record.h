#pragma once

// The rows of tblLayer.

#include "module/standards/standards_record.h"

namespace tessary {

class CTblLayer final : public StandardsRecord {
public:
    CTblLayer(bool skipMasterLink, ConnectionPointer connection);

    bool seekByName(const std::wstring& name);
    using StandardsRecord::addNew;
    using StandardsRecord::isBOF;
    using StandardsRecord::isEOF;
    using StandardsRecord::moveFirst;
    using StandardsRecord::moveLast;
    using StandardsRecord::moveNext;
    using StandardsRecord::remove;

    int ixLayer() const;
    const std::wstring& sName() const;
    std::optional<int> iColor() const;  // index 1 to 255; nothing where the row has none
    const std::wstring& sLinetype() const;
    bool bPlot() const;
    std::optional<std::wstring> sLineweight() const;  // hundredths of a millimetre as decimal digits
    std::optional<std::wstring> sPlotstyle() const;

    void setName(const std::wstring& name);
    void setColor(int index);
    void setLinetype(const std::wstring& name);
    void setPlot(bool plots);
    void setLineweight(const std::optional<std::wstring>& digits);  // nothing: null
    void setPlotstyle(const std::optional<std::wstring>& name);
};

}  // namespace tessary
