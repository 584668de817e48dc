// Which drawing files readDwgFile takes, and what it answers for the others.

#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/database/database_impl.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kDrawing = "999\nby hand\n  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n  8\n0\n 10\n1\n "
                                 "20\n2\n 11\n3\n 21\n4\n  0\nENDSEC\n  0\nEOF\n";

class DrawingFile : public ::testing::Test {
protected:
    void SetUp() override {
        folder_ = fs::temp_directory_path() / ("drawing_file_" + std::to_string(GetCurrentProcessId()));
        fs::create_directories(folder_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    fs::path file(const char* name, const std::string& bytes) {
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
        return folder_ / name;
    }
    // The status; a failure must leave the database empty and say why.
    Acad::ErrorStatus read(const fs::path& path, int shareMode = AcDb::kDenyWrite) {
        AcDbDatabase database(false, true);
        ACHAR* message = nullptr;
        const Acad::ErrorStatus status = database.readDwgFile(path.c_str(), shareMode, &message);
        message_ = message ? message : L"";
        acutDelString(message);
        EXPECT_EQ(status != Acad::eOk, message_.starts_with(path.wstring())) << fs::path(message_);
        EXPECT_EQ(status != Acad::eOk, database.modelSpaceId().isNull());
        EXPECT_EQ(std::wstring(database.fileName()), status == Acad::eOk ? path.wstring() : L"");
        return status;
    }

    fs::path folder_;
    std::wstring message_;
};

TEST_F(DrawingFile, ContentsDecideAboutTheFormat) {
    EXPECT_EQ(read(file("plan.dwg", kDrawing)), Acad::eOk);
    EXPECT_EQ(read(file("plan.txt", std::string("\xEF\xBB\xBF") + kDrawing)), Acad::eOk);
    EXPECT_EQ(read(file("empty.dwg", "")), Acad::eFileInternalErr);
    EXPECT_EQ(read(file("text.dwg", "AC/DC live at the plan\n")), Acad::eFileInternalErr);
    EXPECT_EQ(read(file("mark.dxf", "AC1015")), Acad::eFileInternalErr);
}

TEST_F(DrawingFile, VersionsThatAreNotReadAreNamed) {
    for (const auto& [mark, name] :
         {std::pair("AC1009", L"AC1009 (R11 or R12)"), std::pair("AC2.10", L"AC2.10 (2.10)"),
          std::pair("AC1032", L"AC1032 (2018)"), std::pair("AC1045", L"AC1045")}) {
        EXPECT_EQ(read(file("plan.dwg", std::string(mark) + std::string(500, '\0'))),
                  Acad::eInvalidFileVersion);
        EXPECT_NE(message_.find(std::wstring(L"version ") + name + L" cannot be read"), std::wstring::npos)
            << fs::path(message_);
    }
}

TEST_F(DrawingFile, FilesThatCannotBeOpened) {
    EXPECT_EQ(read(folder_ / "none.dwg"), Acad::eFileNotFound);
    EXPECT_EQ(read(folder_), Acad::eFileAccessErr);
    AcDbDatabase database(false, true);
    EXPECT_EQ(database.readDwgFile(nullptr), Acad::eInvalidInput);
    EXPECT_EQ(database.readDwgFile(L""), Acad::eInvalidInput);
}

TEST_F(DrawingFile, AFileThatIsBeingWrittenIsReadWhenNothingIsDenied) {
    const fs::path path = file("plan.dwg", kDrawing);
    const HANDLE writer = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(writer, INVALID_HANDLE_VALUE);
    EXPECT_EQ(read(path, AcDb::kDenyNone), Acad::eOk);
    EXPECT_EQ(read(path, AcDb::kDenyWrite), Acad::eFileAccessErr);
    CloseHandle(writer);
}

TEST_F(DrawingFile, ADrawingThatIsNotEmptyIsLeftAsItIs) {
    AcDbDatabase database(true, true);
    const AcDbObjectId space = database.modelSpaceId();
    for (const char* const contents : {kDrawing, "AC1015"}) {
        EXPECT_EQ(database.readDwgFile(file("plan.dwg", contents).c_str()), Acad::eNotApplicable);
        EXPECT_EQ(database.modelSpaceId(), space);
    }
}

}  // namespace
