#pragma once

// A new drawing that is the working database, and short ways to put things into it. Every test must leave no
// object open and no value list behind.

#include <gtest/gtest.h>

#include <string>

#include "host/api/block_reference.h"
#include "host/api/curves.h"
#include "host/api/database.h"
#include "host/database/open_counters.h"

namespace drafthost {

struct ReleaseList {
    void operator()(resbuf* list) const { acutRelRb(list); }
};
using List = std::unique_ptr<resbuf, ReleaseList>;

class DrawingTest : public ::testing::Test {
protected:
    DrawingTest() : before_(openCounters()), database_(std::make_unique<AcDbDatabase>(true, true)) {
        previous_ = acdbHostApplicationServices()->workingDatabase();
        acdbHostApplicationServices()->setWorkingDatabase(database_.get());
    }
    ~DrawingTest() override {
        EXPECT_EQ(openCounters().openObjects, before_.openObjects) << "objects left open";
        acdbHostApplicationServices()->setWorkingDatabase(previous_);
        database_.reset();
        EXPECT_EQ(openCounters().valueNodes, before_.valueNodes) << "value lists left";
    }

    AcDbDatabase& db() { return *database_; }

    AcDbObjectId append(AcDbEntity* entity, AcDbObjectId block = AcDbObjectId()) {
        AcDbObjectPointer<AcDbBlockTableRecord> record(block.isNull() ? db().modelSpaceId() : block,
                                                       AcDb::kForWrite);
        AcDbObjectId id;
        const Acad::ErrorStatus status = record ? record->appendAcDbEntity(id, entity) : record.openStatus();
        EXPECT_EQ(status, Acad::eOk);
        if (status == Acad::eOk)
            entity->close();
        else
            delete entity;
        return id;
    }
    AcDbObjectId addLine(double x = 0) { return append(new AcDbLine({x, 0, 0}, {x + 1, 1, 0})); }

    template <class Table, class Record>
    AcDbObjectId addRecord(const wchar_t* name, Record* record = new Record) {
        AcDbObjectId id;
        Table* table = nullptr;
        EXPECT_EQ(record->setName(name), Acad::eOk);
        EXPECT_EQ(db().getSymbolTable(table, AcDb::kForWrite), Acad::eOk);
        EXPECT_EQ(table->add(id, record), Acad::eOk);
        table->close();
        record->close();
        return id;
    }
    AcDbObjectId addLayer(const wchar_t* name) {
        return addRecord<AcDbLayerTable, AcDbLayerTableRecord>(name);
    }
    AcDbObjectId addBlock(const wchar_t* name) {
        return addRecord<AcDbBlockTable, AcDbBlockTableRecord>(name);
    }

    static std::wstring layerOf(AcDbObjectId id) {
        AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        ACHAR* name = entity ? entity->layer() : nullptr;
        const std::wstring text = name ? name : L"";
        acutDelString(name);
        return text;
    }
    int modelSpaceCount() {
        AcDbObjectPointer<AcDbBlockTableRecord> space(db().modelSpaceId(), AcDb::kForRead);
        return space->entityIds().length();
    }

private:
    OpenCounters before_;
    std::unique_ptr<AcDbDatabase> database_;
    AcDbDatabase* previous_ = nullptr;
};

}  // namespace drafthost
