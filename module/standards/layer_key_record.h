#pragma once

// The rows of tblLayerKey.

#include "module/standards/standards_record.h"

namespace tessary {

class CTblLayerKey final : public StandardsRecord {
public:
    CTblLayerKey(bool skipMasterLink, ConnectionPointer connection);
    void setLayer(int ixLayer);
};

}  // namespace tessary
