#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "host/api/block_reference.h"
#include "host/api/curves.h"
#include "host/api/text_entities.h"
#include "host/database/database_impl.h"
#include "host/exchange/dxf_reader.h"
#include "host/exchange/dxf_writer.h"

using namespace drafthost;
using namespace drafthost::exchange;

namespace {

namespace fs = std::filesystem;

std::string section(const std::string& name, const std::string& content) {
    return "0\nSECTION\n2\n" + name + "\n" + content + "0\nENDSEC\n";
}
std::string drawing(const std::string& version, const std::string& sections) {
    return section("HEADER", "9\n$ACADVER\n1\n" + version + "\n") + sections + "0\nEOF\n";
}
std::string oldDrawing(const std::string& entities, const std::string& blocks = "") {
    return drawing("AC1009", section("BLOCKS", blocks) + section("ENTITIES", entities));
}

struct Drawing {
    AcDbDatabase database{false, true};
    DxfReadResult result;

    explicit Drawing(const std::string& bytes) : result(readDxfBytes(database, bytes, L"plan.dxf")) {}
    AcArray<AcDbObjectId> entities() const {
        const AcDbObjectPointer<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForRead);
        return space->entityIds();
    }
    bool found(AuditCode code) const {
        const auto& findings = result.audit.findings();
        return std::any_of(findings.begin(), findings.end(),
                           [&](const AuditFinding& f) { return f.code == code; });
    }
    std::string written() { return dxfBytes(database); }
};

// A folder that is removed with all it holds.
class Folder {
public:
    Folder()
        : path_(fs::temp_directory_path() /
                fs::path(::testing::UnitTest::GetInstance()->current_test_info()->name())) {
        fs::create_directories(path_);
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    fs::path operator/(const char* name) const { return path_ / name; }
    std::ptrdiff_t files() const {
        return std::distance(fs::directory_iterator(path_), fs::directory_iterator());
    }

private:
    fs::path path_;
};

std::string contents(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

const std::string kVertices = "0\nVERTEX\n8\nW\n10\n0\n20\n0\n42\n1\n0\nVERTEX\n8\nW\n10\n10\n20\n0\n0\nVERTE"
                              "X\n8\nW\n10\n10\n20\n5\n0\nSEQEND\n8\nW\n";

}  // namespace

TEST(ExchangeDxf, OldFileWithoutHandlesBecomesACompleteDrawing) {
    Drawing drawing(oldDrawing("0\nLINE\n8\nWALLS\n62\n1\n10\n1\n20\n2\n30\n3\n11\n4\n21\n5\n31\n6\n"));
    ASSERT_EQ(drawing.result.status, Acad::eOk);
    ASSERT_EQ(drawing.entities().length(), 1);
    const AcDbObjectPointer<AcDbLine> line(drawing.entities()[0], AcDb::kForRead);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->endPoint().z, 6);
    EXPECT_FALSE(line->handle().isNull());
    EXPECT_TRUE(drawing.found(AuditCode::MissingLayer));
    EXPECT_FALSE(drawing.database.paperSpaceId().isNull());
    EXPECT_NE(drawing.written().find("AC1015"), std::string::npos);
}

TEST(ExchangeDxf, PlainPolylineOfAnOldFileCanBeMeasured) {
    Drawing drawing(
        oldDrawing("0\nPOLYLINE\n8\nW\n66\n1\n70\n1\n10\n0\n20\n0\n30\n7\n40\n0.5\n41\n0.5\n" + kVertices));
    ASSERT_EQ(drawing.result.status, Acad::eOk);
    ASSERT_EQ(drawing.entities().length(), 1);
    const AcDbObjectPointer<AcDbPolyline> polyline(drawing.entities()[0], AcDb::kForRead);
    ASSERT_TRUE(polyline);
    EXPECT_EQ(polyline->numVerts(), 3u);
    EXPECT_TRUE(polyline->isClosed());
    EXPECT_EQ(polyline->elevation(), 7);
    double bulge = 0, start = 0, end = 0;
    polyline->getBulgeAt(0, bulge);
    polyline->getWidthsAt(1, start, end);
    EXPECT_EQ(bulge, 1);
    EXPECT_EQ(start, 0.5);
}

TEST(ExchangeDxf, MeshesAndSpacePolylinesKeepTheirVertices) {
    Drawing drawing(oldDrawing("0\nPOLYLINE\n8\nW\n66\n1\n70\n8\n" + kVertices));
    ASSERT_EQ(drawing.result.status, Acad::eOk);
    EXPECT_EQ(drawing.entities().length(), 1);
    const std::string out = drawing.written();
    EXPECT_LT(out.find("POLYLINE"), out.find("VERTEX"));
    EXPECT_LT(out.find("VERTEX"), out.find("SEQEND"));
}

TEST(ExchangeDxf, UnknownEntitiesObjectsAndSectionsComeBackUnchanged) {
    const std::string entity = "0\r\nFANCY\r\n  5\r\n2A\r\n330\r\n1F\r\n100\r\nAcDbEntity\r\n  "
                               "8\r\n0\r\n100\r\nAcDbFancy\r\n 10\r\n1.5\r\n 20\r\n2.5\r\n"
                               " 90\r\n3\r\n310\r\nDEADBEEF\r\n 42\r\n0.1\r\n";
    const std::string other = "  2\r\nSTRANGE\r\n 70\r\n  not a number \r\n310\r\nxyz\r\n";
    Drawing drawing(
        ::drawing("AC1015", section("ENTITIES", "  " + entity) + "0\nSECTION\n" + other + "0\nENDSEC\n"));
    ASSERT_EQ(drawing.result.status, Acad::eOk) << drawing.result.message.size();
    const std::string out = drawing.written();
    EXPECT_NE(
        out.find("AcDbFancy\r\n 10\r\n1.5\r\n 20\r\n2.5\r\n 90\r\n3\r\n310\r\nDEADBEEF\r\n 42\r\n0.1\r\n"),
        std::string::npos)
        << out;
    EXPECT_NE(out.find("FANCY\r\n  5\r\n2A\r\n"), std::string::npos);
    EXPECT_NE(out.find(other), std::string::npos);
}

TEST(ExchangeDxf, WritingReadingAndWritingGivesTheSameBytes) {
    const std::string block = "0\nBLOCK\n8\n0\n2\nPART\n70\n2\n10\n1\n20\n2\n30\n0\n0\nARC\n8\n0\n10\n0."
                              "1\n20\n1e-17\n40\n3\n50\n10\n51\n"
                              "350\n0\nENDBLK\n8\n0\n";
    Drawing first(oldDrawing("0\nINSERT\n8\n0\n66\n1\n2\nPART\n10\n5\n20\n5\n0\nATTRIB\n8\n0\n10\n1\n20\n1\n4"
                             "0\n2.5\n1\nvalue\n2\nTAG\n70\n0\n"
                             "0\nTEXT\n8\nT\n10\n1\n20\n1\n40\n0.3333333333333333\n1\n%%c \\U+2205 ^ x\n",
                             block));
    ASSERT_EQ(first.result.status, Acad::eOk);
    EXPECT_TRUE(first.found(AuditCode::MissingSequenceEnd));
    const std::string once = first.written();
    Drawing second(once);
    ASSERT_EQ(second.result.status, Acad::eOk);
    EXPECT_EQ(second.result.audit.findings().size(), 0u);
    EXPECT_EQ(second.written(), once);
}

// They stood behind two markers, and doubled with every saving.
TEST(ExchangeDxf, UnknownGroupsOfAnArrayOfInsertionsStandThereOnce) {
    const std::string insert =
        "0\nINSERT\n5\n2A\n330\n1F\n100\nAcDbEntity\n8\n0\n100\nAcDbMInsertBlock\n2\nPART\n10\n"
        "1\n20\n2\n70\n4\n71\n3\n44\n5\n270\n77\n";
    const std::string block =
        section("BLOCKS", "0\nBLOCK\n5\n2B\n8\n0\n2\nPART\n70\n0\n10\n0\n20\n0\n0\nENDBLK\n5\n2C\n8\n0\n");
    Drawing first(::drawing("AC1015", block + section("ENTITIES", insert)));
    ASSERT_EQ(first.result.status, Acad::eOk);
    const std::string once = first.written();
    const std::size_t at = once.find("270\r\n77\r\n");
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(once.find("270\r\n77\r\n", at + 1), std::string::npos);
    Drawing second(once);
    EXPECT_EQ(second.written(), once);
}

// One was lost with every saving.
TEST(ExchangeDxf, SurplusOwnersThatAreNotThereGoAtOnce) {
    const std::string objects = "0\nFANCY\n5\n2A\n330\n99\n330\n0\n330\n0\n100\nAcDbFancy\n90\n3\n";
    Drawing first(::drawing("AC1015", section("OBJECTS", objects)));
    ASSERT_EQ(first.result.status, Acad::eOk);
    const std::string once = first.written();
    EXPECT_NE(once.find("2A\r\n100\r\nAcDbFancy\r\n 90\r\n"), std::string::npos);
    Drawing second(once);
    EXPECT_EQ(second.written(), once);
}

TEST(ExchangeDxf, FileCutOffAnywhereIsRefusedOrReadButNeverHalf) {
    const std::string whole =
        oldDrawing("0\nLINE\n8\nA\n10\n1\n20\n2\n11\n3\n21\n4\n0\nPOLYLINE\n8\n0\n66\n1\n" + kVertices,
                   "0\nBLOCK\n2\nB\n10\n0\n20\n0\n0\nPOINT\n8\n0\n10\n0\n20\n0\n0\nENDBLK\n");
    for (std::size_t end = whole.find('\n'); end != std::string::npos; end = whole.find('\n', end + 1)) {
        Drawing drawing(whole.substr(0, end + 1));
        if (drawing.result.status == Acad::eOk)
            continue;
        EXPECT_EQ(drawing.result.status, Acad::eFileInternalErr);
        EXPECT_TRUE(drawing.result.message.starts_with(L"plan.dxf(line ")) << end;
        EXPECT_TRUE(drawing.database.modelSpaceId().isNull());
        EXPECT_TRUE(drawing.database.impl().stubs.empty());
    }
}

TEST(ExchangeDxf, MessageNamesFileLineAndValue) {
    Folder folder;
    std::ofstream(folder / "bad.dxf", std::ios::binary)
        << oldDrawing("0\nCIRCLE\n8\n0\n10\n0\n20\n0\n40\nabc\n");
    AcDbDatabase database(false, true);
    ACHAR* message = nullptr;
    EXPECT_EQ(database.readDxfFile((folder / "bad.dxf").wstring().c_str(), &message), Acad::eFileInternalErr);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(std::wstring(message),
              (folder / "bad.dxf").wstring() + L"(line 30): group 40: real number expected, found \"abc\"");
    acutDelString(message);
    EXPECT_EQ(database.readDxfFile((folder / "none.dxf").wstring().c_str(), &message), Acad::eFileNotFound);
    acutDelString(message);
    EXPECT_EQ(database.readDxfFile((folder / ".").wstring().c_str()), Acad::eFileAccessErr);
}

TEST(ExchangeDxf, HugeCountsNumbersAndLinesDoNoHarm) {
    const auto status = [](const std::string& entities) {
        Drawing drawing(oldDrawing(entities));
        return drawing.result.status;
    };
    status("0\nLWPOLYLINE\n8\n0\n100\nAcDbEntity\n100\nAcDbPolyline\n90\n2147483647\n70\n0\n10\n0\n20\n0\n");
    status("0\nSPLINE\n8\n0\n72\n65535\n73\n99999\n");
    EXPECT_EQ(status("0\nCIRCLE\n8\n0\n10\n0\n20\n0\n40\n1e999\n"), Acad::eFileInternalErr);
    EXPECT_EQ(status("0\nTEXT\n8\n0\n10\n0\n20\n0\n40\n1\n1\n" + std::string(3000000, 'x') + "\n"),
              Acad::eOk);
    EXPECT_EQ(status("0\nLINE\n5\nFFFFFFFFFFFFFFFF\n8\n0\n10\n0\n20\n0\n11\n1\n21\n1\n"), Acad::eOk);
}

TEST(ExchangeDxf, BinaryFilesAndFullDrawingsAreRefused) {
    Drawing binary("ABCDEFG Binary DXF\r\n\x1a" + std::string(9, '\0'));
    EXPECT_EQ(binary.result.status, Acad::eInvalidFileVersion);
    AcDbDatabase full(true, true);
    EXPECT_EQ(readDxfBytes(full, oldDrawing(""), L"x").status, Acad::eNotApplicable);
    EXPECT_FALSE(full.modelSpaceId().isNull());
}

TEST(ExchangeDxf, DefectsAreNumberedAndCounted) {
    const std::string insertSelf =
        "0\nBLOCK\n2\nA\n10\n0\n20\n0\n0\nINSERT\n8\n0\n2\nB\n10\n0\n20\n0\n0\nENDBLK\n"
        "0\nBLOCK\n2\nB\n10\n0\n20\n0\n0\nINSERT\n8\n0\n2\na\n10\n0\n20\n0\n0\nENDBLK\n"
        "0\nBLOCK\n2\nB\n10\n0\n20\n0\n0\nENDBLK\n";
    Drawing drawing(
        oldDrawing("0\nPOINT\n5\n2F0\n8\n0\n10\n0\n20\n0\n0\nPOINT\n5\n2F0\n8\n0\n10\n0\n20\n0\n"
                   "0\nINSERT\n8\n0\n2\nGONE\n10\n0\n20\n0\n0\nATTRIB\n8\n0\n10\n0\n20\n0\n1\nx\n2\nT\n70\n0"
                   "\n40\n1\n0\nSEQEND\n"
                   "0\nSEQEND\n0\nLINE\n8\n0\n6\nDOTTY\n10\n0\n20\n0\n11\n1\n21\n1\n1001\nAPP\n1000\nhello\n"
                   "0\nTEXT\n8\n0\n7\nNOSTYLE\n10\n0\n20\n0\n40\n1\n1\nx\n",
                   insertSelf));
    ASSERT_EQ(drawing.result.status, Acad::eOk);
    for (const AuditCode code :
         {AuditCode::DuplicateHandle, AuditCode::MissingBlock, AuditCode::OrphanedPart,
          AuditCode::MissingLinetype, AuditCode::MissingApplication, AuditCode::MissingTextStyle,
          AuditCode::BlockCycle, AuditCode::DuplicateBlock})
        EXPECT_TRUE(drawing.found(code)) << static_cast<int>(code);
    EXPECT_EQ(drawing.result.audit.summary(), L"Auditing: 8 errors found, 8 fixed");
    Drawing clean(drawing.written());
    EXPECT_EQ(clean.result.audit.errorsFound(), 0u);
}

TEST(ExchangeDxf, DataOfWritersThatBendTheRulesIsUnderstood) {
    // The layer below the class's marker; a long text cut inside a character; the header closed too early.
    const std::string file =
        section("HEADER", "9\n$ACADVER\n1\nAC1015\n") + "9\n$LTSCALE\n40\n2.5\n0\nENDSEC\n" +
        section(
            "ENTITIES",
            "0\nLINE\n5\n40\n100\nAcDbEntity\n100\nAcDbLine\n8\nWALL\n62\n3\n10\n0\n20\n0\n30\n0\n"
            "11\n1\n21\n1\n31\n0\n"
            "0\nMTEXT\n5\n41\n100\nAcDbEntity\n8\n0\n100\nAcDbMText\n10\n0\n20\n0\n30\n0\n40\n2\n"
            "3\nab\\U+04\n1\n3c\n"
            "0\nINSERT\n5\n42\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockReference\n2\nB\n10\n0\n20\n0\n43\n0\n") +
        "0\nEOF\n";
    Drawing drawing(file);
    ASSERT_EQ(drawing.result.status, Acad::eOk);
    ASSERT_EQ(drawing.entities().length(), 3);
    const AcDbObjectPointer<AcDbEntity> line(drawing.entities()[0], AcDb::kForRead);
    EXPECT_EQ(recordName(line->layerId()), L"WALL");
    EXPECT_EQ(line->colorIndex(), 3);
    const AcDbObjectPointer<AcDbMText> text(drawing.entities()[1], AcDb::kForRead);
    ACHAR* shown = text->contents();
    EXPECT_STREQ(shown, L"ab\u043C");
    acutDelString(shown);
    const AcDbObjectPointer<AcDbBlockReference> insert(drawing.entities()[2], AcDb::kForRead);
    EXPECT_EQ(insert->scaleFactors().z, 0);
    EXPECT_EQ(drawing.database.ltscale(), 2.5);
    EXPECT_TRUE(drawing.found(AuditCode::LateVariables));
}

TEST(ExchangeDxf, OldEntitiesThatAreKeptGetTheirMarkers) {
    Drawing drawing(
        oldDrawing("0\nDIMENSION\n8\n0\n2\n*D1\n10\n1\n20\n1\n13\n0\n23\n0\n14\n5\n24\n0\n70\n0\n50\n45\n",
                   "0\nBLOCK\n2\n*D1\n70\n1\n10\n0\n20\n0\n0\nENDBLK\n"));
    ASSERT_EQ(drawing.result.status, Acad::eOk);
    const std::string out = drawing.written();
    const std::size_t base = out.find("AcDbDimension\r\n"), aligned = out.find("AcDbAlignedDimension");
    EXPECT_LT(base, out.find("*D1", base));
    EXPECT_LT(aligned, out.find(" 13\r\n", base));
    EXPECT_LT(out.find(" 50\r\n45.0", aligned), out.find("AcDbRotatedDimension"));
}

TEST(ExchangeDxf, LongChainOfNestedBlocksNeedsNoDeepStack) {
    std::string blocks;
    for (int i = 0; i < 2000; ++i)
        blocks += "0\nBLOCK\n2\nB" + std::to_string(i) + "\n10\n0\n20\n0\n0\nINSERT\n8\n0\n2\nB" +
                  std::to_string(i + 1) + "\n10\n0\n20\n0\n0\nENDBLK\n";
    Drawing drawing(oldDrawing("", blocks));
    EXPECT_EQ(drawing.result.status, Acad::eOk);
}

TEST(ExchangeDxf, TextsOfForeignCodePagesKeepTheirBytes) {
    const std::string text = "\xCF\xF0\xE8";
    const std::string file = section("HEADER", "9\n$ACADVER\n1\nAC1015\n9\n$DWGCODEPAGE\n3\nANSI_1251\n") +
                             section("ENTITIES", "0\nTEXT\n8\n0\n10\n0\n20\n0\n40\n1\n1\n" + text + "\n") +
                             "0\nEOF\n";
    Drawing drawing(file);
    ASSERT_EQ(drawing.result.status, Acad::eOk);
    EXPECT_TRUE(drawing.found(AuditCode::ForeignCodePage));
    EXPECT_NE(drawing.written().find(text), std::string::npos);
}

TEST(ExchangeDxf, ExtentsInTheHeaderAreThoseOfModelSpace) {
    Drawing drawing(::drawing(
        "AC1015", section("ENTITIES", "0\nLINE\n8\n0\n10\n-1\n20\n2\n30\n0\n11\n4\n21\n-5\n31\n6\n")));
    ASSERT_EQ(drawing.result.status, Acad::eOk);
    const std::string out = drawing.written();
    EXPECT_NE(out.find("$EXTMIN\r\n 10\r\n-1.0\r\n 20\r\n-5.0\r\n 30\r\n0.0"), std::string::npos);
    EXPECT_NE(out.find("$EXTMAX\r\n 10\r\n4.0\r\n 20\r\n2.0\r\n 30\r\n6.0"), std::string::npos);
}

TEST(ExchangeDxf, ErasedObjectsAreNotWritten) {
    Drawing drawing(oldDrawing("0\nCIRCLE\n8\n0\n10\n0\n20\n0\n40\n1\n0\nINSERT\n8\n0\n66\n1\n2\nB\n10\n0\n20"
                               "\n0\n0\nATTRIB\n8\n0\n10\n0\n"
                               "20\n0\n1\nx\n2\nT\n70\n0\n40\n1\n0\nSEQEND\n"));
    ASSERT_EQ(drawing.result.status, Acad::eOk);
    for (const AcDbObjectId id : drawing.entities()) {
        AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
        ASSERT_TRUE(entity);
        entity->erase();
    }
    const std::string out = drawing.written();
    for (const char* type : {"CIRCLE", "INSERT", "ATTRIB", "SEQEND"})
        EXPECT_EQ(out.find(std::string("  0\r\n") + type), std::string::npos) << type;
}

TEST(ExchangeDxf, FailedWritingLeavesTheOldFileAndNothingElse) {
    Folder folder;
    const fs::path file = folder / "plan.dxf";
    std::ofstream(file, std::ios::binary) << "old";
    Drawing drawing(oldDrawing(""));
    fs::permissions(file, fs::perms::owner_read, fs::perm_options::replace);
    EXPECT_EQ(drawing.database.dxfOut(file.wstring().c_str()), Acad::eFileAccessErr);
    EXPECT_TRUE(contents(file) == "old");
    EXPECT_EQ(folder.files(), 1);
    fs::permissions(file, fs::perms::owner_all, fs::perm_options::replace);
    EXPECT_EQ(drawing.database.dxfOut(file.wstring().c_str()), Acad::eOk);
    EXPECT_TRUE(contents(file) == drawing.written());
    EXPECT_EQ(folder.files(), 1);
    EXPECT_EQ(drawing.database.dxfOut((folder / "none").wstring().append(L"/x.dxf").c_str()),
              Acad::eFileNotFound);
    EXPECT_EQ(drawing.database.dxfOut((folder / ".").wstring().c_str()), Acad::eFileAccessErr);
}
