// The interface as a whole: numbers of the slots, scripting, lifetime, arguments that are no use.

#include "tests/server_com/slot_caller.h"

namespace tessary::server {

namespace {

struct Slot {
    int number;
    const wchar_t* name;
};

constexpr Slot connectionSlots[] = {
    {7, L"OpenDatabase"},    {8, L"SelectTable"},
    {9, L"MoveFirst"},       {10, L"Reserved10"},
    {11, L"Reserved11"},     {12, L"Reserved12"},
    {13, L"Skip"},           {14, L"GetRecord"},
    {15, L"IsAlive"},        {16, L"IsOpen"},
    {17, L"DatabasePath"},   {18, L"Reserved18"},
    {19, L"Reserved19"},     {20, L"Append"},
    {21, L"MoveLast"},       {22, L"CloseTable"},
    {23, L"CloseAllTables"}, {24, L"CloseDatabase"},
    {25, L"Count"},          {26, L"DeleteRecord"},
    {27, L"GetError"},       {28, L"IsWritable"},
    {29, L"IsErrorPending"}, {30, L"TableExists"},
    {31, L"Structure"},      {32, L"ListIndexes"},
    {33, L"ModifyTable"},    {34, L"RenameTable"},
    {35, L"CurrentIndex"},   {36, L"CurrentTable"},
    {37, L"Replace"},        {38, L"Seek"},
    {39, L"Seek2"},          {40, L"Seek3"},
    {41, L"SeekKeys"},       {42, L"CreateDatabase"},
    {43, L"CreateTable"},    {44, L"IsReadOnly"},
    {45, L"DeleteTable"},    {46, L"ListTables"},
    {47, L"RunSql"},         {48, L"ExecuteSql"},
    {49, L"RelationExists"}, {50, L"DeleteRelation"},
    {51, L"Compact"},        {52, L"LinkTable"},
    {53, L"RunQuery"},       {54, L"CreateIndex"},
    {55, L"CreateQuery"},    {56, L"OpenForCustomization"},
    {57, L"IsAtEnd"},        {58, L"IsAtBeginning"},
    {59, L"FieldRequired"},  {60, L"Attributes"},
    {61, L"Reserved61"},     {62, L"RunCommand"},
    {63, L"Version"},
};

// The face of a dual interface that tells of the virtual table.
ComPtr<ITypeInfo> tableOf(ITypeLib& library, REFIID id) {
    ComPtr<ITypeInfo> dispatch;
    ComPtr<ITypeInfo> table;
    HREFTYPE reference = 0;
    EXPECT_EQ(library.GetTypeInfoOfGuid(id, &dispatch), S_OK);
    EXPECT_EQ(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
    EXPECT_EQ(dispatch->GetRefTypeInfo(reference, &table), S_OK);
    return table;
}

ComPtr<ITypeLib> typeLibrary(const wchar_t* file) {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::filesystem::path beside = std::filesystem::path(path).parent_path() / file;
    ComPtr<ITypeLib> library;
    EXPECT_EQ(LoadTypeLibEx(beside.c_str(), REGKIND_NONE, &library), S_OK);
    return library;
}

std::wstring methodAt(ITypeInfo& info, UINT place, int& slotNumber) {
    FUNCDESC* description = nullptr;
    if (FAILED(info.GetFuncDesc(place, &description))) {
        return L"";
    }
    Bstr name(nullptr);
    info.GetDocumentation(description->memid, name.address(), nullptr, nullptr, nullptr);
    slotNumber = description->oVft / static_cast<int>(sizeof(void*));
    info.ReleaseFuncDesc(description);
    return name.text();
}

TEST(TypeLibrary, MethodsStandInTheirSlots) {
    const ComPtr<ITypeLib> library = typeLibrary(L"TessaryServer.dll");
    const ComPtr<ITypeInfo> connection = tableOf(*library.Get(), IID_DatabaseConnection);
    for (UINT i = 0; i < std::size(connectionSlots); ++i) {
        int number = 0;
        // A type library keeps one spelling of a word, and "count" is an argument too.
        EXPECT_EQ(_wcsicmp(methodAt(*connection.Get(), i, number).c_str(), connectionSlots[i].name), 0)
            << i + 7;
        EXPECT_EQ(number, connectionSlots[i].number);
    }
    int number = 0;
    EXPECT_EQ(methodAt(*connection.Get(), std::size(connectionSlots), number), L"");
    const ComPtr<ITypeInfo> service = tableOf(*library.Get(), IID_DatabaseService);
    EXPECT_EQ(methodAt(*service.Get(), 0, number), L"Start");
    EXPECT_EQ(number, 7);
    EXPECT_EQ(methodAt(*service.Get(), 1, number), L"Stop");
    EXPECT_EQ(number, 8);
}

TEST(ServerLibrary, CanBeUnloadedWhenNothingIsLeft) {
    const auto canUnload = serverLibrary().function<decltype(&DllCanUnloadNow)>("DllCanUnloadNow");
    EXPECT_EQ(canUnload(), S_OK);
    ComPtr<DatabaseService> service = serverLibrary().create<DatabaseService>(CLSID_DatabaseServiceObject);
    EXPECT_EQ(canUnload(), S_FALSE);
    EXPECT_EQ(service->Start(), S_OK);
    ComPtr<DatabaseService> other = serverLibrary().create<DatabaseService>(CLSID_DatabaseServiceObject);
    service.Reset();
    EXPECT_EQ(canUnload(), S_FALSE);
    EXPECT_EQ(other->Stop(), S_OK);
    EXPECT_EQ(other->Stop(), S_OK);
    other.Reset();
    EXPECT_EQ(canUnload(), S_OK);
}

TEST(ServerLibrary, KnowsNoOtherClassAndNoAggregation) {
    const auto getClass = serverLibrary().function<decltype(&DllGetClassObject)>("DllGetClassObject");
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(getClass(IID_IUnknown, IID_IClassFactory, &factory), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(getClass(CLSID_DatabaseServiceObject, IID_IClassFactory, nullptr), E_POINTER);
    ASSERT_EQ(getClass(CLSID_DatabaseServiceObject, IID_IClassFactory, &factory), S_OK);
    ComPtr<IUnknown> object;
    EXPECT_EQ(factory->CreateInstance(factory.Get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IPersist, &object), E_NOINTERFACE);
    EXPECT_EQ(serverLibrary().function<decltype(&DllCanUnloadNow)>("DllCanUnloadNow")(), S_OK);
}

class ServerInterface : public ConnectionTest {};

TEST_F(ServerInterface, UnusedSlotsSayThatTheyAreNot) {
    for (const int number : {10, 11, 12, 18, 19, 61}) {
        EXPECT_EQ(slot(number), E_NOTIMPL) << number;
    }
}

TEST_F(ServerInterface, OutParametersThatAreNoPointersAreRefused) {
    VARIANT* const noVariant = nullptr;
    VARIANT_BOOL* const noFlag = nullptr;
    BSTR* const noText = nullptr;
    LONG* const noCount = nullptr;
    const Variant value;
    VARIANT_BOOL ok = VARIANT_TRUE;
    Variant record;
    for (const int number : {15, 16, 22, 23, 24, 26, 28, 29, 44, 57, 58}) {
        EXPECT_EQ(slot(number, noFlag), E_POINTER) << number;
    }
    for (const int number : {17, 35, 36}) {
        EXPECT_EQ(slot(number, noText), E_POINTER) << number;
    }
    for (const int number : {9, 14, 21, 31, 32, 46}) {
        EXPECT_EQ(slot(number, noVariant, &ok), E_POINTER) << number;
        EXPECT_EQ(slot(number, static_cast<VARIANT*>(&record), noFlag), E_POINTER) << number;
    }
    EXPECT_EQ(slot(7, BSTR(nullptr), VARIANT_FALSE, VARIANT_FALSE, noText), E_POINTER);
    EXPECT_EQ(slot(25, noCount, &ok), E_POINTER);
    EXPECT_EQ(slot(27, noCount, noText), E_POINTER);
    EXPECT_EQ(slot(38, static_cast<VARIANT>(value), noVariant, &ok), E_POINTER);
    EXPECT_EQ(slot(62, BSTR(nullptr), noCount, &ok), E_POINTER);
    EXPECT_EQ(slot(63, static_cast<SHORT*>(nullptr)), E_POINTER);
}

TEST_F(ServerInterface, NullTextsAreEmptyTexts) {
    EXPECT_NE(call(42, BSTR(nullptr)), "ok");
    createAndOpen();
    EXPECT_EQ(call(8, BSTR(nullptr), BSTR(nullptr)), "error 3078");
    EXPECT_EQ(call(48, BSTR(nullptr)), "error 3075");
}

TEST_F(ServerInterface, ScriptsCallByName) {
    ComPtr<IDispatch> dispatch;
    ASSERT_EQ(connection.As(&dispatch), S_OK);
    wchar_t name[] = L"databasepath";
    LPOLESTR names[] = {name};
    DISPID id = 0;
    ASSERT_EQ(dispatch->GetIDsOfNames(IID_NULL, names, 1, LOCALE_NEUTRAL, &id), S_OK);
    createAndOpen();
    DISPPARAMS none{};
    Variant result;
    ASSERT_EQ(
        dispatch->Invoke(id, IID_NULL, LOCALE_NEUTRAL, DISPATCH_METHOD, &none, &result, nullptr, nullptr),
        S_OK);
    ASSERT_EQ(result.vt, VT_BSTR);
    EXPECT_EQ(std::wstring(result.bstrVal), file(L"plan.qn"));
    wchar_t unknown[] = L"NoSuchMethod";
    names[0] = unknown;
    EXPECT_EQ(dispatch->GetIDsOfNames(IID_NULL, names, 1, LOCALE_NEUTRAL, &id), DISP_E_UNKNOWNNAME);
    ComPtr<ISupportErrorInfo> support;
    ASSERT_EQ(connection.As(&support), S_OK);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_DatabaseConnection), S_OK);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
}

}  // namespace

}  // namespace tessary::server
