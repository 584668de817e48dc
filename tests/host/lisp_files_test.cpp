// Files: reading, writing, loading, names.

#include "tests/host/lisp_session.h"

#include <filesystem>
#include <fstream>

namespace drafthost::lisp::testing {
namespace {

// A folder of its own, which `dir` names in the programs.
class LispFiles : public ::testing::Test {
protected:
    LispFiles() {
        folder = std::filesystem::temp_directory_path() / "drafthost-lisp-files-test";
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        Interpreter& interpreter = session.interpreter;
        interpreter.setSymbolValue(L"DIR", interpreter.string(folder.generic_wstring() + L"/"));
    }
    ~LispFiles() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    void write(const char* name, std::string_view bytes) const {
        std::ofstream(folder / name, std::ios::binary) << bytes;
    }

    std::filesystem::path folder;
    Session session;
};

TEST_F(LispFiles, WritesAndReadsText) {
    EXPECT_EQ(session.type("(setq f (open (strcat dir \"a.txt\") \"w\") kind (type f))"), "FILE");
    session.type(
        "(write-line \"one \xE2\x82\xAC\" f) (princ \"two\" f) (print 3 f) (write-char 33 f) (close f)");
    session.type("(setq f (open (strcat dir \"a.txt\") \"a\")) (write-line \"end\" f) (close f)");
    session.type("(setq f (open (strcat dir \"a.txt\") \"r\"))");
    EXPECT_EQ(session.type("(read-line f)"), "\"one \xE2\x82\xAC\"");
    EXPECT_EQ(session.type("(list (read-char f) (read-char f) (read-line f))"), "(116 119 \"o\")");
    EXPECT_EQ(session.type("(list (read-line f) (read-line f) (read-char f) (close f))"),
              "(\"3 !end\" nil nil nil)");
    EXPECT_TRUE(session.type("(read-line f)").starts_with("; error: bad argument type: streamp #<file"));
}

TEST_F(LispFiles, LineEndsOfBothKinds) {
    write("crlf.txt", "a\r\nb\n\r\nlast");
    EXPECT_EQ(session.type("(setq f (open (strcat dir \"crlf.txt\") \"r\") l nil) "
                           "(while (setq s (read-line f)) (setq l (cons s l))) (reverse l)"),
              "nil\n(\"last\" \"\" \"b\" \"a\")\n(\"a\" \"b\" \"\" \"last\")");
}

TEST_F(LispFiles, OpenFailsWithNil) {
    EXPECT_EQ(session.type("(open (strcat dir \"none.txt\") \"r\")"), "nil");
    EXPECT_EQ(session.type("(open dir \"w\")"), "nil");
    EXPECT_EQ(session.type("(open \"x\" \"q\")"), "; error: bad argument value: file mode \"q\"");
}

// A file nobody refers to any more is closed by the collector, so that it can be deleted.
TEST_F(LispFiles, CollectorClosesFiles) {
    session.type("(setq f (open (strcat dir \"a.txt\") \"w\")) (princ \"kept\" f) (setq f nil)");
    session.interpreter.collect();
    EXPECT_EQ(session.type("(vl-file-size (strcat dir \"a.txt\"))"), "4");
    EXPECT_EQ(session.type("(vl-file-delete (strcat dir \"a.txt\"))"), "T");
}

TEST_F(LispFiles, Load) {
    write("prog.lsp", "\xEF\xBB\xBF; a program\n(defun answer () 42)\n(answer)\n");
    EXPECT_EQ(session.type("(load (strcat dir \"prog\"))"), "42");
    EXPECT_EQ(session.type("(load (strcat dir \"prog.lsp\"))"), "42");
    EXPECT_EQ(session.type("(load (strcat dir \"none\") \"missing\")"), "\"missing\"");
    write("bad.lsp", "(setq a 1)\n(setq b");
    EXPECT_EQ(session.type("(load (strcat dir \"bad\") 'x)"),
              "; error: malformed list on input\n; in bad.lsp, line 2");
}

TEST_F(LispFiles, FilesAndFolders) {
    write("a.txt", "12345");
    EXPECT_EQ(session.type("(vl-file-copy (strcat dir \"a.txt\") (strcat dir \"b.txt\"))"), "5");
    EXPECT_EQ(session.type("(vl-file-copy (strcat dir \"a.txt\") (strcat dir \"b.txt\"))"), "nil");
    EXPECT_EQ(session.type("(vl-file-copy (strcat dir \"a.txt\") (strcat dir \"b.txt\") t)"), "5");
    EXPECT_EQ(session.type("(vl-file-size (strcat dir \"b.txt\"))"), "10");
    EXPECT_EQ(session.type("(vl-file-rename (strcat dir \"b.txt\") (strcat dir \"c#1.dat\"))"), "T");
    EXPECT_EQ(session.type("(vl-mkdir (strcat dir \"sub\"))"), "T");
    EXPECT_EQ(session.type("(vl-directory-files dir nil 1)"), "(\"a.txt\" \"c#1.dat\")");
    EXPECT_EQ(session.type("(vl-directory-files dir \"*.TXT\" 1)"), "(\"a.txt\")");
    EXPECT_EQ(session.type("(vl-directory-files dir \"c#*\" 1)"), "(\"c#1.dat\")");
    EXPECT_EQ(session.type("(list (vl-file-directory-p dir) (vl-file-size dir) (vl-file-size \"no such\"))"),
              "(T 0 nil)");
    EXPECT_EQ(session.type("(length (vl-file-systime (strcat dir \"a.txt\")))"), "8");
    EXPECT_EQ(session.type("(= (vl-filename-mktemp \"x.tmp\" dir) (vl-filename-mktemp \"x.tmp\" dir))"), "T");
}

TEST_F(LispFiles, Names) {
    EXPECT_EQ(session.type("(mapcar 'vl-filename-base '(\"c:\\\\a.b\\\\name.ext\" \"name\" \"a/b.c/n\"))"),
              "(\"name\" \"name\" \"n\")");
    EXPECT_EQ(
        session.type("(mapcar 'vl-filename-directory '(\"c:\\\\dir\\\\n.e\" \"c:\\\\n\" \"n\" \"a/b/c\"))"),
        "(\"c:\\\\dir\" \"c:\\\\\" \"\" \"a/b\")");
    EXPECT_EQ(session.type("(mapcar 'vl-filename-extension '(\"a.b\" \"a.b\\\\c\" \"c:.x\"))"),
              "(\".b\" nil \".x\")");
}

TEST_F(LispFiles, Environment) {
    EXPECT_EQ(session.type("(setenv \"DRAFTHOST_LISP_TEST\" \"value\")"), "\"value\"");
    EXPECT_EQ(session.type("(getenv \"DRAFTHOST_LISP_TEST\")"), "\"value\"");
    EXPECT_EQ(session.type("(getenv \"DRAFTHOST_LISP_NONE\")"), "nil");
}

}  // namespace
}  // namespace drafthost::lisp::testing
