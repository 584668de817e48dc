#include "module/database/document_connections.h"

#include <gtest/gtest.h>

namespace tessary::testing {

namespace {

// Counts the references that are held to it.
class CountedObject : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    ULONG references = 0;
};

TEST(DocumentConnections, newestRecordStandsFirstAndGoesFirst) {
    addDocumentConnection(L"first.dxf");
    addDocumentConnection(L"second.dxf");
    ASSERT_EQ(2u, documentConnections().size());
    EXPECT_EQ(L"second.dxf", documentConnections().front().fileName);
    EXPECT_EQ(nullptr, documentConnections().front().connection);
    EXPECT_EQ(L"", documentConnections().front().databasePath);
    EXPECT_FALSE(documentConnections().front().readOnly);

    removeNewestDocumentConnection();
    EXPECT_EQ(L"first.dxf", documentConnections().front().fileName);
    removeNewestDocumentConnection();
    removeNewestDocumentConnection();
    EXPECT_TRUE(documentConnections().empty());
}

TEST(DocumentConnections, forgettingRecordsReleasesTheirConnections) {
    CountedObject object;
    for (const wchar_t* name : {L"first.dxf", L"second.dxf", L"third.dxf"}) {
        addDocumentConnection(name);
        object.AddRef();
        documentConnections().front().connection.reset(&object);
    }
    removeNewestDocumentConnection();
    EXPECT_EQ(2u, object.references);
    closeAllConnections();
    EXPECT_EQ(0u, object.references);
    EXPECT_TRUE(documentConnections().empty());
}

}  // namespace

}  // namespace tessary::testing
