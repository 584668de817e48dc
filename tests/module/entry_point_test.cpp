// The entry point as the host calls it, without a drawing. What it does for drawings is tested in a session.

#include "host/api/rx.h"
#include "module/database/document_connections.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <memory>

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet);
extern "C" std::uint32_t acrxGetApiVersion();

namespace tessary::testing {

namespace {

bool isAnnounced() {
    const std::unique_ptr<void, decltype(&CloseHandle)> mutex(
        OpenMutexW(SYNCHRONIZE, FALSE, L"QuarnelTessary"), &CloseHandle);
    return mutex != nullptr;
}

AcRx::AppRetCode send(int message) {
    return acrxEntryPoint(static_cast<AcRx::AppMsgCode>(message), nullptr);
}

TEST(EntryPoint, otherMessagesDoNothing) {
    for (const int message : {0, 5, 6, 100, -1}) {
        EXPECT_EQ(0, send(message)) << message;
    }
    EXPECT_EQ(nullptr, acrxFindClass(L"QNLeader"));
    EXPECT_TRUE(documentConnections().empty());
}

TEST(EntryPoint, moduleStaysAnnouncedWhenItIsLoadedAgain) {
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(0, send(AcRx::kInitAppMsg));
        EXPECT_TRUE(isAnnounced());
        EXPECT_EQ(0, send(AcRx::kUnloadAppMsg));
        EXPECT_TRUE(isAnnounced());
    }
    EXPECT_TRUE(documentConnections().empty());
}

TEST(EntryPoint, closingWithoutDocumentsForgetsAllConnections) {
    addDocumentConnection(L"first.dxf");
    addDocumentConnection(L"second.dxf");
    EXPECT_EQ(0, send(AcRx::kUnloadDwgMsg));
    EXPECT_TRUE(documentConnections().empty());
}

TEST(EntryPoint, interfaceVersionIsTheHosts) {
    EXPECT_EQ(0x00120000u, acrxGetApiVersion());
}

}  // namespace

}  // namespace tessary::testing
