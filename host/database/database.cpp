// AcDbDatabase: tables, current settings, adding objects.

#include "host/api/database.h"

#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/default_drawing.h"
#include "host/database/loading.h"
#include "host/database/transactions.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbDatabase, AcRxObject, nullptr, nullptr)

namespace {

template <class Table>
Acad::ErrorStatus openTable(Table*& table, AcDbObjectId id, AcDb::OpenMode mode) {
    return acdbOpenObject(table, id, mode);
}

// A record of this database for a setting.
template <class Record>
Acad::ErrorStatus setCurrent(AcDbDatabase& database, AcDbObjectId DatabaseSettings::*setting,
                             AcDbObjectId id) {
    if (id.isNull())
        return Acad::eNullObjectId;
    if (id.database() != &database)
        return Acad::eWrongDatabase;
    if (id.isErased())
        return Acad::eWasErased;
    if (!peek<Record>(id))
        return Acad::eWrongObjectType;
    database.impl().changeSettings().*setting = id;
    return Acad::eOk;
}

}  // namespace

AcDbDatabase::AcDbDatabase(bool buildDefaultDrawing, bool noDocument) : impl_(new Impl(this, noDocument)) {
    if (!buildDefaultDrawing)
        return;
    impl_->settings.header = defaultHeaderVariables();
    impl_->classes = defaultClasses();
    finishLoading(*this);
}

AcDbDatabase::~AcDbDatabase() {
    delete impl_;
}

Acad::ErrorStatus AcDbDatabase::getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode) const {
    return openTable(table, blockTableId(), mode);
}
Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbBlockTable*& table, AcDb::OpenMode mode) const {
    return openTable(table, blockTableId(), mode);
}
Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbLayerTable*& table, AcDb::OpenMode mode) const {
    return openTable(table, layerTableId(), mode);
}
Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode) const {
    return openTable(table, linetypeTableId(), mode);
}
Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbTextStyleTable*& table, AcDb::OpenMode mode) const {
    return openTable(table, textStyleTableId(), mode);
}
Acad::ErrorStatus AcDbDatabase::getSymbolTable(AcDbRegAppTable*& table, AcDb::OpenMode mode) const {
    return openTable(table, regAppTableId(), mode);
}
Acad::ErrorStatus AcDbDatabase::getNamedObjectsDictionary(AcDbDictionary*& dictionary,
                                                          AcDb::OpenMode mode) const {
    return openTable(dictionary, namedObjectsDictionaryId(), mode);
}

AcDbObjectId AcDbDatabase::blockTableId() const {
    return impl_->table(TableIndex::Block);
}
AcDbObjectId AcDbDatabase::layerTableId() const {
    return impl_->table(TableIndex::Layer);
}
AcDbObjectId AcDbDatabase::linetypeTableId() const {
    return impl_->table(TableIndex::Linetype);
}
AcDbObjectId AcDbDatabase::textStyleTableId() const {
    return impl_->table(TableIndex::TextStyle);
}
AcDbObjectId AcDbDatabase::regAppTableId() const {
    return impl_->table(TableIndex::RegApp);
}
AcDbObjectId AcDbDatabase::dimStyleTableId() const {
    return impl_->table(TableIndex::DimStyle);
}
AcDbObjectId AcDbDatabase::viewTableId() const {
    return impl_->table(TableIndex::View);
}
AcDbObjectId AcDbDatabase::ucsTableId() const {
    return impl_->table(TableIndex::Ucs);
}
AcDbObjectId AcDbDatabase::viewportTableId() const {
    return impl_->table(TableIndex::Viewport);
}
AcDbObjectId AcDbDatabase::namedObjectsDictionaryId() const {
    return impl_->namedObjects;
}
AcDbObjectId AcDbDatabase::modelSpaceId() const {
    return impl_->modelSpace;
}
AcDbObjectId AcDbDatabase::paperSpaceId() const {
    return impl_->paperSpace;
}
AcDbObjectId AcDbDatabase::layerZero() const {
    return findRecord(this, TableIndex::Layer, L"0");
}
AcDbObjectId AcDbDatabase::clayer() const {
    return impl_->settings.layer;
}
AcDbObjectId AcDbDatabase::textstyle() const {
    return impl_->settings.textStyle;
}
AcDbObjectId AcDbDatabase::celtype() const {
    return impl_->settings.linetype;
}
AcDbObjectId AcDbDatabase::byLayerLinetype() const {
    return findRecord(this, TableIndex::Linetype, L"ByLayer");
}
AcDbObjectId AcDbDatabase::byBlockLinetype() const {
    return findRecord(this, TableIndex::Linetype, L"ByBlock");
}
AcDbObjectId AcDbDatabase::continuousLinetype() const {
    return findRecord(this, TableIndex::Linetype, L"Continuous");
}

Acad::ErrorStatus AcDbDatabase::setClayer(AcDbObjectId id) {
    return setCurrent<AcDbLayerTableRecord>(*this, &DatabaseSettings::layer, id);
}

Acad::ErrorStatus AcDbDatabase::setTextstyle(AcDbObjectId id) {
    return setCurrent<AcDbTextStyleTableRecord>(*this, &DatabaseSettings::textStyle, id);
}

std::uint16_t AcDbDatabase::cecolor() const {
    return static_cast<std::uint16_t>(impl_->settings.header.integer(L"$CECOLOR", 256));
}
double AcDbDatabase::ltscale() const {
    return impl_->settings.header.real(L"$LTSCALE", 1);
}
double AcDbDatabase::textsize() const {
    return impl_->settings.header.real(L"$TEXTSIZE", 2.5);
}
double AcDbDatabase::dimscale() const {
    return impl_->settings.header.real(L"$DIMSCALE", 1);
}
const ACHAR* AcDbDatabase::fileName() const {
    return impl_->fileName.c_str();
}

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId& id, AcDbHandle handle) const {
    AcDbStub* const stub = impl_->find(handle);
    id = AcDbObjectId(stub && stub->object ? stub : nullptr);
    return id.isNull() ? Acad::eUnknownHandle : Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObjectId& id, AcDbObject* object) {
    return impl_->add(object, AcDbObjectId(), AcDbHandle(), id);
}

AcDbTransactionManager* AcDbDatabase::transactionManager() const {
    return impl_->transactions.get();
}

AcDbHostApplicationServices::~AcDbHostApplicationServices() = default;
