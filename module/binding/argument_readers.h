#pragma once

// Readers of LISP arguments. Each takes the cursor and, on success, stores the value, moves the cursor to the
// next node and returns true; on failure it returns false, stores nothing and leaves the cursor. Exceptions
// to this are stated. A null cursor (no arguments left) always fails. Nothing is ever printed: the status
// that the implementation returns decides the message.

#include "host/api/database.h"
#include "host/api/geometry.h"
#include "module/binding/value_list.h"

#include <string>

namespace tessary {

// Current node of an argument list; null when no arguments are left.
using ArgCursor = const resbuf*;

// The arguments of the running LISP call, released with this object.
class ArgumentList {
public:
    ArgumentList();
    // First argument, null when there is none. Valid while this object lives.
    ArgCursor first() const { return list_.get(); }

private:
    ValueList list_;
};

bool readListBegin(ArgCursor& cursor);
bool readListEnd(ArgCursor& cursor);

// Moves on when there is an argument, whatever it is.
void skipArg(ArgCursor& cursor);

bool readEntityName(ArgCursor& cursor, ads_name name);
// Fails also for a name that belongs to no object.
bool readObjectId(ArgCursor& cursor, AcDbObjectId& id);
bool readString(ArgCursor& cursor, std::wstring& text);
// Accepts only a real.
bool readReal(ArgCursor& cursor, double& value);

// Accepts integers, and reals, whose fraction is dropped; a real that fits no 32-bit integer, or is no
// number, gives the smallest integer. At a node of an entity data list (type code below 1000) it stores the
// group code itself and does not move: callers that walk entity data read the code first and the value with
// another reader.
bool readInteger(ArgCursor& cursor, int& value);

// A real, or what readInteger accepts.
bool readNumber(ArgCursor& cursor, double& value);

// Accepts a two-dimensional point (z is then 0), a three-dimensional point, a point of an entity data list
// (group codes 10 to 17), or two or three loose numbers. Of loose numbers the second must be a real or a
// 32-bit integer; only after a 16-bit integer its type is not looked at. A third number is taken as z when it
// is there.
bool readPoint(ArgCursor& cursor, AcGePoint3d& point);

// nil is false, everything else but a list true. At the end of a list the flag was left out: it is false, and
// the cursor stays there for readListEnd. Fails at the begin of a list.
bool readFlag(ArgCursor& cursor, bool& flag);
// The same as an automation value: 0 or -1.
bool readVariantBool(ArgCursor& cursor, short& flag);

}  // namespace tessary
