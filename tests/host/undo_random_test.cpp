// Random drawing, undone and redone at random: every state is met again exactly.

#include <algorithm>
#include <random>

#include "host/database/class_registry.h"
#include "host/editor/undo_history.h"
#include "tests/host/database_drawing.h"
#include "tests/host/undo_states.h"

using namespace drafthost;
using drafthost::editor::UndoHistory;

namespace {

// An entity of a module: its contents live in a member of its own.
class Flag : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(Flag)
    double height = 1;
    bool setHeight(double value) {
        if (!assertWriteEnabled())
            return false;
        height = value;
        return true;
    }
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override {
        const auto status = AcDbEntity::dwgOutFields(filer);
        return status == Acad::eOk ? filer->writeDouble(height) : status;
    }
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override {
        const auto status = AcDbEntity::dwgInFields(filer);
        return status == Acad::eOk ? filer->readDouble(&height) : status;
    }
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override {
        AcDbEntity::dxfOutFields(filer);
        filer->writeItem(100, L"Flag");
        return filer->writeItem(40, height);
    }
};

AcRxClass* flagClass = nullptr;
AcRxClass* Flag::desc() {
    return flagClass;
}
AcRxClass* Flag::isA() const {
    return flagClass;
}

class FlagClass {
public:
    FlagClass() {
        flagClass = newAcRxClass(L"Flag", L"AcDbEntity", 1, 1, kProxyNoOperation, &constructObject<Flag>,
                                 L"FLAG", L"UndoTest");
        acrxBuildClassHierarchy();
    }
    ~FlagClass() { deleteAcRxClass(flagClass); }
};

// Random drawing.
class Drafter {
public:
    Drafter(AcDbDatabase& database, unsigned seed) : database_(database), random_(seed) {}

    int upTo(int limit) { return std::uniform_int_distribution(0, limit - 1)(random_); }

    void change() {
        switch (upTo(14)) {
            case 0:
            case 1: append(new AcDbLine({number(), number(), 0}, {number(), number(), 0})); break;
            case 2: append(new AcDbCircle({number(), 0, 0}, AcGeVector3d::kZAxis, 1 + number())); break;
            case 3: append(new Flag); break;
            case 4: moveOne(); break;
            case 5: colorOne(); break;
            case 6:
            case 7: eraseOrRestoreOne(); break;
            case 8: makeLayer(); break;
            case 9: changeLayer(); break;
            case 10: changeSettings(); break;
            case 11: changeDictionary(); break;
            case 12: defineBlock(); break;
            default: tagOne(); break;
        }
    }

    void changeInTransaction() {
        AcDbTransactionManager& transactions = *database_.transactionManager();
        transactions.startTransaction();
        for (int i = upTo(4); i >= 0; --i)
            change();
        upTo(2) ? transactions.endTransaction() : transactions.abortTransaction();
    }

private:
    double number() { return upTo(1000) / 8.0; }
    const wchar_t* name() { return kNames[upTo(5)]; }

    void append(AcDbEntity* entity) {
        entities_.push_back(AcDbObjectId());
        const AcDbObjectPointer<AcDbBlockTableRecord> space(database_.modelSpaceId(), AcDb::kForWrite);
        ASSERT_EQ(space->appendAcDbEntity(entities_.back(), entity), Acad::eOk);
        entity->close();
    }

    template <class Change>
    void withOne(bool erasedToo, Change change) {
        if (entities_.empty())
            return;
        const AcDbObjectId id = entities_[static_cast<std::size_t>(upTo(static_cast<int>(entities_.size())))];
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite, erasedToo);
        if (entity)
            change(*entity);
    }

    void moveOne() {
        withOne(false, [&](AcDbEntity& entity) {
            if (auto* const line = AcDbLine::cast(&entity))
                line->setEndPoint({number(), number(), number()});
            if (auto* const flag = Flag::cast(&entity))
                flag->setHeight(number());
        });
    }
    void colorOne() {
        withOne(false, [&](AcDbEntity& entity) {
            entity.setColorIndex(static_cast<std::uint16_t>(1 + upTo(7)));
            entity.setLayer(name());
        });
    }
    void eraseOrRestoreOne() {
        withOne(true, [](AcDbEntity& entity) { entity.erase(!entity.isErased()); });
    }
    void tagOne() {
        acdbRegApp(name());
        withOne(false, [&](AcDbEntity& entity) {
            const List data(acutBuildList(1001, name(), 1040, number(), RTNONE));
            entity.setXData(data.get());  // refused when the application is not registered
        });
    }

    void makeLayer() {
        AcDbLayerTable* table = nullptr;
        ASSERT_EQ(database_.getSymbolTable(table, AcDb::kForWrite), Acad::eOk);
        auto* const layer = new AcDbLayerTableRecord;
        layer->setName(name());
        AcDbObjectId id;
        if (table->add(id, layer) == Acad::eOk)
            layer->close();
        else
            delete layer;
        table->close();
    }
    void changeLayer() {
        AcDbObjectId id;
        {
            const AcDbObjectPointer<AcDbLayerTable> table(database_.layerTableId(), AcDb::kForRead);
            if (table->AcDbSymbolTable::getAt(name(), id) != Acad::eOk)
                return;
        }
        if (upTo(4) == 0)
            database_.setClayer(id);
        const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForWrite);
        switch (upTo(3)) {
            case 0: layer->erase(); break;  // refused when it is used
            case 1: layer->setName(name()); break;
            default: layer->setColorIndex(static_cast<std::uint16_t>(1 + upTo(200))); break;
        }
    }

    void changeSettings() {
        setHeaderVariable(database_, L"$LTSCALE", {{40, 1 + number()}});
        if (upTo(3) == 0)
            database_.impl().changeSettings().header.set(L"$PROJECTNAME", {{1, std::wstring(name())}});
    }

    void changeDictionary() {
        const AcDbObjectPointer<AcDbDictionary> named(database_.namedObjectsDictionaryId(), AcDb::kForWrite);
        if (upTo(3) == 0) {
            named->remove(name());
            return;
        }
        AcDbObjectId id;
        auto* const inner = new AcDbDictionary;
        ASSERT_EQ(named->setAt(name(), inner, id), Acad::eOk);
        inner->close();
    }

    void defineBlock() {
        AcDbBlockTable* table = nullptr;
        ASSERT_EQ(database_.getSymbolTable(table, AcDb::kForWrite), Acad::eOk);
        AcDbObjectId id;
        if (table->AcDbSymbolTable::getAt(name(), id) != Acad::eOk) {
            auto* const block = new AcDbBlockTableRecord;
            block->setName(name());
            if (table->add(id, block) == Acad::eOk)
                block->close();
            else
                delete block;
        }
        table->close();
        if (!id.isNull() && !id.isErased())
            fillBlock(id);
    }
    void fillBlock(AcDbObjectId id) {
        const AcDbObjectPointer<AcDbBlockTableRecord> block(id, AcDb::kForWrite);
        ASSERT_TRUE(block);
        if (upTo(3) == 0) {
            block->setOrigin({number(), 0, 0});
        } else if (upTo(4) == 0) {
            block->erase();
        } else {
            auto* const line = new AcDbLine({0, 0, 0}, {number(), 0, 0});
            ASSERT_EQ(block->appendAcDbEntity(line), Acad::eOk);
            line->close();
        }
    }

    AcDbDatabase& database_;
    std::mt19937 random_;
    std::vector<AcDbObjectId> entities_;
};

class RandomUndo : public DrawingTest, public testing::WithParamInterface<unsigned> {
protected:
    const FlagClass loaded_;
    UndoHistory history{db()};
};

TEST_P(RandomUndo, EveryStateIsMetAgain) {
    Drafter drafter(db(), GetParam());
    std::vector<std::string> states{stateOf(db())};  // behind each number of steps
    std::size_t place = 0;                           // where the drawing is among them
    std::vector<std::size_t> undone;                 // how many steps each undo took back
    for (int round = 0; round < 250; ++round) {
        const int action = drafter.upTo(10);
        if (action < 6) {
            const bool group = drafter.upTo(5) == 0;
            if (group)
                history.beginGroup();
            for (int i = drafter.upTo(4); i >= 0; --i) {
                drafter.upTo(5) ? drafter.change() : drafter.changeInTransaction();
                if (group)
                    history.endStep(L"LINE");
            }
            history.endStep(L"LISP");
            history.endGroup();
            if (history.steps() == place) {
                ASSERT_EQ(stateOf(db()), states[place]) << "changed, but no step, in round " << round;
                continue;
            }
            states.resize(++place);
            states.push_back(stateOf(db()));
            undone.clear();
        } else if (action < 9) {
            const auto steps = static_cast<std::size_t>(1 + drafter.upTo(6));
            const auto taken = std::min(steps, place);
            ASSERT_EQ(history.undo(static_cast<int>(steps)).names.size(), taken);
            place -= taken;
            if (taken > 0)
                undone.push_back(taken);
            ASSERT_EQ(stateOf(db()), states[place]) << "after undo, round " << round;
        } else {
            const std::size_t again = undone.empty() ? 0 : undone.back();
            ASSERT_EQ(history.redo().names.size(), again);
            place += again;
            if (!undone.empty())
                undone.pop_back();
            ASSERT_EQ(stateOf(db()), states[place]) << "after redo, round " << round;
        }
    }
    history.undoToMark();
    EXPECT_EQ(stateOf(db()), states[0]);
    while (history.redo().stop == UndoHistory::Stop::Done)
        continue;
    EXPECT_EQ(stateOf(db()), states.back());
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomUndo, testing::Range(1u, 13u));

}  // namespace
