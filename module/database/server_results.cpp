#include "module/database/server_results.h"

#include "host/api/editor.h"
#include "module/binding/variant_conversion.h"
#include "module/database/server_connection.h"

namespace tessary {

HandlerStatus returnPairs(bool succeeded, const Variant& pairs) {
    if (succeeded) {
        pairArrayToValueList(pairs.array());
    } else {
        reportServerError();
    }
    return HandlerStatus::success;
}

HandlerStatus returnValues(bool succeeded, const Variant& values) {
    if (succeeded) {
        arrayToValueList(values.array());
    } else {
        reportServerError();
    }
    return HandlerStatus::success;
}

HandlerStatus returnRecords(bool succeeded, const Variant& records) {
    if (!succeeded) {
        reportServerError();
    } else if (records.type() == VT_EMPTY) {
        acedRetNil();
    } else {
        recordArrayToValueList(records.array());
    }
    return HandlerStatus::success;
}

HandlerStatus returnTruth(bool succeeded, bool truth) {
    if (!succeeded) {
        reportServerError();
    } else if (truth) {
        acedRetT();
    } else {
        acedRetNil();
    }
    return HandlerStatus::success;
}

HandlerStatus returnText(bool succeeded, const wchar_t* text) {
    if (succeeded) {
        acedRetStr(text);
    } else {
        reportServerError();
    }
    return HandlerStatus::success;
}

}  // namespace tessary
