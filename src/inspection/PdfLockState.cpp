// CPdf: does a signature forbid every further change (ISO 32000-2 12.8.2)?
#include <limits>
#include <map>
#include <unordered_map>

#include "model/DictionaryEntry.h"
#include "model/ObjectTable.h"
#include "support/Log.h"
#include "syntax/Reference.h"
#include "syntax/Text.h"
#include "varnpdf/Pdf.h"

using namespace varnpdf;

namespace {

enum class TransformMethod { None, DocMdp, Ur3, FieldMdp };

// The order of the tests decides for values that name several methods.
TransformMethod transformMethod(std::string_view value) {
    if (contains(value, "/UR3")) return TransformMethod::Ur3;
    if (contains(value, "/FieldMDP")) return TransformMethod::FieldMdp;
    return contains(value, "/DocMDP") ? TransformMethod::DocMdp : TransformMethod::None;
}

bool parametersLock(CPdfObj& parameters, TransformMethod method, const ClassLogger& logger) {
    const char* const type = parameters.get_dictionary_type();
    if (type == nullptr || !contains(type, "/TransformParams")) return false;
    logDebug(logger, "check_lockstate - ist vom korrekten Typ");
    const std::string_view text = parameters.content();
    switch (method) {
        case TransformMethod::DocMdp:
            logDebug(logger, "check_lockstate - weil DocMDP, wird P gecheckt");
            if (!contains(entryValue(text, "/P"), "1")) return false;
            logDebug(logger, "check_lockstate - P=1, also alles gelockt");
            return true;
        case TransformMethod::FieldMdp:
            logDebug(logger, "check_lockstate - weil FieldsMDP, wird Action gecheckt");
            if (!findLaterEntry(text, "/Action")) return false;
            logDebug(logger, "check_lockstate - /Action gefunden");
            if (!contains(entryValue(text, "/Action"), "/All")) return false;
            logDebug(logger, "check_lockstate - /All gefunden, also alles gelockt");
            return true;
        default:
            return false;
    }
}

}  // namespace

// Fields may share a signature dictionary, transform parameters or a lock; each is read once.
struct varnpdf::LockAnswers {
    using Answers = std::unordered_map<const CPdfObj*, bool>;
    Answers dictionaries;
    std::map<TransformMethod, Answers> parameters;
    Answers locks;
};

void CPdf::check_lockstate() {
    logDebug(m_logger, "check_lockstate::START");
    lockState_ = 0;
    if (PdfGetNumSignatures() == 0) {
        logDebug(m_logger, "check_lockstate::END mit State 0 da keine Signatur vorhanden");
        return;
    }
    LockAnswers answers;
    objects_->forEach(std::numeric_limits<int>::max(), [&](int, CPdfObj& obj) {
        if (!contains(obj.fieldTypeEntry(), "/Sig")) return;
        const std::string_view text = obj.content();
        const auto signature = findLaterEntry(text, "/V");
        if (!signature) return;
        logDebug(m_logger, "check_lockstate - /V ebenfalls gefunden");
        if (lockedBySignature(signature->value.of(text), answers)) lockState_ = 1;
        const auto lock = lockState_ == 0 ? isReference2(entryValue(text, "/Lock")) : std::nullopt;
        const CPdfObj* const locking = lock ? objects_->find(lock->number) : nullptr;
        if (locking == nullptr) return;
        const auto [known, isNew] = answers.locks.try_emplace(locking, false);
        if (isNew) known->second = contains(entryValue(locking->content(), "/Action"), "/All");
        if (known->second) lockState_ = 1;
    });
    logDebug(m_logger, "check_lockstate::END mit State ", lockState_);
}

bool CPdf::lockedBySignature(std::string_view signature, LockAnswers& answers) {
    const auto reference = isReference2(signature);
    if (!reference) {
        logError(m_logger, "check_lockstate - /V ist keine Reference");
        return false;
    }
    const CPdfObj* const dictionary = objects_->find(reference->number);
    const auto [known, isNew] = answers.dictionaries.try_emplace(dictionary, false);
    if (!isNew) return known->second;
    // A dictionary scan takes names for keys, so the key "/Sig" is the value of /Type.
    if (dictionary == nullptr || !findLaterEntry(dictionary->content(), "/Sig")) return false;
    logDebug(m_logger, "check_lockstate - object /Type /Sig gefunden");
    return known->second = lockedByTransform(dictionary->content(), answers);
}

bool CPdf::lockedByTransform(std::string_view dictionary, LockAnswers& answers) {
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
    const TransformMethod applied = transformMethod(method->value.of(dictionary));
    const auto [known, isNew] = answers.parameters[applied].try_emplace(referenced, false);
    if (isNew && referenced != nullptr) known->second = parametersLock(*referenced, applied, m_logger);
    return known->second;
}
