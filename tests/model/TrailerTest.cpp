// Cross-reference entries, subsections, their list, and the trailer record.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "support/LogCapture.h"
#include "varnpdf/PdfTrailer.h"
#include "varnpdf/PdfXRef.h"

namespace {

/// "start[offset.generation.free ...]"
std::string shown(const CPdfXRef& xref) {
    std::string out = std::to_string(xref.GetRefStart()) + '[';
    for (int i = 0; i < xref.GetRefNum(); ++i) {
        const CPdfXRefEntry& entry = xref.GetRefEntry()[i];
        out += (i == 0 ? "" : " ") + std::to_string(entry.GetOffset()) + '.' + std::to_string(entry.GetGenNumber()) +
               '.' + std::to_string(entry.GetIsFree());
    }
    return out + ']';
}

CPdfXRefEntry entryAt(int offset) {
    CPdfXRefEntry entry;
    entry.SetPos(offset);
    return entry;
}

TEST(PdfXRef, SubsectionsAreDeepCopies) {
    CPdfXRef run(10, 3);
    EXPECT_EQ(shown(run), "10[0.0.1 0.0.1 0.0.1]");
    run.AddEntry(entryAt(99));
    run.SetIsFree(0);
    CPdfXRef copy(&run);
    run.GetRefEntry()[3].SetPos(1);
    EXPECT_EQ(shown(copy), "10[0.0.1 0.0.1 0.0.1 99.0.0]");
    EXPECT_EQ(copy.GetIsFree(), 0);
    run.ClearAll();
    EXPECT_EQ(shown(run), "10[]");
    copy = run;
    EXPECT_EQ(shown(copy), "10[]");
    EXPECT_EQ(copy.GetIsFree(), 0);
    copy.SetRef(4, 1);
    EXPECT_EQ(shown(copy), "4[0.0.1]");
    const CPdfXRef fresh;
    EXPECT_EQ(shown(fresh), "0[]");
    EXPECT_EQ(fresh.GetIsFree(), 1);
}

TEST(PdfXRefContainer, SortsStably) {
    CPdfXRefContainer list;
    list.SortXRefList();
    EXPECT_EQ(list.GetXRefNum(), 0);
    const struct { int start, offset; } runs[] = {{5, 1}, {0, 2}, {5, 3}, {9, 4}, {1, 5}};
    for (const auto& [start, offset] : runs) {
        CPdfXRef run(start, 0);
        run.AddEntry(entryAt(offset));
        list.AddXRef(&run);
        run.GetRefEntry()[0].SetPos(0);  // the list holds its own copy
    }
    list.SortXRefList();
    std::string order;
    for (int i = 0; i < list.GetXRefNum(); ++i) order += shown(list.GetXRef()[i]);
    EXPECT_EQ(order, "0[2.0.0]1[5.0.0]5[1.0.0]5[3.0.0]9[4.0.0]");
}

TEST(PdfTrailer, IndexField) {
    CPdfTrailer trailer;
    {
        const varnpdf::test::LogCapture log("VarnPDF.CPdfTrailer");
        for (const int mode : {1, 2, 3}) EXPECT_EQ(trailer.Getm_IndexFieldInfos(mode, 0), 0);
        EXPECT_TRUE(log.has("c_IndexField leer!"));
    }
    for (std::string text : {"[0 5 12 3]", " [ 0 5\r\n12\t3 ] ", "[[0 5] [12 3]]"}) {
        trailer.Setm_cIndexField(reinterpret_cast<unsigned char*>(text.data()), static_cast<int>(text.size()));
        const struct {
            int mode, index, value;
        } rows[] = {{1, 0, 2}, {1, 9, 2}, {2, 0, 0}, {3, 0, 5}, {2, 1, 12}, {3, 1, 3}, {2, 2, 0}, {3, 2, 0}, {3, 3, 0}};
        for (const auto& row : rows) {
            EXPECT_EQ(trailer.Getm_IndexFieldInfos(row.mode, row.index), row.value)
                << text << " mode " << row.mode << " index " << row.index;
        }
    }
}

/// In the pattern, '#' stands for one upper-case hexadecimal digit.
bool matches(std::string_view text, std::string_view pattern) {
    return std::ranges::equal(text, pattern, [](char c, char p) {
        return p == '#' ? std::string_view("0123456789ABCDEF").find(c) != std::string_view::npos : c == p;
    });
}

TEST(PdfTrailer, RenewsTheSecondIdentifier) {
    const std::string digits(32, '#');
    const struct {
        const char* id;
        bool renew;
        std::string result;
    } rows[] = {
        {"[<AB12> <CD34>]", false, "[<AB12> <CD34>]"},
        {"[<AB12> <CD34>]", true, "[<AB12> <####>]"},
        {" \r\n[ <AB12><11112222333344445555666677778888> ] ", true, "[<AB12><" + digits + ">]"},
        {"%x\n[<AB> <>]", true, "[<AB> <>]"},
        {"[<AB12> (xyz)]", true, "[<AB12> <" + digits + ">]"},
        {"[<AB12>(x<CD>)]", true, "[<AB12> <" + digits + ">]"},
        {"[<AB12> <CD", true, "[<AB12> <" + digits + ">]"},
        {"[<AB12>]", true, "[<AB12> <" + digits + ">]"},
        {"[(0123456789abcdef) (x)]", true, "[ <30313233343536373839616263646566> <" + digits + "> ]"},
        {"[(\\(1234567\\)9\\\\abcdefXX) (x)]", true, "[ <283132333435363729395C6162636465> <" + digits + "> ]"},
        {"[(\\n123456789abcdefXX) (x)]", true, "[ <5C6E3132333435363738396162636465> <" + digits + "> ]"},
        {"[(C:\\\\) (x)]", true, "[ <433A5C> <" + digits + "> ]"},
        {"[(C:\\\\\\)) (x)]", true, "[ <433A5C29> <" + digits + "> ]"},
        {"[(a(b)c)(x)]", true, "[ <6128622963> <" + digits + "> ]"},
    };
    for (const auto& row : rows) {
        CPdfTrailer trailer;
        trailer.SetId(std::string(row.id).data());
        EXPECT_EQ(trailer.UpdateId(row.renew), 0);
        EXPECT_TRUE(matches(trailer.GetId(), row.result)) << row.id << " became " << trailer.GetId();
    }
}

TEST(PdfTrailer, EveryUpdateHasAnIdentifierOfItsOwn) {
    // Within a second the generator gives the same digits again; a single digit would repeat by chance as well.
    for (const char* id :
         {"[<AB12><11112222333344445555666677778888>]", "[<AB12> (x)]", "[(AB12) (x)]", "[<AB12> <0>]"}) {
        CPdfTrailer trailer;
        trailer.SetId(std::string(id).data());
        for (int update = 0; update < 40; ++update) {
            const std::string old(trailer.id());
            trailer.UpdateId(true);
            EXPECT_NE(trailer.id(), old) << id;
        }
    }
}

TEST(PdfTrailer, BrokenIdentifiersAreSurvived) {
    for (const char* id :
         {"", "[", "[]", "%", "%[", "<", "[<", "[<AB", "[<AB>", "(", "[(\\", "[(abc", "[>]", "[ab]", ")"}) {
        CPdfTrailer trailer;
        trailer.SetId(std::string(id).data());
        EXPECT_EQ(trailer.UpdateId(true), 0) << id;
        EXPECT_LT(trailer.id().size(), 128U) << id;
    }
}

TEST(PdfTrailer, AskingForATextChangesNothing) {
    const std::string_view raw("[(a\0b) (x)]", 11);
    CPdfTrailer trailer;
    ASSERT_TRUE(trailer.setId(raw));
    char* const buffer = trailer.GetId();
    EXPECT_STREQ(buffer, "[(a");
    EXPECT_EQ(trailer.id(), raw);
    trailer.UpdateId(true);
    EXPECT_TRUE(trailer.id().starts_with("[ <610062> <")) << trailer.id();
    EXPECT_EQ(buffer, trailer.id());

    trailer.SetId(std::string("[<AB> <CD>]").data());
    EXPECT_STREQ(buffer, "[<AB> <CD>]");
    std::strcpy(buffer + 1, "<EF> <CD> ]");
    EXPECT_EQ(trailer.id(), "[<EF> <CD> ]");
    trailer.SetId(buffer + 1);  // what was handed out comes back
    EXPECT_STREQ(buffer, "<EF> <CD> ]");
    EXPECT_EQ(trailer.id(), "<EF> <CD> ]");
}

TEST(PdfTrailer, TextsAreRefusedRatherThanOverrun) {
    CPdfTrailer trailer;
    EXPECT_EQ(trailer.GetObjectType(), 64);
    EXPECT_EQ(trailer.GetPrev() + trailer.GetXRef() + trailer.GetXRefStmAddr() + trailer.GetSize(), 0);
    const struct {
        const char* name;
        bool (CPdfTrailer::*set)(std::string_view);
        char* (CPdfTrailer::*get)();
        std::size_t longest;
    } rows[] = {
        {"Encrypt", &CPdfTrailer::setEncrypt, &CPdfTrailer::GetEncrypt, 99},
        {"Info", &CPdfTrailer::setInfo, &CPdfTrailer::GetInfo, 1023},
        {"Root", &CPdfTrailer::setRoot, &CPdfTrailer::GetRoot, 99},
        {"Id", &CPdfTrailer::setId, &CPdfTrailer::GetId, 9999},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_STREQ((trailer.*row.get)(), "");
        const std::string fitting(row.longest, 'x');
        EXPECT_TRUE((trailer.*row.set)(fitting));
        EXPECT_FALSE((trailer.*row.set)(std::string(row.longest + 1, 'y')));
        EXPECT_EQ((trailer.*row.get)(), fitting);
        std::fill_n((trailer.*row.get)(), row.longest, 'z');  // the whole room may be written
        EXPECT_EQ((trailer.*row.get)(), std::string(row.longest, 'z'));
    }
    trailer.SetId(std::string(20'000, 'y').data());
    EXPECT_EQ(trailer.GetId()[0], 'z');
}

}  // namespace
