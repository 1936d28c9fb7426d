// Does a signature forbid every further change?
#include "inspection/LockState.h"

#include <map>
#include <unordered_map>

#include "inspection/Signatures.h"
#include "model/DictionaryEntry.h"
#include "support/Loggers.h"
#include "syntax/Reference.h"
#include "syntax/Text.h"

namespace varnpdf {
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

// Fields may share a signature dictionary, transform parameters or a lock; each is read once.
struct LockAnswers {
    using Answers = std::unordered_map<const CPdfObj*, bool>;
    Answers dictionaries;
    std::map<TransformMethod, Answers> parameters;
    Answers locks;
};

bool lockedByTransform(const Document& document, std::string_view dictionary, LockAnswers& answers) {
    const auto method = findEntry(dictionary, "/TransformMethod", {.nested = true});
    if (!method) {
        logDebug(loggers::pdf, "check_lockstate - /TransformMethod nicht gefunden");
        return false;
    }
    const auto params = findEntry(dictionary, "/TransformParams", {.nested = true});
    if (!params) {
        logDebug(loggers::pdf, "check_lockstate - /TransformParams nicht gefunden");
        return false;
    }
    const auto reference = isReference2(params->value.of(dictionary));
    if (!reference) {
        logError(loggers::pdf, "check_lockstate - /TransformParams ist keine Reference");
        return false;
    }
    logDebug(loggers::pdf, "check_lockstate - /TransformParams gefunden");
    logDebug(loggers::pdf, "check_lockstate - ist Reference");
    CPdfObj* const referenced = document.objects.find(reference->number);
    const TransformMethod applied = transformMethod(method->value.of(dictionary));
    const auto [known, isNew] = answers.parameters[applied].try_emplace(referenced, false);
    if (isNew && referenced != nullptr) known->second = parametersLock(*referenced, applied, loggers::pdf);
    return known->second;
}

bool lockedBySignature(const Document& document, std::string_view signature, LockAnswers& answers) {
    const auto reference = isReference2(signature);
    if (!reference) {
        logError(loggers::pdf, "check_lockstate - /V ist keine Reference");
        return false;
    }
    const CPdfObj* const dictionary = document.objects.find(reference->number);
    const auto [known, isNew] = answers.dictionaries.try_emplace(dictionary, false);
    if (!isNew) return known->second;
    // A dictionary scan takes names for keys, so the key "/Sig" is the value of /Type.
    if (dictionary == nullptr || !findLaterEntry(dictionary->content(), "/Sig")) return false;
    logDebug(loggers::pdf, "check_lockstate - object /Type /Sig gefunden");
    return known->second = lockedByTransform(document, dictionary->content(), answers);
}

}  // namespace

bool lockedBySignatures(Document& document) {
    logDebug(loggers::pdf, "check_lockstate::START");
    if (signatureFields(document).empty()) {
        logDebug(loggers::pdf, "check_lockstate::END mit State 0 da keine Signatur vorhanden");
        return false;
    }
    bool locked = false;
    LockAnswers answers;
    document.objects.forEach([&](int, CPdfObj& obj) {
        if (!contains(obj.fieldTypeEntry(), "/Sig")) return;
        const std::string_view text = obj.content();
        const auto signature = findLaterEntry(text, "/V");
        if (!signature) return;
        logDebug(loggers::pdf, "check_lockstate - /V ebenfalls gefunden");
        if (lockedBySignature(document, signature->value.of(text), answers)) locked = true;
        const auto lock = locked ? std::nullopt : isReference2(entryValue(text, "/Lock"));
        const CPdfObj* const locking = lock ? document.objects.find(lock->number) : nullptr;
        if (locking == nullptr) return;
        const auto [known, isNew] = answers.locks.try_emplace(locking, false);
        if (isNew) known->second = contains(entryValue(locking->content(), "/Action"), "/All");
        if (known->second) locked = true;
    });
    logDebug(loggers::pdf, "check_lockstate::END mit State ", locked ? 1 : 0);
    return locked;
}

}  // namespace varnpdf
