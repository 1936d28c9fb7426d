// Copying objects with all they refer to.
#include "portfolio/ObjectCopier.h"

#include <utility>

#include "model/Lookup.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "syntax/Dictionary.h"

namespace varnpdf {

ObjectCopier::ObjectCopier(const Document& source, NewDocument& target)
    : source_(source), target_(target), dataRoom_(limits::kCopiedBytesPerByte * source.length) {
    for (const auto& pair : target.transfers) numbers_.try_emplace(pair->getOldObjNr(), pair->getNewObjNr());
}

int ObjectCopier::copy(int number) {
    const Copy copy = begin(number);
    if (copy.isNew) {
        enter(number, copy.number);
        run();
    }
    return copy.number;
}

std::string ObjectCopier::copyValue(std::string_view value) {
    frames_.push_back(Frame{0, value, std::nullopt, Lexer(value)});
    run();
    return std::exchange(value_, {});
}

// The end is logged here unless there is something to copy.
ObjectCopier::Copy ObjectCopier::begin(int number) {
    logDebug(loggers::collection, "CopyOldObjToNew START");
    const auto known = numbers_.find(number);
    if (known != numbers_.end()) logDebug(loggers::collection, "Objekt in Transfertabelle gefunden.");
    const Copy copy = known != numbers_.end() ? Copy{known->second} : create(number);
    if (!copy.isNew) logDebug(loggers::collection, " CopyOldObjToNew ENDE");
    return copy;
}

ObjectCopier::Copy ObjectCopier::create(int number) {
    const CPdfObj* const object = source_.objects.find(number);
    if (object == nullptr || object->content().empty()) return {};
    logDebug(loggers::collection, "Objekt NICHT in Transfertabelle gefunden, also NEU erstellen");
    const int copy = createObject(target_, "null", CPdfObj::eContentOther);
    if (copy == 0) return {};
    numbers_[number] = copy;
    target_.transfers.push_back(std::make_unique<CPdfObjTransferListItem>(number, copy));
    logDebug(loggers::collection, "neues Objekt (std) in Transfertabelle ", number, " -> ", copy);
    return {copy, true};
}

void ObjectCopier::enter(int number, int copy) {
    const CPdfObj& object = *source_.objects.find(number);
    auto stream = streamOf(source_, object);
    std::string_view body = stream ? stream->dictionary : objectValue(object.content());
    const std::size_t dataBytes = stream ? stream->data.size() : 0;
    if (dataBytes > dataRoom_) {
        logError(loggers::collection, "Streams überlappen sich, Objekt wird nicht kopiert: ", number);
        stream.reset();
        body = {};
    } else {
        dataRoom_ -= dataBytes;
    }
    frames_.push_back(Frame{copy, body, stream, Lexer(body)});
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
    const bool good = !frame.broken && frame.levels.empty() && !frame.body.empty();
    std::string body = good ? frame.out : "null";
    if (frame.number == 0) {
        value_ = std::move(body);
        return;
    }
    std::string content = text(frame.number, " 0 obj\r\n", body);
    if (good && frame.stream) append(content, "\r\nstream\r\n", frame.stream->data, "\r\nendstream");
    append(content, "\r\nendobj\r\n\r\n");
    objectAt(target_, frame.number).setContent(content);
    logDebug(loggers::collection, " CopyOldObjToNew ENDE");
}

// Goes on until an object is met that has to be copied first, whose number is returned, or to the end (0).
int ObjectCopier::step(Frame& frame) {
    const std::string_view body = frame.body;
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
    logDebug(loggers::collection, dictionary ? "Ist ein Dictionary" : "Ist ein Array");
    if (dictionary) logDebug(loggers::collection, "Enter Recursion DICT");
    frame.levels.push_back({dictionary, dictionary});
    if (frame.levels.size() > static_cast<std::size_t>(limits::kNesting)) frame.broken = true;
}

void ObjectCopier::close(Frame& frame, bool dictionary) {
    if (frame.levels.empty() || frame.levels.back().isDictionary != dictionary) {
        frame.broken = true;
        return;
    }
    if (dictionary) logDebug(loggers::collection, " Exit Recursion DICT");
    frame.levels.pop_back();
    valueEnds(frame);
}

void ObjectCopier::takeKey(Frame& frame, const Token& token) {
    const std::string_view body = frame.body;
    const std::string_view key = token.text;
    Level& level = frame.levels.back();
    level.wantsKey = false;
    logDebug(loggers::collection, level.keys++ == 0 ? " DICT 1. Key gefunden: " : " DICT n. Key gefunden: ", key);
    if (key == "/Parent") {
        if (const auto number = frame.lexer.nextReference()) dropParent(frame, token, *number);
    } else if (key == "/Length" && frame.levels.size() == 1 && frame.stream && !frame.stream->lengthHolds) {
        if (!frame.lexer.nextValue()) return;
        append(frame.out, body.substr(frame.copied, token.end() - frame.copied), ' ', frame.stream->data.size());
        frame.copied = frame.lexer.at();
        level.wantsKey = true;
    }
}

void ObjectCopier::dropParent(Frame& frame, const Token& key, int number) {
    logDebug(loggers::collection, "Ist eine Referenz (Parent)");
    append(frame.out, frame.body.substr(frame.copied, key.begin - frame.copied));
    const auto known = numbers_.find(number);
    if (known != numbers_.end()) append(frame.out, "/Parent ", known->second, " 0 R");
    frame.copied = frame.lexer.at();
    frame.levels.back().wantsKey = true;
}

// A number or keyword, or a reference: its new number is written, and the number of an object that is still to be
// copied returned.
int ObjectCopier::takeReferenceOr(Frame& frame, std::size_t from) {
    const std::string_view body = frame.body;
    valueEnds(frame);
    const std::size_t behindWord = frame.lexer.at();
    frame.lexer.moveTo(from);
    const auto number = frame.lexer.nextReference();
    if (!number) {
        frame.lexer.moveTo(behindWord);
        return 0;
    }
    logDebug(loggers::collection, "Ist eine Referenz");
    logDebug(loggers::collection, "Key ist Referenz und kein /Parent");
    const Copy copy = begin(*number);
    append(frame.out, body.substr(frame.copied, from - frame.copied), ' ');
    if (copy.number > 0) {
        append(frame.out, copy.number, " 0 R");
    } else {
        append(frame.out, "null");
    }
    frame.copied = frame.lexer.at();
    return copy.isNew ? *number : 0;
}

ObjectKind valueKind(const Document& source, std::string_view value) {
    const auto [found, holder] = resolve(source, value);
    if (holder != nullptr && streamOf(source, *holder)) return ObjectKind::Stream;
    const Token token = Lexer(found).next();
    switch (token.kind) {
        case TokenKind::DictOpen:
            return ObjectKind::Dictionary;
        case TokenKind::ArrayOpen:
            return ObjectKind::Array;
        case TokenKind::String:
        case TokenKind::HexString:
            return ObjectKind::String;
        case TokenKind::Name:
            return ObjectKind::Name;
        case TokenKind::Word:
            if (token.text == "true" || token.text == "false") return ObjectKind::Boolean;
            return token.text.find_first_not_of(kNumberBytes) == std::string_view::npos ? ObjectKind::Number
                                                                                        : ObjectKind::None;
        default:
            return found.empty() ? ObjectKind::Null : ObjectKind::None;
    }
}

}  // namespace varnpdf
