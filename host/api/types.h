#pragma once

// Basic types of the host's programming interface.
//
// Units: lengths are drawing units, angles radians, unless a declaration says otherwise.
// Ownership: a pointer handed out stays the host's unless a declaration says "caller frees".

#include <cstddef>
#include <cstdint>

#if defined(_WIN32)
#if defined(DRAFTHOST_BUILD)
#define DRAFTHOST_API __declspec(dllexport)
#else
#define DRAFTHOST_API __declspec(dllimport)
#endif
#else
#define DRAFTHOST_API
#endif

using ACHAR = wchar_t;  // UTF-16 code unit

using ads_real = double;
using ads_point = ads_real[3];
// Names an entity or a selection set to LISP. Both words zero: no name.
using ads_name = std::int64_t[2];

inline void ads_name_set(const ads_name from, ads_name to) {
    to[0] = from[0];
    to[1] = from[1];
}
inline void ads_name_clear(ads_name name) {
    name[0] = name[1] = 0;
}
inline bool ads_name_nil(const ads_name name) {
    return name[0] == 0 && name[1] == 0;
}
inline bool ads_name_equal(const ads_name a, const ads_name b) {
    return a[0] == b[0] && a[1] == b[1];
}

// Results of the command-line and LISP interface.
enum AdsResult : int {
    RTNORM = 5100,    // done
    RTERROR = -5001,  // failed; the system variable ERRNO says why
    RTCAN = -5002,    // the drafter cancelled
    RTREJ = -5003,    // the host rejected the request
    RTKWORD = -5005,  // the drafter typed a keyword: fetch it with acedGetInput
    RTNONE = 5000,    // the drafter gave an empty response
};

// What an external LISP function returns to the host.
enum LispResult : int {
    RSRSLT = 1,  // the result set with acedRet..., nil when none was set
    RSERR = 3,   // the evaluation ends in a LISP error
};
