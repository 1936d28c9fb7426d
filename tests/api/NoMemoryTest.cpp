// What exported members do when an allocation fails: each of their allocations in turn, and all behind it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>

#include "tests/signing/Signing.h"
#include "tests/support/OpenedPdf.h"
#include "tests/support/PdfBuilder.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/TokHelp.h"
#include "writer/SectionTexts.h"

namespace {

long left = -1;  // allocations that still succeed; negative: all do
bool failed = false;

void* allocate(std::size_t size) noexcept {
    if (left == 0) {
        failed = true;
        return nullptr;
    }
    if (left > 0) --left;
    return std::malloc(size == 0 ? 1 : size);
}

void* allocateOrThrow(std::size_t size) {
    void* const memory = allocate(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

void* operator new(std::size_t size) { return allocateOrThrow(size); }
void* operator new[](std::size_t size) { return allocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }

namespace {

using namespace varnpdf::test;

constexpr int kThrown = 12345;

std::string longDocument() {
    return smallDocument().object(4, "<< /Type /Font >>").table({.entries = "/Root 1 0 R /ID [<0011> <2233>]"}).bytes();
}

/// A document with everything that the members work on.
struct World {
    World() : opened(longDocument()), made(std::make_unique<CPdf>()), fresh(std::make_unique<CPdf>()) {
        object.setContent("9 0 obj\n<< /Length 1 /Type /A >>\nstream\n(a) Tj\nendstream\nendobj\n");
        object.SetObjNum(9);
        made->CreateObject("", 0, "/A 1", 4, CPdfObj::eContentDictionary);
        opened.pdf.ResetByteStream(7);
        runs.AddXRef(&run);
    }

    /// What is to stay as it is.
    [[nodiscard]] std::string state() {
        const CPdfTrailer& trailer = *opened.pdf.GetUpdateTrailer();
        const CPdfObj& kept = *opened.pdf.get_pdf_obj_from_map(3);
        const auto* const content = reinterpret_cast<const char*>(made->GetContent());
        std::string out = std::string(content == nullptr ? "" : content) + std::to_string(made->GetObjNum());
        out += std::string(object.content()) + std::string(kept.content()) + std::to_string(object.GetObjNum());
        out += std::string(trailer.id()) + std::to_string(trailer.GetXRef()) + varnpdf::crossReferenceTable(runs);
        out += std::to_string(run.GetRefStart()) + '+' + std::to_string(run.GetRefNum());
        out.append(opened.pdf.GetByteStream(), static_cast<std::size_t>(opened.pdf.GetByteStreamLen()));
        return out + std::to_string(opened.pdf.GetListItemCount()) + std::to_string(stream.tell()) +
               std::to_string(sign.GetPreparedLength()) + buffer;
    }

    OpenedPdf opened;
    std::unique_ptr<CPdf> made, fresh;
    CPdfObj object, other{30, 1, 2, 3};
    CPdfXRef run{5, 2};
    CPdfXRefContainer runs;
    CByteStream stream;
    CPdfSign sign;
    Request request;
    std::string path = opened.file.path(), long_ = std::string(30'000, '('), buffer = std::string(60'001, '\0');
    std::string longId = std::string(9000, 'x');
    std::string id = "[<0011223344556677> <8899AABBCCDDEEFF>]";
};

int taken(char* made) {
    std::free(made);
    return made != nullptr ? 1 : 0;
}

int dummySign(World& w) {
    Request& r = w.request;
    return w.sign.DummySign(&w.opened.pdf, 0, 1, 9, 9, 99, 99, 0, r.reason.data(), r.location.data(), r.name.data(),
                            r.date.data(), r.room, false, 0, 0, nullptr, nullptr, 0, 0, false);
}

struct Row {
    const char* name;
    std::function<int(World&)> call;
    int good, bad;
};

const Row kRows[] = {
    {"Open", [](World& w) { return w.fresh->Open(w.path.c_str(), "rb"); }, 0, -1014},
    {"ParseContent",
     [](World& w) {
         return w.fresh->ParseContent(const_cast<unsigned char*>(w.opened.pdf.GetContent()),
                                      w.opened.pdf.GetContentLen(), true);
     },
     0, -1014},
    {"GetPdfPageObject",
     [](World& w) {
         return w.opened.pdf.GetPdfPageObject(w.opened.pdf.get_pdf_obj_from_map(2), 0, nullptr, nullptr) ? 1 : 0;
     },
     1, 0},
    {"GetPageNoFromObjRef",
     [](World& w) {
         int number = 3;
         return w.opened.pdf.GetPageNoFromObjRef(&number, nullptr);
     },
     0, -1},
    {"GotoLastId", [](World& w) { return w.opened.pdf.GotoLastId("/Kids") > 0 ? 1 : 0; }, 1, 0},
    {"set_pdf_obj_to_map",
     [](World& w) {
         auto object = std::make_unique<CPdfObj>();
         w.opened.pdf.set_pdf_obj_to_map(500'000, object.get());
         static_cast<void>(object.release());
         return 0;
     },
     0, kThrown},
    {"AddListItem",
     [](World& w) {
         auto item = std::make_unique<CPdfObjTransferListItem>(1, 2);
         w.opened.pdf.AddListItem(item.get());
         static_cast<void>(item.release());
         return 0;
     },
     0, kThrown},
    {"CreateObject", [](World& w) { return w.made->CreateObject("c", 0, "1", 1, CPdfObj::eContentOther); }, 0, -1014},
    {"SetHeader", [](World& w) { return w.made->SetHeader(w.id.data()), 0; }, 0, kThrown},
    {"AppendToContent", [](World& w) { return w.made->AppendToContent(w.id.data(), 9, true, 0), 0; }, 0, kThrown},
    {"WriteObjArrayToContent", [](World& w) { return w.made->WriteObjArrayToContent(); }, 0, -1014},
    {"WriteXrefToContent", [](World& w) { return w.made->WriteXrefToContent(); }, 0, -1014},
    {"WriteTrailerToContent", [](World& w) { return w.made->WriteTrailerToContent(2, "<12>"); }, 0, -1014},
    {"WriteTextAnnotation", [](World& w) { return w.opened.pdf.WriteTextAnnotation(nullptr, &w.runs, &w.object), 0; },
     0, kThrown},
    {"WriteContent", [](World& w) { return w.opened.pdf.WriteContent(&w.runs, &w.object, true); }, 0, -1014},
    {"WriteTrailer",
     [](World& w) { return w.opened.pdf.WriteTrailer(&w.runs, w.opened.pdf.GetUpdateTrailer(), true, true); }, 0,
     -1014},
    {"SetId", [](World& w) { return w.opened.pdf.GetUpdateTrailer()->SetId(w.longId.data()), 0; }, 0, kThrown},
    {"DummySign", dummySign, 0, -1014},
    {"SignPDFFile",
     [](World& w) {
         Request& r = w.request;
         const int code =
             w.sign.SignPDFFile(w.path.data(), 0, 1, 9, 9, 99, 99, 0, r.reason.data(), r.location.data(), r.name.data(),
                                r.date.data(), r.room, false, 0, 0, nullptr, nullptr, 0, 0, false);
         return code == -1001 ? -1014 : code;
     },
     0, -1014},
    {"AddStream", [](World& w) { return w.object.AddStream(w.id.data(), 9), 0; }, 0, kThrown},
    {"UpdateLengthTag", [](World& w) { return w.object.UpdateLengthTag(), 0; }, 0, kThrown},
    {"CopyFrom", [](World& w) { return w.object.CopyFrom(w.opened.pdf.get_pdf_obj_from_map(4)), 0; }, 0, kThrown},
    {"GetContent", [](World& w) { return w.opened.pdf.get_pdf_obj_from_map(3)->GetContent() ? 1 : 0; }, 1, 0},
    {"get_dictionary_type",
     [](World& w) { return w.opened.pdf.get_pdf_obj_from_map(4)->get_dictionary_type() ? 1 : 0; }, 1, 0},
    {"AddDictionaryEntry", [](World& w) { return w.object.AddDictionaryEntry("/B", "(a longer value)"); }, 1, 0},
    {"ReplaceDictionaryEntry", [](World& w) { return w.object.ReplaceDictionaryEntry("/Type", w.id.data()); }, 1, 0},
    {"DeleteDictionaryEntry", [](World& w) { return w.object.DeleteDictionaryEntry("/Type", 1); }, 1, 0},
    {"ReplaceTjValue", [](World& w) { return w.object.ReplaceTjValue(w.id.data()); }, 0, -1014},
    {"SetRef", [](World& w) { return w.run.SetRef(8, 3), 0; }, 0, kThrown},
    {"AddEntry", [](World& w) { return w.run.AddEntry({}), 0; }, 0, kThrown},
    {"AddXRef", [](World& w) { return w.runs.AddXRef(&w.run), 0; }, 0, kThrown},
    {"append", [](World& w) { return w.stream.append(reinterpret_cast<unsigned char*>(w.long_.data()), 30'000); }, 0,
     -1014},
    {"CreateLiteralEscapeSeq",
     [](World& w) { return CPdfHelper::CreateLiteralEscapeSeq(w.long_.c_str(), w.buffer.data()); }, 1, 0},
    {"NowPDF", [](World& w) { return CPdfHelper::NowPDF(w.buffer.data()); }, 0, -1014},
    {"StrReplace", [](World& w) { return taken(CTokHelp::StrReplace(w.long_.data(), "(", ")")); }, 1, 0},
    {"ConvertUTF8ToISO88591", [](World& w) { return CTokHelp::ConvertUTF8ToISO88591(w.long_.data(), w.buffer.data()); },
     0, -1014},
};

TEST(NoMemory, IsACodeOrBadAllocAndChangesNothing) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        World world;
        for (long succeeding = 0;; ++succeeding) {
            world.fresh = std::make_unique<CPdf>();
            const std::string before = world.state();
            int result = kThrown;
            failed = false;
            left = succeeding;
            try {
                result = row.call(world);
            } catch (const std::bad_alloc&) {
                result = kThrown;
            }
            left = -1;
            if (!failed) {
                EXPECT_EQ(result, row.good);
                EXPECT_GT(succeeding, 0);
                break;
            }
            if (result == row.good) continue;  // it could do without
            ASSERT_EQ(result, row.bad) << succeeding;
            ASSERT_TRUE(world.state() == before) << succeeding;
        }
    }
}

// What was not read to its end is not taken for the whole later.
TEST(NoMemory, LeavesNoPartOfADocument) {
    const TempFile file(longDocument());
    for (long succeeding = 0;; ++succeeding) {
        CPdf pdf;
        failed = false;
        left = succeeding;
        const int first = pdf.Open(file.path().c_str(), "rb");
        left = -1;
        if (!failed) break;
        const int again = pdf.Open(file.path().c_str(), "rb");
        const bool whole = again == 0 && pdf.get_max_obj_num_from_map() == 4;
        EXPECT_TRUE(whole || again == -1014) << first << ' ' << again << ' ' << succeeding;
    }
}

}  // namespace
