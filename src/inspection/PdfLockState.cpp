// CPdf: does a signature forbid every further change (ISO 32000-2 12.8.2)?
#include <limits>

#include "model/DictionaryEntry.h"
#include "model/ObjectTable.h"
#include "support/Log.h"
#include "syntax/Reference.h"
#include "varnpdf/Pdf.h"

using namespace varnpdf;

namespace {

enum class TransformMethod { None, DocMdp, Ur3, FieldMdp };

bool contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

// The order of the tests decides for values that name several methods.
TransformMethod transformMethod(std::string_view value) {
    if (contains(value, "/UR3")) return TransformMethod::Ur3;
    if (contains(value, "/FieldMDP")) return TransformMethod::FieldMdp;
    return contains(value, "/DocMDP") ? TransformMethod::DocMdp : TransformMethod::None;
}

}  // namespace

void CPdf::check_lockstate() {
    logDebug(m_logger, "check_lockstate::START");
    lockState_ = 0;
    if (PdfGetNumSignatures() == 0) {
        logDebug(m_logger, "check_lockstate::END mit State 0 da keine Signatur vorhanden");
        return;
    }
    objects_->forEach(std::numeric_limits<int>::max(), [this](int, const CPdfObj& obj) {
        const std::string_view text = obj.content();
        if (!contains(entryValue(text, "/FT"), "/Sig")) return;
        const auto signature = findLaterEntry(text, "/V");
        if (!signature) return;
        logDebug(m_logger, "check_lockstate - /V ebenfalls gefunden");
        if (lockedBySignature(signature->value.of(text))) lockState_ = 1;
        const auto lock = lockState_ == 0 ? isReference2(entryValue(text, "/Lock")) : std::nullopt;
        const CPdfObj* const locking = lock ? objects_->find(lock->number) : nullptr;
        if (locking != nullptr && contains(entryValue(locking->content(), "/Action"), "/All")) lockState_ = 1;
    });
    logDebug(m_logger, "check_lockstate::END mit State ", lockState_);
}

bool CPdf::lockedBySignature(std::string_view signature) {
    const auto reference = isReference2(signature);
    if (!reference) {
        logError(m_logger, "check_lockstate - /V ist keine Reference");
        return false;
    }
    const CPdfObj* const dictionary = objects_->find(reference->number);
    // A dictionary scan takes names for keys, so the key "/Sig" is the value of /Type.
    if (dictionary == nullptr || !findLaterEntry(dictionary->content(), "/Sig")) return false;
    logDebug(m_logger, "check_lockstate - object /Type /Sig gefunden");
    return lockedByTransform(dictionary->content());
}

bool CPdf::lockedByTransform(std::string_view dictionary) {
    const auto method = findEntry(dictionary, "/TransformMethod", {.nested = true});
    if (!method) {
        logDebug(m_logger, "check_lockstate - /TransformMethod nicht gefunden");
        return false;
    }
    const auto params = findEntry(dictionary, "/TransformParams", {.nested = true});
    if (!params) {
        logDebug(m_logger, "check_lockstate - /TransformParams nicht gefunden");
        return false;
    }
    const auto reference = isReference2(params->value.of(dictionary));
    if (!reference) {
        logError(m_logger, "check_lockstate - /TransformParams ist keine Reference");
        return false;
    }
    logDebug(m_logger, "check_lockstate - /TransformParams gefunden");
    logDebug(m_logger, "check_lockstate - ist Reference");
    CPdfObj* const referenced = objects_->find(reference->number);
    const char* const type = referenced == nullptr ? nullptr : referenced->get_dictionary_type();
    if (type == nullptr || !contains(type, "/TransformParams")) return false;
    logDebug(m_logger, "check_lockstate - ist vom korrekten Typ");
    const std::string_view text = referenced->content();
    switch (transformMethod(method->value.of(dictionary))) {
        case TransformMethod::DocMdp:
            logDebug(m_logger, "check_lockstate - weil DocMDP, wird P gecheckt");
            if (!contains(entryValue(text, "/P"), "1")) return false;
            logDebug(m_logger, "check_lockstate - P=1, also alles gelockt");
            return true;
        case TransformMethod::FieldMdp:
            logDebug(m_logger, "check_lockstate - weil FieldsMDP, wird Action gecheckt");
            if (!findLaterEntry(text, "/Action")) return false;
            logDebug(m_logger, "check_lockstate - /Action gefunden");
            if (!contains(entryValue(text, "/Action"), "/All")) return false;
            logDebug(m_logger, "check_lockstate - /All gefunden, also alles gelockt");
            return true;
        default:
            return false;
    }
}
