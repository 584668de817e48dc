#pragma once

// Value lists: the linked lists of typed result buffers that carry LISP arguments, results and entity data.

#include "host/api/types.h"

// Type codes of a node. Codes below 1000 are entity data group codes, 1000 to 1071 extended data.
enum ResultType : short {
    RTENDLIST = -1,
    RTNONE_TYPE = 5000,
    RTREAL = 5001,
    RTPOINT = 5002,  // two-dimensional; z is not meaningful
    RTSHORT = 5003,
    RTANG = 5004,
    RTSTR = 5005,
    RTENAME = 5006,
    RTPICKS = 5007,
    RTORINT = 5008,
    RT3DPOINT = 5009,
    RTLONG = 5010,
    RTVOID = 5014,
    RTLB = 5016,
    RTLE = 5017,
    RTDOTE = 5018,
    RTNIL = 5019,
    RTDXF0 = 5020,  // for acutBuildList only: group 0 (an entity's type), since a plain 0 ends the arguments
    RTT = 5021,
};

struct ads_binary {
    short clen;  // bytes
    char* buf;
};

union ads_u_val {
    ads_real rreal;
    ads_real rpoint[3];
    // A node of 16-bit type keeps the value sign-extended in the whole 32-bit slot, so that rlong reads it
    // too.
    short rint;
    std::int32_t rlong;
    ACHAR* rstring;  // owned by the node
    ads_name rlname;
    ads_binary rbinary;  // buf owned by the node
};

struct resbuf {
    resbuf* rbnext;  // null at the end
    short restype;
    ads_u_val resval;
};

// A new node of the type with a zero value (a string node: the empty text). Null for memory exhaustion.
// Caller frees with acutRelRb.
DRAFTHOST_API resbuf* acutNewRb(int type);

// Frees a whole list with its texts. Null is accepted. Returns RTNORM.
DRAFTHOST_API int acutRelRb(resbuf* list);

// Builds a list from pairs of type code and value, ended by RTNONE or 0 in the place of a type code. Values:
// double, ads_point (copied), int (16-bit types), std::int32_t (RTLONG, 90 to 99, 1071), const ACHAR*
// (copied), ads_name (copied); RTLB, RTLE, RTDOTE, RTNIL, RTT and RTVOID have no value. Null for an unknown
// type code. Caller frees with acutRelRb.
DRAFTHOST_API resbuf* acutBuildList(int type, ...);

// A new string with a copy of text, released by acutDelString.
DRAFTHOST_API int acutNewString(const ACHAR* text, ACHAR*& copy);
DRAFTHOST_API void acutDelString(ACHAR*& text);

// What the value of a node with this type code is.
enum class ResultKind { None, Real, Point, Short, Long, String, Name, Handle, Binary, Int64 };
// Works for LISP type codes and for group codes; group codes of handles and strings are both texts.
DRAFTHOST_API ResultKind acutResultKind(int type);
