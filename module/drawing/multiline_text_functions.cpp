#include "module/drawing/multiline_text_functions.h"

#include "host/api/documents.h"
#include "host/api/editor.h"
#include "host/api/text_entities.h"
#include "module/binding/argument_readers.h"
#include "module/binding/result_list.h"
#include "module/drawing/last_line_width.h"
#include "module/drawing/model_space.h"

#include <cmath>
#include <memory>

namespace tessary {

namespace {

using TextPointer = AcDbObjectPointer<AcDbMText>;

// Reads an entity name without looking whether it stands for an object: a stale one fails when it is opened.
bool readAnyObjectId(ArgCursor& cursor, AcDbObjectId& id) {
    ads_name name;
    if (!readEntityName(cursor, name)) {
        return false;
    }
    acdbGetObjectId(id, name);
    return true;
}

HandlerStatus openText(TextPointer& text, bool (*readId)(ArgCursor&, AcDbObjectId&), AcDb::OpenMode mode) {
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    AcDbObjectId id;
    if (!readId(cursor, id)) {
        return HandlerStatus::wrongType;
    }
    return text.open(id, mode) == Acad::eOk ? HandlerStatus::success : HandlerStatus::badData;
}

// The measures below only read, but ask for write: a text on a locked layer is bad data to them, and callers
// use that.
HandlerStatus openTextForWrite(TextPointer& text) {
    return openText(text, readObjectId, AcDb::kForWrite);
}

void returnSuccess(Acad::ErrorStatus status) {
    if (status == Acad::eOk) {
        acedRetT();
    }
}

// Opens the object within a transaction that is undone at the end, so that nobody sees what is tried out on
// it.
class TrialTransaction {
public:
    TrialTransaction() : manager_(acDocManager->curDocument()->transactionManager()) {
        manager_->startTransaction();
    }
    ~TrialTransaction() { manager_->abortTransaction(); }
    TrialTransaction(const TrialTransaction&) = delete;
    TrialTransaction& operator=(const TrialTransaction&) = delete;

    // Null when the object cannot be had for write.
    AcDbObject* objectForWrite(AcDbObjectId id) {
        AcDbObject* object = nullptr;
        return manager_->getObject(object, id, AcDb::kForWrite, false) == Acad::eOk ? object : nullptr;
    }

private:
    AcDbTransactionManager* manager_;
};

// A style that the drawing does not have leaves the one the text got when it was made.
void setStyleByName(AcDbMText& text, const std::wstring& name) {
    AcDbTextStyleTable* opened = nullptr;
    if (currentDatabase()->getSymbolTable(opened, AcDb::kForRead) != Acad::eOk) {
        return;
    }
    const std::unique_ptr<AcDbTextStyleTable, CloseObject> styles(opened);
    AcDbObjectId style;
    if (styles->getAt(name.c_str(), style) == Acad::eOk) {
        text.setTextStyle(style);
    }
}

// The optional arguments. Only a width and an attachment that cannot be read take their place in the list; a
// style that is left out takes none, so an attachment is found behind a style only.
void readTextOptions(ArgCursor cursor, AcDbMText& text) {
    double width = 0;
    if (!readNumber(cursor, width)) {
        skipArg(cursor);
    }
    text.setWidth(width);
    std::wstring style;
    if (readString(cursor, style)) {
        setStyleByName(text, style);
    }
    int attachment = 0;
    if (readInteger(cursor, attachment)) {
        text.setAttachment(static_cast<AcDbMText::AttachmentPoint>(attachment));
    }
}

}  // namespace

HandlerStatus multilineTextWidth() {
    acedRetNil();
    TextPointer text;
    const HandlerStatus status = openText(text, readAnyObjectId, AcDb::kForRead);
    if (status == HandlerStatus::success) {
        acedRetReal(text->actualWidth());
    }
    return status;
}

HandlerStatus multilineTextHeight() {
    acedRetNil();
    TextPointer text;
    const HandlerStatus status = openText(text, readAnyObjectId, AcDb::kForRead);
    if (status == HandlerStatus::success) {
        const bool isEmpty = takeHostText(text->contents()).empty();
        acedRetReal(isEmpty ? text->textHeight() : text->actualHeight());
    }
    return status;
}

// How far the first line rises above its letters' height, never negative.
HandlerStatus multilineTextAscent() {
    acedRetNil();
    TextPointer text;
    const HandlerStatus status = openTextForWrite(text);
    if (status == HandlerStatus::success) {
        const double excess = text->ascent() - text->textHeight();
        acedRetReal(excess > 0.0 ? excess : 0.0);
    }
    return status;
}

HandlerStatus multilineTextDescent() {
    acedRetNil();
    TextPointer text;
    const HandlerStatus status = openTextForWrite(text);
    if (status == HandlerStatus::success) {
        acedRetReal(text->descent());
    }
    return status;
}

// An object that cannot be had, or is no multiline text, has a last line of no width: callers add widths up.
HandlerStatus lastLineWidth() {
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    AcDbObjectId id;
    if (!readObjectId(cursor, id)) {
        return HandlerStatus::wrongType;
    }
    double width = 0;
    {
        TrialTransaction transaction;
        if (AcDbMText* text = AcDbMText::cast(transaction.objectForWrite(id))) {
            width = measureLastLineWidth(*text);
        }
    }
    acedRetReal(width);
    return HandlerStatus::success;
}

// The direction as an angle, folded to the right half-plane: a text that runs to the left reports the angle
// of the opposite direction, so that labels beside it stay readable. A quarter turn has five decimals;
// callers compare with it.
HandlerStatus multilineTextDirection() {
    constexpr double quarterTurn = 1.57079;
    acedRetNil();
    TextPointer text;
    const HandlerStatus status = openTextForWrite(text);
    if (status != HandlerStatus::success) {
        return status;
    }
    const AcGeVector3d direction = text->direction();
    if (direction.x != 0.0) {
        acedRetReal(std::atan(direction.y / direction.x));
    } else if (direction.y != 0.0) {
        acedRetReal(direction.y > 0.0 ? quarterTurn : -quarterTurn);
    }
    return HandlerStatus::success;
}

HandlerStatus setMultilineTextNormal() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    AcDbObjectId id;
    AcGePoint3d normal;
    if (!readObjectId(cursor, id) || !readPoint(cursor, normal)) {
        return HandlerStatus::wrongType;
    }
    const TextPointer text(id, AcDb::kForWrite);
    if (!text) {
        return HandlerStatus::badData;
    }
    returnSuccess(text->setNormal(normal.asVector()));
    return HandlerStatus::success;
}

// Unlike the other functions this one and the mask give nil, not an error, for an entity that cannot be
// changed: programs run them over mixed selections.
HandlerStatus setMultilineTextDirection() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    AcDbObjectId id;
    double angle = 0;
    if (!readObjectId(cursor, id) || !readNumber(cursor, angle)) {
        return HandlerStatus::wrongType;
    }
    AcGeVector3d direction = AcGeVector3d::kXAxis;
    direction.rotateBy(angle, AcGeVector3d::kZAxis);
    const TextPointer text(id, AcDb::kForWrite);
    if (text) {
        returnSuccess(text->setDirection(direction));
    }
    return HandlerStatus::success;
}

HandlerStatus setMultilineTextMask() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    AcDbObjectId id;
    bool isMasked = false;
    double scale = 0;
    if (!readObjectId(cursor, id) || !readFlag(cursor, isMasked) || !readNumber(cursor, scale)) {
        return HandlerStatus::wrongType;
    }
    const TextPointer text(id, AcDb::kForWrite);
    if (text) {
        // A scale that the text refuses leaves the one it has; the mask is set all the same.
        text->setBackgroundFill(isMasked);
        text->setBackgroundScaleFactor(scale);
        text->setUseBackgroundColor(true);
        acedRetT();
    }
    return HandlerStatus::success;
}

HandlerStatus insertMultilineText() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring contents;
    AcGePoint3d location;
    if (!readString(cursor, contents) || !readPoint(cursor, location)) {
        return HandlerStatus::wrongType;
    }
    auto text = std::make_unique<AcDbMText>();
    text->setContents(contents.c_str());
    text->setLocation(location);
    readTextOptions(cursor, *text);
    AcDbMText* const inserted = text.release();
    if (appendToModelSpace(inserted)) {
        const std::unique_ptr<AcDbMText, CloseObject> closing(inserted);
        returnEntity(*inserted);
    }
    return HandlerStatus::success;
}

}  // namespace tessary
