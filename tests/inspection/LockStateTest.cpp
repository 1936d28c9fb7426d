// Whether a signature locks the document.
#include <gtest/gtest.h>

#include <string>

#include "support/LogCapture.h"
#include "support/OpenedPdf.h"
#include "support/PdfBuilder.h"

namespace {

using namespace varnpdf::test;

/// Field 4 with signature dictionary 5, transform parameters 6, lock dictionary 7 and a second field 8. Empty: none.
struct Row {
    const char* field;  // beside /Type /Annot /FT /Sig
    std::string dictionary;
    const char* parameters;
    const char* lock;
    int state;
    const char* second = "";
};

std::string reference(const char* method, const char* parameters = "6 0 R") {
    return std::string("<< /Type /Sig /Reference [<< /Type /SigRef /TransformMethod ") + method + " /TransformParams " +
           parameters + " >>] >>";
}

TEST(LockState, Table) {
    const std::string plain = "<< /Type /Sig >>";
    const char* const signedOne = "/V 5 0 R";
    const char* const locked = "/V 5 0 R /Lock 7 0 R";
    const char* const all = "<< /Type /TransformParams /Action /All >>";
    const char* const noChanges = "<< /Type /TransformParams /P 1 >>";
    const Row rows[] = {
        {"", "", "", "", 0},
        {signedOne, plain, "", "", 0},
        // certification
        {signedOne, reference("/DocMDP"), noChanges, "", 1},
        {signedOne, reference("/DocMDP"), "<< /Type /TransformParams /P 2 >>", "", 0},
        {signedOne, reference("/DocMDP"), "<< /Type /TransformParams /P 3 >>", "", 0},
        {signedOne, reference("/DocMDP"), "<< /Type /TransformParams >>", "", 0},
        {signedOne, reference("/DocMDP"), "<< /Type /SigFieldLock /P 1 >>", "", 0},
        {signedOne, reference("/DocMDP"), all, "", 0},
        {signedOne, reference("/DocMDP", "<< /Type /TransformParams /P 1 >>"), "", "", 0},
        {signedOne, "<< /Reference [<< /TransformMethod /DocMDP /TransformParams 6 0 R >>] >>", noChanges, "", 0},
        // field locks of the signature
        {signedOne, reference("/FieldMDP"), all, "", 1},
        {signedOne, reference("/FieldMDP"), "<< /Type /TransformParams /Action /Include /Fields [(a)] >>", "", 0},
        {signedOne, reference("/FieldMDP"), "<< /Type /TransformParams /Action /Any >>", "", 0},
        {signedOne, reference("/FieldMDP"), noChanges, "", 0},
        // usage rights, alone and beside others
        {signedOne, reference("/UR3"), noChanges, "", 0},
        {signedOne, reference("[/FieldMDP /UR3]"), all, "", 0},
        {signedOne, reference("[/DocMDP /UR3]"), noChanges, "", 0},
        {signedOne, reference("[/DocMDP /FieldMDP]"), all, "", 1},
        // field locks of the field
        {locked, plain, "", "<< /Type /SigFieldLock /Action /All >>", 1},
        {locked, plain, "", "<< /Type /SigFieldLock /Action /Include >>", 0},
        {locked, plain, "", "<< /Type /SigFieldLock /Action /Any >>", 0},
        {locked, reference("/DocMDP"), "<< /Type /TransformParams /P 2 >>", "<< /Action /All >>", 1},
        {"/V 5 0 R /Lock << /Action /All >>", plain, "", "", 0},
        {"/V << /Type /Sig >> /Lock 7 0 R", "", "", "<< /Action /All >>", 1},
        // which fields count
        {"/Lock 7 0 R", "", "", "<< /Action /All >>", 0},
        {signedOne, plain, "", "<< /Action /All >>", 0, "<< /Type /Annot /FT /Sig /Lock 7 0 R >>"},
        {signedOne, plain, "", "<< /Action /All >>", 1, "<< /FT /Sig /V 5 0 R /Lock 7 0 R >>"},
        {"", "", "", "<< /Action /All >>", 0, "<< /FT /Sig /V 5 0 R /Lock 7 0 R >>"},
        {locked, plain, "", "<< /Action /All >>", 1, "<< /Type /Annot /FT /Sig /V 5 0 R >>"},
    };
    for (const Row& row : rows) {
        PdfBuilder builder = smallDocument();
        builder.object(4, std::string("<< /Type /Annot /FT /Sig ") + row.field + " >>");
        if (!row.dictionary.empty()) builder.object(5, row.dictionary);
        if (*row.parameters != 0) builder.object(6, row.parameters);
        if (*row.lock != 0) builder.object(7, row.lock);
        if (*row.second != 0) builder.object(8, row.second);
        OpenedPdf opened(builder.table().bytes());
        ASSERT_EQ(opened.code, 0);
        EXPECT_EQ(opened.pdf.get_lockstate(), row.state)
            << row.field << row.dictionary << row.parameters << row.lock << row.second;
    }
}

TEST(LockState, SaysWhy) {
    const LogCapture log("VarnPDF.CPdf");
    OpenedPdf without(smallDocument().table().bytes());
    EXPECT_TRUE(log.has("check_lockstate::END mit State 0 da keine Signatur vorhanden"));
    OpenedPdf inlined(smallDocument().object(4, "<< /Type /Annot /FT /Sig /V << /Type /Sig >> >>").table().bytes());
    EXPECT_TRUE(log.has("check_lockstate - /V ist keine Reference"));
    EXPECT_TRUE(log.has("check_lockstate::END mit State 0"));
    OpenedPdf certified(smallDocument()
                            .object(4, "<< /Type /Annot /FT /Sig /V 5 0 R >>")
                            .object(5, reference("/DocMDP"))
                            .object(6, "<< /Type /TransformParams /P 1 >>")
                            .table()
                            .bytes());
    EXPECT_TRUE(log.has("check_lockstate - P=1, also alles gelockt"));
    EXPECT_TRUE(log.has("check_lockstate::END mit State 1"));
}

}  // namespace
