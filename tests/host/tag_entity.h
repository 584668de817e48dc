#pragma once

// A class of a module, made for tests: a text at a point, with a symbol that, like some bytes, is not written
// into DXF files. Its record has a version; the class reads records up to newestVersion.

#include <cstdint>
#include <string>
#include <vector>

#include "host/api/entity.h"
#include "host/api/filer.h"
#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/unknown_objects.h"
#include "tests/host/database_drawing.h"

namespace drafthost {

class Tag : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(Tag)
    AcGePoint3d position;
    std::wstring text;
    AcDbObjectId symbol;
    std::vector<std::uint8_t> bytes{1, 2, 3};
    std::int8_t tiny = -5;
    std::int16_t small = -500;

    static inline int writtenVersion = 2;
    static inline int newestVersion = 2;
    static inline AcRxClass* cls = nullptr;

    // eNotOpenForWrite when it may not be changed.
    Acad::ErrorStatus setText(const std::wstring& value) {
        if (!assertWriteEnabled())
            return Acad::eNotOpenForWrite;
        text = value;
        return Acad::eOk;
    }

    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override {
        AcDbEntity::dwgOutFields(filer);
        filer->writeInt32(writtenVersion);
        filer->writePoint3d(position);
        filer->writeString(text.c_str());
        filer->writeInt8(tiny);
        filer->writeInt16(small);
        filer->writeInt32(static_cast<std::int32_t>(bytes.size()));
        filer->writeBytes(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
        filer->writeHardPointerId(symbol);
        return filer->filerStatus();
    }
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override {
        if (!assertWriteEnabled())
            return Acad::eNotOpenForWrite;
        AcDbEntity::dwgInFields(filer);
        std::int32_t version = 0, size = 0;
        filer->readInt32(&version);
        if (version > newestVersion)
            return Acad::eMakeMeProxy;
        if (version < 1)
            return filer->filerStatus();
        filer->readPoint3d(&position);
        ACHAR* read = nullptr;
        if (filer->readString(&read) == Acad::eOk)
            text = read;
        acutDelString(read);
        filer->readInt8(&tiny);
        filer->readInt16(&small);
        filer->readInt32(&size);
        bytes.resize(static_cast<std::size_t>(size));
        filer->readBytes(bytes.data(), static_cast<std::uint32_t>(size));
        filer->readHardPointerId(&symbol);
        return filer->filerStatus();
    }
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override {
        AcDbEntity::dxfOutFields(filer);
        filer->writeItem(100, L"Tag");
        filer->writeItem(10, position);
        filer->writeItem(1, text.c_str());
        return filer->filerStatus();
    }
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override {
        if (const auto status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
            return status;
        if (!filer->atSubclassData(L"Tag"))
            return Acad::eBadDxfSequence;
        for (;;) {
            const List node(acutNewRb(RTNIL));
            if (filer->readResBuf(node.get()) != Acad::eOk)
                break;
            if (node->restype == 10)
                position = {node->resval.rpoint[0], node->resval.rpoint[1], node->resval.rpoint[2]};
            if (node->restype == 1)
                text = node->resval.rstring;
        }
        if (text == L"from the future")
            return Acad::eMakeMeProxy;
        return filer->filerStatus();
    }
    Acad::ErrorStatus audit(AcDbAuditInfo* info) override {
        if (!text.empty())
            return Acad::eOk;
        info->errorsFound(1);
        info->printError(this, L"no text", L"a text", info->fixErrors() ? L"?" : L"");
        if (info->fixErrors() && setText(L"?") == Acad::eOk)
            info->errorsFixed(1);
        return Acad::eOk;
    }
};

inline AcRxClass* Tag::desc() {
    return cls;
}
inline AcRxClass* Tag::isA() const {
    return cls;
}

constexpr const wchar_t* kTagApplication = L"\"Tags|Example Company|www.example.com\"";

// A drawing, and the class, which a test may take away and bring back.
class TagTest : public DrawingTest {
protected:
    TagTest() { load(); }
    ~TagTest() override {
        unload();
        Tag::writtenVersion = Tag::newestVersion = 2;
    }

    static void load(int flags = kProxyEraseAllowed) {
        Tag::cls =
            newAcRxClass(L"Tag", L"AcDbEntity", 1, 1, flags, &constructObject<Tag>, L"TAG", kTagApplication);
        ASSERT_TRUE(Tag::cls);
        acrxBuildClassHierarchy();
    }
    static void unload() {
        deleteAcRxClass(Tag::cls);  // its objects are asked for it meanwhile
        Tag::cls = nullptr;
    }

    // Appended to model space. Its symbol is the block SYMBOL.
    AcDbObjectId addTag(const std::wstring& text) {
        symbol_ = symbol_.isNull() ? addBlock(L"SYMBOL") : symbol_;
        auto* const tag = new Tag;
        tag->position = {1, 2, 3};
        tag->text = text;
        tag->symbol = symbol_;
        return append(tag);
    }
    AcDbObjectId symbol() const { return symbol_; }

    // Null when the object is there, or nothing is.
    static const AcDbUnknownEntity* proxyAt(AcDbObjectId id) { return peek<AcDbUnknownEntity>(id); }
    static void erase(AcDbObjectId id) {
        ASSERT_EQ(AcDbObjectPointer<AcDbObject>(id, AcDb::kForWrite)->erase(), Acad::eOk);
    }

    static std::wstring textOf(AcDbObjectId id) {
        const AcDbObjectPointer<Tag> tag(id, AcDb::kForRead);
        return tag ? tag->text : L"(no tag)";
    }
    static Acad::ErrorStatus setText(AcDbObjectId id, const std::wstring& text) {
        const AcDbObjectPointer<Tag> tag(id, AcDb::kForWrite);
        return tag ? tag->setText(text) : tag.openStatus();
    }

private:
    AcDbObjectId symbol_;
};

}  // namespace drafthost
