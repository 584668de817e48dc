// Records of drawings without the host's drawings: the active one has no name here.

#include "module/database/document_connections.h"

#include "tests/module/fake_server.h"

#include <gtest/gtest.h>
#include <objbase.h>

#include <comdef.h>

namespace tessary::testing {

namespace {

class DocumentConnections : public ::testing::Test {
protected:
    DocumentConnections() {
        documentConnections().clear();
        setCurrentConnection(nullptr, L"", 0);
    }
    ~DocumentConnections() override {
        documentConnections().clear();
        setCurrentConnection(nullptr, L"", 0);
    }

    static ConnectionPointer addOpenRecord(const wchar_t* drawing, const wchar_t* path,
                                           bool readOnly = false) {
        const ConnectionPointer connection = createConnection();
        openDatabase(*connection, path, 0);
        documentConnections().push_front({drawing, connection, path, readOnly});
        return connection;
    }

private:
    struct ComApartment {
        ComApartment() { CoInitialize(nullptr); }
        ~ComApartment() { CoUninitialize(); }
    };
    ComApartment apartment_;

protected:
    FakeServer server;
};

TEST_F(DocumentConnections, newestRecordStandsFirstAndGoesFirst) {
    addDocumentConnection(L"first.dxf");
    addDocumentConnection(L"second.dxf");
    ASSERT_EQ(2u, documentConnections().size());
    EXPECT_EQ(L"second.dxf", documentConnections().front().fileName);
    EXPECT_FALSE(documentConnections().front().connection);
    EXPECT_EQ(L"", documentConnections().front().databasePath);
    EXPECT_FALSE(documentConnections().front().readOnly);

    removeNewestDocumentConnection();
    EXPECT_EQ(L"first.dxf", documentConnections().front().fileName);
    removeNewestDocumentConnection();
    removeNewestDocumentConnection();
    EXPECT_TRUE(documentConnections().empty());
}

TEST_F(DocumentConnections, activeDrawingGetsItsOwnConnectionBack) {
    const ConnectionPointer active = addOpenRecord(L"", L"a.mdb", true);
    addOpenRecord(L"third.dxf", L"c.mdb");
    const ConnectionPointer other = addOpenRecord(L"second.dxf", L"b.mdb");
    setCurrentConnection(other, L"b.mdb", 0);
    ensureDatabaseConnection();
    EXPECT_EQ(active.get(), serverState().currentConnection.get());
    EXPECT_EQ(L"a.mdb", serverState().currentDatabasePath);
    EXPECT_EQ(1, serverState().currentReadOnly);
    // The two records changed places.
    EXPECT_EQ(L"", documentConnections().front().fileName);
    EXPECT_EQ(L"second.dxf", documentConnections().back().fileName);
    EXPECT_EQ(other.get(), documentConnections().back().connection.get());

    documentConnections().pop_front();
    ensureDatabaseConnection();
    EXPECT_FALSE(serverState().currentConnection);
    EXPECT_EQ(L"", serverState().currentDatabasePath);
}

TEST_F(DocumentConnections, closedDatabaseIsForgottenButNotItsConnection) {
    const ConnectionPointer connection = addOpenRecord(L"", L"a.mdb");
    server.answerFlag("IsOpen", VARIANT_FALSE);
    ensureDatabaseConnection();
    EXPECT_EQ(connection.get(), serverState().currentConnection.get());
    EXPECT_EQ(L"", serverState().currentDatabasePath);
    EXPECT_EQ(L"", documentConnections().front().databasePath);
    EXPECT_EQ(
        (std::vector<std::string>{"1.OpenDatabase a.mdb 0 0", "1.IsAlive", "1.IsOpen", "1.CloseDatabase"}),
        server.allCalls());
}

TEST_F(DocumentConnections, deadConnectionIsForgottenByEveryRecord) {
    const ConnectionPointer connection = addOpenRecord(L"", L"a.mdb");
    documentConnections().push_back({L"second.dxf", connection, L"a.mdb", false});
    const ConnectionPointer healthy = createConnection();
    documentConnections().push_back({L"third.dxf", healthy, L"c.mdb", false});
    for (int i = 0; i < 3; ++i) {
        server.answerFlag("IsAlive", VARIANT_FALSE);
    }
    ensureDatabaseConnection();
    EXPECT_FALSE(serverState().currentConnection);
    std::string left;
    for (const DocumentConnection& record : documentConnections()) {
        left += record.connection ? "+" : "-";
        left += record.databasePath.empty() ? "-" : "+";
    }
    EXPECT_EQ("----++", left);
}

TEST_F(DocumentConnections, onlyRecordsWithNothingLeftArePurged) {
    addDocumentConnection(L"");
    addDocumentConnection(L"first.dxf");
    addOpenRecord(L"", L"a.mdb");
    addDocumentConnection(L"");
    purgeOrphanRecords();
    ASSERT_EQ(2u, documentConnections().size());
    EXPECT_TRUE(documentConnections().front().connection);
    EXPECT_EQ(L"first.dxf", documentConnections().back().fileName);
}

TEST_F(DocumentConnections, partOfAPathNamesTheDatabase) {
    const ConnectionPointer connection = addOpenRecord(L"", L"C:\\Jobs/Parts.MDB");
    EXPECT_TRUE(isSameDatabase(connection, L"c:/jobs\\PARTS.mdb"));
    EXPECT_TRUE(isSameDatabase(connection, L"parts.mdb"));
    EXPECT_FALSE(isSameDatabase(connection, L"C:\\Jobs\\Parts.mdb2"));
    EXPECT_FALSE(isSameDatabase(nullptr, L"parts.mdb"));
    server.answerFlag("IsAlive", VARIANT_FALSE);
    EXPECT_FALSE(isSameDatabase(connection, L"parts.mdb"));
}

TEST_F(DocumentConnections, errorOfADialogsConnectionIsKeptAndTheConnectionReleased) {
    ConnectionPointer connection = createConnection();
    EXPECT_FALSE(reportDatabaseError(connection));
    EXPECT_FALSE(connection);
    connection = createConnection();
    server.setError(3022, L"Duplicate.");
    setLastError(L"earlier");
    EXPECT_TRUE(reportDatabaseError(connection));
    EXPECT_EQ(L"(3022) Duplicate.", getLastError());
    EXPECT_EQ(0, server.objectCount());
    EXPECT_FALSE(reportServerError());

    connection = createConnection();
    server.setError(-2147467259, L"%s");
    EXPECT_EQ(L"%s", fetchServerError(*connection).text);
    EXPECT_EQ(L"(-2147467259) %s", getLastError());
    setLastError(L"");
}

// An object that describes its errors.
class DescribingObject : public ISupportErrorInfo {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = id == IID_ISupportErrorInfo ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
        return id == IID_DatabaseConnection ? S_OK : S_FALSE;
    }
};

std::wstring descriptionOfFailure(REFIID interfaceId) {
    ComPointer<ICreateErrorInfo> details;
    ComPointer<IErrorInfo> info;
    CreateErrorInfo(details.receive());
    details->SetDescription(const_cast<LPOLESTR>(L"why"));
    details->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(info.receive()));
    SetErrorInfo(0, info.get());
    DescribingObject object;
    try {
        raiseIfFailed(E_FAIL, object, interfaceId);
    } catch (const _com_error& error) {
        EXPECT_EQ(E_FAIL, error.Error());
        return textOf(error.Description());
    }
    return L"nothing raised";
}

TEST_F(DocumentConnections, failingCallIsRaisedWithTheObjectsDescription) {
    EXPECT_EQ(L"why", descriptionOfFailure(IID_DatabaseConnection));
    EXPECT_EQ(L"", descriptionOfFailure(IID_DatabaseService));
}

}  // namespace

}  // namespace tessary::testing
