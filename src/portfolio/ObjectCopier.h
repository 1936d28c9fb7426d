// Copying objects, with all they refer to, from one document into a document from nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model/Stream.h"
#include "syntax/Lexer.h"
#include "syntax/Readers.h"
#include "writer/NewDocument.h"

namespace varnpdf {

/// One copy run. References are followed except through /Parent: a /Parent that has not been copied on another way is
/// left out, so that no number points at an unrelated object.
class ObjectCopier {
public:
    /// What the target's list of number pairs holds counts as copied.
    ObjectCopier(const Document& source, NewDocument& target);

    /// Copies an object; its new number, or 0 when the source has no such object.
    int copy(int number);
    /// A value of the source as it stands in the target; what it refers to is copied.
    std::string copyValue(std::string_view value);

private:
    /// An array or dictionary that is open.
    struct Level {
        bool isDictionary = false;
        bool wantsKey = false;
        int keys = 0;
    };
    /// An object, or a value, under way: what is before `copied` has been taken over.
    struct Frame {
        int number;             ///< of the copy; 0 for a value
        std::string_view body;  ///< of a stream its dictionary; empty for what cannot be read
        std::optional<Stream> stream;
        Lexer lexer;
        std::size_t copied = 0;
        std::string out = {};
        std::vector<Level> levels = {};
        bool broken = false;
    };

    /// The number of an object in the target, 0 for one that the source does not have.
    struct Copy {
        int number = 0;
        bool isNew = false;  ///< it is null so far
    };
    Copy begin(int number);
    Copy create(int number);
    void enter(int number, int copy);
    void finish();
    void run();
    int step(Frame& frame);
    int takeReferenceOr(Frame& frame, std::size_t from);
    void takeKey(Frame& frame, const Token& token);
    void dropParent(Frame& frame, const Token& key, int number);
    static void valueEnds(Frame& frame);
    void open(Frame& frame, bool dictionary);
    void close(Frame& frame, bool dictionary);

    const Document& source_;
    NewDocument& target_;
    std::unordered_map<int, int> numbers_;
    std::vector<Frame> frames_;  // a stack of our own: no call nests, however long a chain of references is
    std::string value_;
    std::size_t dataRoom_;  // bytes of streams that may still be copied
};

/// The kind of a value; references are followed, and one that leads nowhere is null.
ObjectKind valueKind(const Document& source, std::string_view value);

}  // namespace varnpdf
