// CPdfInfo: records of all values of a signature, kept as long as the file has not changed.
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <memory>
#include <new>
#include <optional>

#include "api/FieldReader.h"
#include "support/Guarded.h"
#include "support/Loggers.h"
#include "syntax/Text.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/PdfInfo.h"
#include "varnpdf/result.h"

using namespace varnpdf;

std::list<cPdfSignatureFields*> CPdfInfo::m_PdfSigF;

namespace {

using Records = std::list<cPdfSignatureFields*>;

constexpr std::size_t kMostRecords = 10;
constexpr int kByteRangeTag = 7;

// The records go with the process or the library, before the list does.
const struct RecordsEnd {
    RecordsEnd() = default;
    RecordsEnd(const RecordsEnd&) = delete;
    RecordsEnd& operator=(const RecordsEnd&) = delete;
    ~RecordsEnd() { CPdfInfo::clearSigFieldList(); }
} recordsEnd;

// What is logged before and behind the value of a tag, from 1.
struct TagLog {
    const char* label;
    const char* line;
};
constexpr std::array<TagLog, 14> kTagLogs = {{{"", ""},
                                              {"Reason\n", "Tag 1 (reason) len:"},
                                              {"Location\n", "Tag 2 (location) len:"},
                                              {"Date\n", "Tag 3 (Date) len:"},
                                              {"", "Tag 4 (Name) len:"},
                                              {"Filter\n", "Tag 5 (Filter) len:"},
                                              {"Subfilter\n", "Tag 6 (Subfilter) len:"},
                                              {"Byterange\n", "Tag 7 (byterange) len:"},
                                              {"Contents\n", "Tag 8 (content) len:"},
                                              {"Formtag\n", "Tag 9 (formtag) len:"},
                                              {"Cert\n", "Tag 10 (cert) len:"},
                                              {"Type\n", "Tag 11 (type) len:"},
                                              {"", "Tag 12 (R) len:"},
                                              {"contactinfo\n", "Tag 13 (contactinfo) len:"}}};
enum Tag : int { kName = 4, kContents = 8, kCert = 10 };

using Values = std::array<std::string, kTagLogs.size()>;

std::string valueOf(const cPdfSignatureFields& record, int tag) {
    using Getter = std::string (cPdfSignatureFields::*)() const;
    using Fields = cPdfSignatureFields;
    constexpr std::array<Getter, kTagLogs.size()> kGetters = {
        nullptr,
        &Fields::Get_szSigInfo_Reason,
        &Fields::Get_szSigInfo_Location,
        &Fields::Get_szSigInfo_Date,
        &Fields::Get_szSigInfo_Name,
        &Fields::Get_szSigInfo_Filter,
        &Fields::Get_szSigInfo_SubFilter,
        &Fields::Get_szSigInfo_ByteRange,
        &Fields::Get_szSigInfo_Contents,
        &Fields::Get_szSigInfo_Formtag,
        &Fields::Get_szSigInfo_Cert,
        &Fields::Get_szSigInfo_Type,
        &Fields::Get_szSigInfo_R,
        &Fields::Get_szSigInfo_ContactInfo,
    };
    if (tag < 1 || tag >= static_cast<int>(kGetters.size())) return {};
    return (record.*kGetters[static_cast<std::size_t>(tag)])();
}

// The time of the last change, in UTC as the C library counts it. Nothing for a file that is not there: it is like no
// record.
std::optional<std::string> fileDate(const std::string& file) {
    struct stat info {};
    std::tm date{};
    if (stat(file.c_str(), &info) != 0 || gmtime_r(&info.st_mtime, &date) == nullptr) return std::nullopt;
    return text(date.tm_year, '.', date.tm_mon, '.', date.tm_mday, '-', date.tm_hour, ':', date.tm_min, ':',
                date.tm_sec);
}

// The record of the file as it is now; a stale one of the same signature may stand in front of it.
const cPdfSignatureFields* findRecord(const Records& records, const std::string& file, int index) {
    std::optional<std::string> date;
    for (const cPdfSignatureFields* const record : records) {
        if (record->Get_iSigNr() != index || record->Get_szPdfName() != file) continue;
        if (!date) date = fileDate(file);
        if (date && record->Get_szPdfFileDate() == *date) return record;
    }
    return nullptr;
}

Values readValues(CPdf& pdf, int index, const ClassLogger& logger) {
    FieldReader reader(pdf);
    Values values;
    for (int tag = 1; tag < static_cast<int>(values.size()); ++tag) {
        const TagLog& log = kTagLogs[static_cast<std::size_t>(tag)];
        std::string& value = values[static_cast<std::size_t>(tag)];
        if (*log.label != '\0') logDebug(logger, log.label);
        // What is not there is empty; what could not be read must not be kept as empty.
        if (reader.read(index, tag, value) == VARNPDF_PDF_MEMORY_ALLOCATION) throw std::bad_alloc();
        logDebug(logger, log.line, value.size());
        // UTF-16 comes with the NUL that ends it for hosts that take a char*.
        if (tag != kContents && tag != kCert && value.ends_with('\0')) value.pop_back();
        if (tag == kName) std::erase(value, '\\');
        if (tag == kCert) value = toHex(value);
    }
    logDebug(logger, "---\n");
    return values;
}

std::unique_ptr<cPdfSignatureFields> makeRecord(const std::string& file, const std::string& date, int index, Values& v,
                                                int count) {
    return std::make_unique<cPdfSignatureFields>(file, date, index, std::move(v[1]), std::move(v[2]), std::move(v[3]),
                                                 std::move(v[4]), std::move(v[5]), std::move(v[6]), std::move(v[7]),
                                                 std::move(v[8]), std::move(v[9]), std::move(v[10]), std::move(v[11]),
                                                 std::move(v[12]), std::move(v[13]), count);
}

void makeRoom(Records& records) {
    while (records.size() >= kMostRecords) {
        const std::unique_ptr<cPdfSignatureFields> oldest(records.front());
        records.pop_front();
    }
}

void keep(Records& records, std::unique_ptr<cPdfSignatureFields> record) {
    records.push_back(record.get());
    static_cast<void>(record.release());
}

}  // namespace

int CPdfInfo::GetSignatureFieldEx(std::string const& file, int index, int tag, std::string* result,
                                  std::list<cPdfSignatureFields*>& records) {
    return guarded([&]() -> int {
        if (const auto* const known = findRecord(records, file, index); known != nullptr) {
            if (result != nullptr) *result = valueOf(*known, tag);
            return VARNPDF_OK;
        }
        // Asked before the file is read: when it changes meanwhile, the record is stale from the start.
        const std::optional<std::string> date = fileDate(file);
        CPdf pdf;
        if (const int code = pdf.Open(file.c_str(), "rb"); code != VARNPDF_OK) return code;
        logDebug(loggers::info, "opening pdf");
        const int count = pdf.PdfGetNumSignatures();
        logDebug(loggers::info, "num signatures: ", count);
        logDebug(loggers::info, "pdf content len: ", pdf.GetContentLen());
        Values values = readValues(pdf, index, loggers::info);
        logDebug(loggers::info, "after deleting temp buffers");
        makeRoom(records);
        logDebug(loggers::info, "create cPdfSignatureFields object");
        auto record = makeRecord(file, date.value_or(""), index, values, count);
        std::string value = valueOf(*record, tag);
        keep(records, std::move(record));
        pdf.Close();
        logDebug(loggers::info, "closing pdf");
        if (result != nullptr) *result = std::move(value);
        logDebug(loggers::info, "GetSignatureFieldEx END regulaer");
        return VARNPDF_OK;
    });
}

int CPdfInfo::GetNumSignatureEx(char* file) {
    if (file == nullptr) return VARNPDF_CAN_NOT_LOAD_PDF_FILE;
    return guarded([=]() -> int {
        const std::string name(file);
        const int code = GetSignatureFieldEx(name, 0, kByteRangeTag, nullptr, m_PdfSigF);
        if (code != VARNPDF_OK) return code;
        const cPdfSignatureFields* const record = findRecord(m_PdfSigF, name, 0);
        return record == nullptr ? 0 : record->Get_sigCount();
    });
}

void CPdfInfo::clearSigFieldList() {
    for (const cPdfSignatureFields* const record : m_PdfSigF) delete record;
    m_PdfSigF.clear();
}
