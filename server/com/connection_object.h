#pragma once

// The coclass DatabaseConnection: the interface's slots over a session. What the slots mean stands in the
// interface definition.

#include "server/com/automation_object.h"
#include "server/com/server_use.h"
#include "server/session/session.h"

#include <tessary_server.h>

namespace tessary::server {

// A connection's session with its lock: one call at a time. It outlives neither its object nor its client.
class ConnectionWork : public ClientWork {
public:
    explicit ConnectionWork(std::shared_ptr<Engine> engine) : session(std::move(engine)) {}
    void abandon() override;

    std::timed_mutex mutex;
    Session session;
};

class ConnectionObject final : public AutomationObject<DatabaseConnection> {
public:
    explicit ConnectionObject(std::shared_ptr<Engine> engine);

    HRESULT STDMETHODCALLTYPE OpenDatabase(BSTR path, VARIANT_BOOL exclusive, VARIANT_BOOL readOnly,
                                           BSTR* status) override;
    HRESULT STDMETHODCALLTYPE SelectTable(BSTR table, BSTR index, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE MoveFirst(VARIANT* record, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Skip(LONG count, VARIANT* record, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE GetRecord(VARIANT* record, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE IsAlive(VARIANT_BOOL* alive) override;
    HRESULT STDMETHODCALLTYPE IsOpen(VARIANT_BOOL* open) override;
    HRESULT STDMETHODCALLTYPE DatabasePath(BSTR* path) override;
    HRESULT STDMETHODCALLTYPE Reserved18() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved19() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Append(VARIANT fields, VARIANT_BOOL stay, VARIANT* record,
                                     VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE MoveLast(VARIANT* record, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE CloseTable(VARIANT_BOOL* closed) override;
    HRESULT STDMETHODCALLTYPE CloseAllTables(VARIANT_BOOL* closed) override;
    HRESULT STDMETHODCALLTYPE CloseDatabase(VARIANT_BOOL* closed) override;
    HRESULT STDMETHODCALLTYPE Count(LONG* count, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE DeleteRecord(VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE GetError(LONG* code, BSTR* text) override;
    HRESULT STDMETHODCALLTYPE IsWritable(VARIANT_BOOL* writable) override;
    HRESULT STDMETHODCALLTYPE IsErrorPending(VARIANT_BOOL* pending) override;
    HRESULT STDMETHODCALLTYPE TableExists(BSTR table, VARIANT_BOOL* exists, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE Structure(VARIANT* fields, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE ListIndexes(VARIANT* names, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE ModifyTable(BSTR table, VARIANT definition, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE RenameTable(BSTR oldName, BSTR newName, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE CurrentIndex(BSTR* name) override;
    HRESULT STDMETHODCALLTYPE CurrentTable(BSTR* name) override;
    HRESULT STDMETHODCALLTYPE Replace(VARIANT fields, VARIANT* record, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE Seek(VARIANT key, VARIANT* record, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE Seek2(VARIANT key1, VARIANT key2, VARIANT* record, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE Seek3(VARIANT key1, VARIANT key2, VARIANT key3, VARIANT* record,
                                    VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE SeekKeys(VARIANT key1, VARIANT key2, VARIANT key3, VARIANT key4, VARIANT key5,
                                       VARIANT key6, VARIANT key7, VARIANT key8, VARIANT key9, VARIANT key10,
                                       LONG count, VARIANT* record, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE CreateDatabase(BSTR path, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE CreateTable(BSTR table, VARIANT definition, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE IsReadOnly(VARIANT_BOOL* readOnly) override;
    HRESULT STDMETHODCALLTYPE DeleteTable(BSTR table, VARIANT_BOOL withRelations, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE ListTables(VARIANT* names, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE RunSql(BSTR statement, VARIANT* records, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE ExecuteSql(BSTR statement, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE RelationExists(BSTR relation, VARIANT_BOOL* exists, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE DeleteRelation(BSTR table, BSTR relation, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE Compact(BSTR source, BSTR target, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE LinkTable(BSTR name, BSTR file, BSTR table, VARIANT_BOOL* linked,
                                        VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE RunQuery(BSTR query, VARIANT parameters, VARIANT* records,
                                       VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE CreateIndex(BSTR table, BSTR index, VARIANT_BOOL unique, VARIANT_BOOL primary,
                                          VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE CreateQuery(BSTR name, BSTR statement, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE OpenForCustomization(BSTR path, VARIANT_BOOL* readOnly,
                                                   VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE IsAtEnd(VARIANT_BOOL* atEnd) override;
    HRESULT STDMETHODCALLTYPE IsAtBeginning(VARIANT_BOOL* atBeginning) override;
    HRESULT STDMETHODCALLTYPE FieldRequired(BSTR table, BSTR field, VARIANT_BOOL* required,
                                            VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE Attributes(BSTR name, VARIANT* attributes, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE Reserved61() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RunCommand(BSTR statement, LONG* count, VARIANT_BOOL* ok) override;
    HRESULT STDMETHODCALLTYPE Version(SHORT* version) override;

private:
    template <class Work>
    HRESULT locked(Work work);
    template <class Work>
    HRESULT perform(VARIANT_BOOL* ok, Work work);
    template <class Work>
    HRESULT performFor(VARIANT* answer, VARIANT_BOOL* ok, Work work);
    template <class Work>
    HRESULT performTest(VARIANT_BOOL* answer, VARIANT_BOOL* ok, Work work);
    template <class Work>
    HRESULT performMove(VARIANT* record, VARIANT_BOOL* ok, Work work);
    template <class Work>
    HRESULT performRows(VARIANT* records, VARIANT_BOOL* ok, Work work);
    template <class Question>
    HRESULT askFlag(VARIANT_BOOL* answer, Question question);
    template <class Question>
    HRESULT askText(BSTR* answer, Question question);
    HRESULT seek(std::initializer_list<const VARIANT*> keys, VARIANT* record, VARIANT_BOOL* ok);

    std::shared_ptr<ConnectionWork> work_;
    ServerUse::Booking booking_;
};

}  // namespace tessary::server
