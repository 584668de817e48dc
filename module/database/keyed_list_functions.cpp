#include "module/database/keyed_list_functions.h"

#include "host/api/database.h"
#include "host/api/editor.h"
#include "module/binding/argument_readers.h"
#include "module/binding/result_list.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace tessary {

namespace {

constexpr const ACHAR* applicationName = L"QUARNEL";

enum ExtendedDataCode : int { textItem = 1000, applicationItem = 1001, realItem = 1040, longItem = 1071 };

constexpr short binaryItem = 1004;
constexpr short noType = static_cast<short>(RTNONE);
// Type codes from here on are LISP types, not group codes.
constexpr short firstLispType = noType;

struct CodeRange {
    short first;
    short last;
    short lispType;
};

constexpr CodeRange codeRanges[] = {
    {999, 1003, RTSTR},           {binaryItem, binaryItem, binaryItem},
    {1005, 1009, RTSTR},          {1010, 1013, RT3DPOINT},
    {1038, 1059, RTREAL},         {1060, 1070, RTSHORT},
    {longItem, longItem, RTLONG},
};

// A keyed list on its way to an object.
class KeyedListWriter {
public:
    KeyedListWriter() { append(acutBuildList(applicationItem, applicationName, noType)); }

    void addText(const std::wstring& key, const std::wstring& value) {
        append(acutBuildList(textItem, key.c_str(), textItem, value.c_str(), noType));
    }
    void addReal(const std::wstring& key, double value) {
        append(acutBuildList(textItem, key.c_str(), realItem, value, noType));
    }
    void addInteger(const std::wstring& key, int value) {
        append(acutBuildList(textItem, key.c_str(), longItem, value, noType));
    }
    const resbuf* items() const { return items_.head(); }

private:
    void append(resbuf* nodes) { items_.append(ownValueList(nodes)); }

    ResultList items_;
};

// Reads the value of a key. nil, or the end of the list in the value's place, drops the key. False for what
// cannot be stored.
bool readValue(ArgCursor& cursor, const std::wstring& key, KeyedListWriter& list) {
    std::wstring text;
    double real = 0;
    int integer = 0;
    bool flag = false;
    if (readString(cursor, text)) {
        list.addText(key, text);
    } else if (readReal(cursor, real)) {
        list.addReal(key, real);
    } else if (readInteger(cursor, integer)) {
        list.addInteger(key, integer);
    } else {
        return readFlag(cursor, flag) && !flag;
    }
    return true;
}

// The pairs as far as keys follow each other: anything but a text in the place of a key ends the list.
bool readPairs(ArgCursor& cursor, KeyedListWriter& list) {
    std::wstring key;
    while (readString(cursor, key)) {
        if (!readValue(cursor, key, list)) {
            return false;
        }
    }
    return true;
}

// T when the object could be opened, whatever it made of the data: callers take T for "the object can be
// written", and one whose texts are too long for extended data keeps what it had.
void store(AcDbObjectId id, const KeyedListWriter& list) {
    const AcDbObjectPointer<AcDbObject> object(id, AcDb::kForWrite);
    if (!object) {
        return;
    }
    // Fails when the drawing knows the name already, which is as good.
    acdbRegApp(applicationName);
    object->setXData(list.items());
    acedRetT();
}

// The object's items after the application's name, with LISP types; null when there are none.
class KeyedListReader {
public:
    explicit KeyedListReader(AcDbObjectId id) {
        const AcDbObjectPointer<AcDbObject> object(id, AcDb::kForRead);
        if (!object) {
            return;
        }
        data_.reset(object->xData(applicationName));
        for (resbuf* item = data_.get(); item; item = item->rbnext) {
            item->restype = lispTypeOfExtendedData(item->restype);
        }
    }

    // Null without data.
    const resbuf* items() const { return data_ ? data_->rbnext : nullptr; }

private:
    ValueList data_;
};

bool isText(const resbuf& item) {
    return item.restype == RTSTR && item.resval.rstring;
}

// Behind an item: a text is a key, whose value is passed over with it.
const resbuf* nextItem(const resbuf& item) {
    const resbuf* const next = item.rbnext;
    return isText(item) && next ? next->rbnext : next;
}

void returnValueOf(const KeyedListReader& data, const std::wstring& key) {
    for (const resbuf* item = data.items(); item; item = nextItem(*item)) {
        if (!isText(*item) || key != item->resval.rstring) {
            continue;
        }
        if (item->rbnext) {
            acedRetVal(item->rbnext);
        }
        return;
    }
}

using Keys = std::vector<std::wstring>;

// The pairs in the order in which they are stored. keys: nothing for all of them.
void returnPairs(const KeyedListReader& data, const std::optional<Keys>& keys) {
    ResultList result;
    beginResultList(result);
    for (const resbuf* item = data.items(); item; item = nextItem(*item)) {
        if (!isText(*item) || !*item->resval.rstring || !item->rbnext) {
            continue;
        }
        const ACHAR* const key = item->resval.rstring;
        if (!keys || std::find(keys->begin(), keys->end(), key) != keys->end()) {
            result.append(makeNamedPair(key, *item->rbnext));
        }
    }
    endAndReturnList(result);
}

Keys readKeys(ArgCursor& cursor) {
    Keys keys;
    std::wstring key;
    while (readString(cursor, key)) {
        keys.push_back(key);
    }
    return keys;
}

}  // namespace

short lispTypeOfExtendedData(short groupCode) {
    if (groupCode < 0 || groupCode >= firstLispType) {
        return groupCode;
    }
    for (const CodeRange& range : codeRanges) {
        if (groupCode >= range.first && groupCode <= range.last) {
            return range.lispType;
        }
    }
    return noType;
}

HandlerStatus putKeyedList() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    AcDbObjectId id;
    if (!readObjectId(cursor, id)) {
        return HandlerStatus::wrongType;
    }
    KeyedListWriter list;
    // Without a second argument the application's name alone is written, which removes the list. Anything but
    // a list there, nil included, leaves the object alone.
    if (!cursor || (readListBegin(cursor) && readPairs(cursor, list))) {
        store(id, list);
    }
    return HandlerStatus::success;
}

HandlerStatus getKeyedValue() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    AcDbObjectId id;
    std::wstring key;
    if (!readObjectId(cursor, id) || !readString(cursor, key)) {
        return HandlerStatus::wrongType;
    }
    returnValueOf(KeyedListReader(id), key);
    return HandlerStatus::success;
}

HandlerStatus getKeyedList() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    AcDbObjectId id;
    if (!readObjectId(cursor, id)) {
        return HandlerStatus::wrongType;
    }
    if (!readListBegin(cursor)) {
        return HandlerStatus::success;
    }
    const Keys keys = readKeys(cursor);
    returnPairs(KeyedListReader(id), keys);
    return HandlerStatus::success;
}

HandlerStatus getWholeKeyedList() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    AcDbObjectId id;
    if (!readObjectId(cursor, id)) {
        return HandlerStatus::wrongType;
    }
    returnPairs(KeyedListReader(id), std::nullopt);
    return HandlerStatus::success;
}

}  // namespace tessary
