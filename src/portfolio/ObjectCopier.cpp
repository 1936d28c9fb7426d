// Copying objects with all they refer to.
#include "portfolio/ObjectCopier.h"

#include <utility>

#include "support/Limits.h"
#include "support/Text.h"
#include "syntax/Readers.h"

namespace varnpdf {

ObjectCopier::ObjectCopier(CPdf& source, CPdf& target, const ClassLogger& logger)
    : source_(source),
      target_(target),
      logger_(logger),
      dataRoom_(limits::kCopiedBytesPerByte * source.GetContentLen()) {
    for (int i = 0; i < target.GetListItemCount(); ++i) {
        const CPdfObjTransferListItem& item = *target.GetListItem(i);
        numbers_.try_emplace(item.getOldObjNr(), item.getNewObjNr());
    }
}

int ObjectCopier::copy(int number) {
    const auto known = numbers_.find(number);
    if (known != numbers_.end()) {
        logDebug(logger_, "Objekt in Transfertabelle gefunden.");
        return known->second;
    }
    const int copy = newNumber(number);
    if (copy == 0) return 0;
    enter(number, copy);
    run();
    return copy;
}

std::string ObjectCopier::copyValue(std::string_view value) {
    Frame frame{-1, {}, Lexer(value)};
    frame.parts.body = value;
    frames_.push_back(std::move(frame));
    run();
    return std::exchange(value_, {});
}

// Gives an object of the source its number in the target, where it is nothing yet; 0 when there is no such object.
int ObjectCopier::newNumber(int number) {
    const CPdfObj* const object = source_.get_pdf_obj_from_map(number);
    if (object == nullptr || object->content().empty()) return 0;
    logDebug(logger_, "Objekt NICHT in Transfertabelle gefunden, also NEU erstellen");
    constexpr std::string_view kNothing = "null";
    if (target_.CreateObject("", 0, kNothing.data(), static_cast<int>(kNothing.size()), CPdfObj::eContentOther) != 0) {
        return 0;
    }
    const int copy = target_.GetObjNum();
    numbers_[number] = copy;
    target_.AddListItem(new CPdfObjTransferListItem(number, copy));
    logDebug(logger_, "neues Objekt (std) in Transfertabelle ", number, " -> ", copy);
    return copy;
}

void ObjectCopier::enter(int number, int copy) {
    logDebug(logger_, "CopyOldObjToNew START");
    ObjectParts parts = partsOf(source_, *source_.get_pdf_obj_from_map(number));
    const std::size_t dataBytes = parts.data ? parts.data->size() : 0;
    if (dataBytes > dataRoom_) {
        logError(logger_, "Streams überlappen sich, Objekt wird nicht kopiert: ", number);
        parts = {};
    } else {
        dataRoom_ -= dataBytes;
    }
    frames_.push_back(Frame{copy - 1, parts, Lexer(parts.body)});
}

void ObjectCopier::run() {
    while (!frames_.empty()) {
        const int number = step(frames_.back());
        if (number > 0) {
            enter(number, numbers_.at(number));
        } else {
            finish();
        }
    }
}

void ObjectCopier::finish() {
    const Frame frame = std::move(frames_.back());
    frames_.pop_back();
    const bool good = !frame.broken && frame.levels.empty() && !frame.parts.body.empty();
    std::string body = good ? frame.out : "null";
    if (frame.slot < 0) {
        value_ = std::move(body);
        return;
    }
    std::string content = text(frame.slot + 1, " 0 obj\r\n", body);
    if (good && frame.parts.data) append(content, "\r\nstream\r\n", *frame.parts.data, "\r\nendstream");
    append(content, "\r\nendobj\r\n\r\n");
    target_.get_pdf_obj_from_map(frame.slot)->setContent(content);
    logDebug(logger_, " CopyOldObjToNew ENDE");
}

// Goes on until an object is met that has to be copied first, whose number is returned, or to the end (0).
int ObjectCopier::step(Frame& frame) {
    const std::string_view body = frame.parts.body;
    while (!frame.broken) {
        const std::size_t before = frame.lexer.at();
        const Token token = frame.lexer.next();
        const bool wantsKey = !frame.levels.empty() && frame.levels.back().wantsKey;
        switch (token.kind) {
            case TokenKind::End:
                append(frame.out, body.substr(frame.copied));
                frame.copied = body.size();
                return 0;
            case TokenKind::DictOpen:
            case TokenKind::ArrayOpen:
                open(frame, token.kind == TokenKind::DictOpen);
                break;
            case TokenKind::DictClose:
            case TokenKind::ArrayClose:
                close(frame, token.kind == TokenKind::DictClose);
                break;
            case TokenKind::Name:
                if (wantsKey) {
                    takeKey(frame, token);
                } else {
                    valueEnds(frame);
                }
                break;
            case TokenKind::Word:
                if (const int number = takeReferenceOr(frame, before); number > 0) return number;
                break;
            case TokenKind::Broken:
                frame.broken = true;
                break;
            default:
                valueEnds(frame);
        }
    }
    return 0;
}

void ObjectCopier::valueEnds(Frame& frame) {
    if (!frame.levels.empty()) frame.levels.back().wantsKey = frame.levels.back().isDictionary;
}

void ObjectCopier::open(Frame& frame, bool dictionary) {
    logDebug(logger_, dictionary ? "Ist ein Dictionary" : "Ist ein Array");
    if (dictionary) logDebug(logger_, "Enter Recursion DICT");
    frame.levels.push_back({dictionary, dictionary});
    if (frame.levels.size() > static_cast<std::size_t>(limits::kNesting)) frame.broken = true;
}

void ObjectCopier::close(Frame& frame, bool dictionary) {
    if (frame.levels.empty() || frame.levels.back().isDictionary != dictionary) {
        frame.broken = true;
        return;
    }
    if (dictionary) logDebug(logger_, " Exit Recursion DICT");
    frame.levels.pop_back();
    valueEnds(frame);
}

void ObjectCopier::takeKey(Frame& frame, const Token& token) {
    const std::string_view body = frame.parts.body;
    const std::string_view key = token.text;
    Level& level = frame.levels.back();
    level.wantsKey = false;
    logDebug(logger_, level.keys++ == 0 ? " DICT 1. Key gefunden: " : " DICT n. Key gefunden: ", key);
    if (key == "/Parent") {
        if (const auto number = frame.lexer.nextReference()) dropParent(frame, token, *number);
    } else if (key == "/Length" && frame.levels.size() == 1 && frame.parts.data && !frame.parts.lengthHolds) {
        if (!frame.lexer.nextValue()) return;
        append(frame.out, body.substr(frame.copied, token.end() - frame.copied), ' ', frame.parts.data->size());
        frame.copied = frame.lexer.at();
        level.wantsKey = true;
    }
}

void ObjectCopier::dropParent(Frame& frame, const Token& key, int number) {
    logDebug(logger_, "Ist eine Referenz (Parent)");
    append(frame.out, frame.parts.body.substr(frame.copied, key.begin - frame.copied));
    const auto known = numbers_.find(number);
    if (known != numbers_.end()) append(frame.out, "/Parent ", known->second, " 0 R");
    frame.copied = frame.lexer.at();
    frame.levels.back().wantsKey = true;
}

// A number or keyword, or a reference: its new number is written, and the number of an object that is still to be
// copied returned.
int ObjectCopier::takeReferenceOr(Frame& frame, std::size_t begin) {
    const std::string_view body = frame.parts.body;
    valueEnds(frame);
    const std::size_t behindWord = frame.lexer.at();
    frame.lexer.moveTo(begin);
    const auto number = frame.lexer.nextReference();
    if (!number) {
        frame.lexer.moveTo(behindWord);
        return 0;
    }
    logDebug(logger_, "Ist eine Referenz");
    logDebug(logger_, "Key ist Referenz und kein /Parent");
    const auto known = numbers_.find(*number);
    const bool isKnown = known != numbers_.end();
    const int copy = isKnown ? known->second : newNumber(*number);
    append(frame.out, body.substr(frame.copied, begin - frame.copied), ' ');
    if (copy > 0) {
        append(frame.out, copy, " 0 R");
    } else {
        append(frame.out, "null");
    }
    frame.copied = frame.lexer.at();
    return copy > 0 && !isKnown ? *number : 0;
}

int valueKind(CPdf& source, std::string_view value) {
    const CPdfObj* const object = referenced(source, value);
    if (object != nullptr && partsOf(source, *object).data) return static_cast<int>(ObjectKind::Stream);
    value = resolved(source, value);
    const Token token = Lexer(value).next();
    const std::string_view word = token.text;
    switch (token.kind) {
        case TokenKind::DictOpen:
            return static_cast<int>(ObjectKind::Dictionary);
        case TokenKind::ArrayOpen:
            return static_cast<int>(ObjectKind::Array);
        case TokenKind::String:
        case TokenKind::HexString:
            return static_cast<int>(ObjectKind::String);
        case TokenKind::Name:
            return static_cast<int>(ObjectKind::Name);
        case TokenKind::Word:
            if (word == "true" || word == "false") return static_cast<int>(ObjectKind::Boolean);
            if (word.find_first_not_of(kNumberBytes) == std::string_view::npos)
                return static_cast<int>(ObjectKind::Number);
            return static_cast<int>(word == "null" ? ObjectKind::Null : ObjectKind::None);
        default:
            return static_cast<int>(value.empty() ? ObjectKind::Null : ObjectKind::None);
    }
}

}  // namespace varnpdf
