// One run of the security store: the material of the records, the store that is there, the appended update.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/Log.h"
#include "syntax/Dictionary.h"
#include "varnpdf/PdfDSS.h"
#include "writer/Update.h"

namespace varnpdf {

/// Works on the texts of an opened document and puts the update together beside it.
class SecurityStore {
public:
    SecurityStore(Document& document, std::span<const pdf_dss_struct> records);

    /// 0, or the code of the first step that failed.
    int run();
    /// The appended part, complete.
    [[nodiscard]] std::vector<std::string_view> pieces() const { return update_.pieces(); }

private:
    // In the order in which a record names them.
    enum Kind : std::size_t { kCertificate, kCrl, kOcsp, kKinds };
    using Numbers = std::array<std::vector<int>, kKinds>;

    /// A value behind its references.
    struct Resolved {
        std::string_view text;
        CPdfObj* holder = nullptr;  ///< the object whose body it is; null for one written in place
    };
    struct Signature {
        std::string key;
        Numbers numbers = {};
        const Dictionary::Entry* same = nullptr;     ///< the old entry with this key
        const Dictionary::Entry* similar = nullptr;  ///< one whose key is written in lower case
    };

    int openTrailer();
    void readSignatures();
    void addSignature(std::string_view dictionary);
    void readStore();
    void readOldEntries();
    void addMaterial();
    void addStream(std::string_view base64, Kind kind, Numbers& numbers);
    void writeEntries();
    [[nodiscard]] std::string entriesText() const;
    [[nodiscard]] std::string entryOf(const Signature& signature) const;
    [[nodiscard]] std::string mergedEntry(const Dictionary& old, const Numbers& added) const;
    [[nodiscard]] std::string newEntry(const Numbers& numbers) const;
    void writeStore();
    void updateCatalogue();
    int closeSection();
    void logStream();

    [[nodiscard]] Resolved resolve(std::string_view value) const;
    [[nodiscard]] std::string extended(std::string_view value, const std::vector<int>& added) const;
    [[nodiscard]] std::string lines(std::string_view text) const;

    Document& document_;
    std::span<const pdf_dss_struct> records_;
    std::string_view lineEnd_;
    Update update_;
    CPdfObj* catalogue_ = nullptr;
    Dictionary catalogueEntries_;
    std::vector<std::optional<std::size_t>> signatures_;        // by index of the signature: its place in keyed_
    std::map<const char*, std::optional<std::size_t>> places_;  // in keyed_, by signature dictionary
    std::map<std::string, std::size_t> byKey_;
    std::size_t lastSignature_ = 0;
    std::vector<Signature> keyed_;  // equal values share a key
    Numbers all_;
    CPdfObj* storeObject_ = nullptr;  // null: a new one is made
    Dictionary oldStore_;
    CPdfObj* entriesObject_ = nullptr;  // likewise
    Dictionary oldEntries_;
    int storeNumber_ = 0;
    int entriesNumber_ = 0;
};

}  // namespace varnpdf
