#pragma once

// What is open or allocated at the moment, in the whole process. A LISP call must leave both figures as it
// found them (apart from value lists that the host itself keeps).

#include <cstdint>

#include "host/api/resbuf.h"

namespace drafthost {

struct OpenCounters {
    std::int64_t openObjects = 0;  // openings of database objects that were not closed yet
    std::int64_t valueNodes = 0;   // result buffer nodes allocated and not released
};

OpenCounters& openCounters();

// Told of every list that acutRelRb is about to free, so that the editor knows which argument lists modules
// have released. Null: nobody.
extern void (*valueListReleased)(const resbuf* list);

}  // namespace drafthost
