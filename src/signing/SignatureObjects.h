// The objects of a signature: widget merged with its field, signature dictionary, appearance (ISO 32000-2 12.7.5.5,
// 12.8.1).
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "support/Image.h"
#include "syntax/Reference.h"
#include "varnpdf/FormfieldInfo.h"
#include "writer/Update.h"

namespace varnpdf {

/// The signature reference of a lock (ISO 32000-2 table 256).
struct SignatureReference {
    std::string_view method;  ///< of the transform, without slash
    int parameters = 0;       ///< object number
    std::string_view digest;  ///< without slash
    int data = 0;             ///< object number
};

struct Widget {
    ObjectRef ref;
    ObjectRef page;
    std::array<int, 4> rect{};
    int fieldNumber = 1;                 ///< of "UnterschriftN": the first that is tried
    bool isSigned = true;                ///< has a /V
    std::optional<ObjectRef> lock = {};  ///< field lock
};
/// Appends the widget; of its field's names the first from `fieldNumber` on is taken that is not in `names`.
void appendWidget(Tail& out, const Widget& widget, const std::vector<std::string>& names);

struct SignatureValue {
    ObjectRef ref;
    std::string_view reason;
    std::string_view location;
    std::string_view name;  ///< ISO 8859-1, escaped
    std::string_view date;
    bool etsi = true;
    unsigned contentsSize = 0;
    std::optional<SignatureReference> reference = {};
};
/// Offsets in the file that the value's room and the numbers of /ByteRange have.
struct SignatureRoom {
    static constexpr std::size_t kByteRange = 30;
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t byteRange = 0;
};
/// Appends the signature dictionary with a room of `contentsSize` bytes.
SignatureRoom appendValue(Tail& out, const SignatureValue& value);

struct SignatureObjects {
    Widget widget;
    SignatureValue value;  ///< the number behind the widget's
    bool visible = false;
    std::array<int, 2> size{};
    int rotation = 0;  ///< of the page, in degrees
    bool layers = false;
    const JpegImage* picture = nullptr;  ///< background image, null without one
    std::span<const FormfieldInfo_tag> fields = {};
    std::optional<std::string_view> metadata = {};  ///< text of an object that follows the others
};
struct WrittenSignature {
    std::vector<std::size_t> offsets;  ///< in the file; of consecutive numbers from the widget's on
    SignatureRoom room;
};
/// Appends all of them; nothing when compressing fails.
std::optional<WrittenSignature> appendSignature(Tail& out, const SignatureObjects& objects,
                                                const std::vector<std::string>& names);

}  // namespace varnpdf
