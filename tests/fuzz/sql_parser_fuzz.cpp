// Feeds the parser of the database's SQL with mutated statements, for the sanitizers to watch. Runs natively:
//     sql_parser_fuzz SECONDS [SEED]
// A statement is read or refused with an error text; one that is read, written back and read again must be
// the same. Exits with 0 when nothing was found; the statement being read is kept in
// sql_parser_fuzz_input.sql (UTF-8) in the current folder.

#include "server/sql/syntax.h"
#include "server/values/error.h"
#include "tests/server/sql_text.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>

namespace {

using namespace tessary::server;

const std::vector<Text> seeds = {
    u"select ixLabelGroup, sKey, sLabel, dWidth from tblLabelGroup where sGroup = 'Ducts' order by "
    u"iSortOrder desc;",
    u"SELECT DISTINCT TOP 5 PERCENT t.*, [a b] AS c, -2^2*3 INTO u FROM t WHERE a>=1.5e3 AND NOT b LIKE "
    u"\"x*\"",
    u"select count(*), count(distinct a), iif(a between 1 and 2, null, 'it''s') from t group by a having "
    u"max(b)<&HFF",
    u"select * from (a left join b on a.x=b.x) inner join (select 1 as y from c) as d on b!y=d.y, e right "
    u"join f on 1=0",
    u"select a from t where a not in (1, 2, #7/4/2010#) and b in (select b from u) or exists (select * from "
    u"v)",
    u"(select 1 union all select 2) union (select 3 order by 1) order by 1 with owneraccess option",
    u"parameters [the key] text(20), n long; update t inner join u on t.i=u.i set t.a=[the key] & n, b=? "
    u"where c is null",
    u"insert into tblLayer (sName, bPlot, iColor) values ('A-WALL', yes, 7), (\"B\", off, -1)",
    u"insert into t select x mod 3, y\\2 xor z eqv w imp v from `back quoted`",
    u"delete t.* from t, u where t.a<>u.a or t.b is not null",
    u"create table t (a counter(1,1) primary key, b text(20) not null default 'x', c double references u (d) "
    u"on delete "
    u"cascade, constraint k unique (a, b desc), foreign key (a, b) references v (a, b))",
    u"create unique index i on t (a asc, [b c] desc) with disallow null",
    u"alter table t add column a long, b text(5), drop c, rename column d to e, add constraint k primary key "
    u"(a)",
    u"create procedure p (x Long, [y] Text(5)) as delete from t where a=x /* comment */",
    u"create view v as select Größe, \u4E2D from t; ",
    u"exec q 1, 'a', #2010-07-04 13:45#, true",
    u"drop index i on t",
};

const std::vector<Text> pieces = {
    u"(",          u")",          u",",          u".",        u"!",        u"'",         u"\"",
    u"[",          u"]",          u"`",          u"#",        u"?",        u";",         u"*",
    u"/*",         u"*/",         u"^",          u"-",        u"--",       u"&",         u"&H",
    u"<>",         u"=",          u" not ",      u" and ",    u" or ",     u" like ",    u" is ",
    u" null ",     u" in ",       u" in (",      u" as ",     u" select ", u" from ",    u" where ",
    u" union ",    u" join ",     u" on ",       u" left ",   u" top 3 ",  u" (select ", u" order by ",
    u" group by ", u" between ",  u" distinct ", u" values ", u" set ",    u" percent ", u"1e999",
    u"0",          u"2147483648", u"a.b",        u"f(",       u"\u201C",   u"\xD800",    u"\uFEFF",
    u"\u00A0",     u"case",
};

class Mutator {
public:
    explicit Mutator(unsigned seed) : random_(seed) {}

    Text next() {
        Text text = seeds[below(seeds.size())];
        for (std::size_t changes = below(7); changes > 0; --changes) {
            change(text);
        }
        return text;
    }

private:
    std::size_t below(std::size_t bound) { return random_() % bound; }

    void change(Text& text) {
        const std::size_t at = below(text.size() + 1);
        const Text& other = seeds[below(seeds.size())];
        switch (below(7)) {
            case 0: text.insert(at, pieces[below(pieces.size())]); break;
            case 1: text.erase(at, 1 + below(8)); break;
            case 2: text.insert(at, 1, static_cast<char16_t>(below(below(4) == 0 ? 0x10000 : 0x80))); break;
            case 3: text.insert(at, text.substr(below(text.size() + 1), below(40))); break;
            case 4: text.insert(at, other.substr(below(other.size() + 1), below(40))); break;
            case 5: text.resize(at); break;
            default: repeat(text, at);
        }
    }

    // Many times the same piece, for what is deep or long.
    void repeat(Text& text, std::size_t at) {
        const Text piece = pieces[below(pieces.size())];
        Text many;
        for (std::size_t count = below(below(8) == 0 ? 5000 : 20); count > 0; --count) {
            many += piece;
        }
        text.insert(at, many);
    }

    std::mt19937 random_;
};

[[noreturn]] void report(const std::string& what) {
    std::cerr << what << std::endl;
    std::exit(1);
}

// Empty: the statement was refused, or defines something.
std::string read(const Text& statement, bool& tooComplex) {
    try {
        return sql::written(sql::parse(statement));
    } catch (const DatabaseError& error) {
        tooComplex = error.code() == ErrorCode::tooComplex;
        if (error.text().size() > 400 || !error.text().ends_with(u'.')) {
            report("error text: " + toUtf8(error.text()));
        }
        return "";
    }
}

// Whether the statement was read. All the parentheses of the written form may be nested too deeply.
bool readTwice(const Text& statement) {
    bool tooComplex = false;
    const std::string first = read(statement, tooComplex);
    if (first.empty()) {
        return false;
    }
    const std::string second = read(toText(first), tooComplex);
    if (second != first && !(second.empty() && tooComplex)) {
        report("read:  " + first + "\nagain: " + second);
    }
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::cerr << "usage: sql_parser_fuzz SECONDS [SEED]\n";
        return 2;
    }
    const unsigned seed = count > 2 ? static_cast<unsigned>(std::atoi(arguments[2])) : std::random_device()();
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::atoi(arguments[1]));
    std::cout << "seed " << seed << std::endl;
    Mutator mutator(seed);
    std::size_t runs = 0;
    std::size_t statementsRead = 0;
    for (; std::chrono::steady_clock::now() < end; ++runs) {
        const Text statement = mutator.next();
        std::ofstream("sql_parser_fuzz_input.sql", std::ios::binary) << toUtf8(statement);
        statementsRead += readTwice(statement) ? 1 : 0;
    }
    if (statementsRead == 0) {
        report("none of " + std::to_string(runs) + " statements was read");
    }
    std::cout << runs << " statements, " << statementsRead << " of them read, nothing found" << std::endl;
    std::filesystem::remove("sql_parser_fuzz_input.sql");
    return 0;
}
