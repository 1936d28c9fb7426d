// Copying objects, with all they refer to, from one document into a document from nothing.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "portfolio/Streams.h"
#include "support/Log.h"
#include "syntax/Lexer.h"
#include "varnpdf/Pdf.h"

namespace varnpdf {

/// One copy run. References are followed except through /Parent: a /Parent that has not been copied on another way is
/// left out, so that no number points at an unrelated object.
class ObjectCopier {
public:
    /// What the target's list of number pairs holds counts as copied.
    ObjectCopier(CPdf& source, CPdf& target, const ClassLogger& logger);

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
        int slot;  ///< of the copy; -1 for a value
        ObjectParts parts;
        Lexer lexer;
        std::size_t copied = 0;
        std::string out = {};
        std::vector<Level> levels = {};
        bool broken = false;
    };

    int newNumber(int number);
    void enter(int number, int copy);
    void finish();
    void run();
    int step(Frame& frame);
    int takeReferenceOr(Frame& frame, std::size_t begin);
    void takeKey(Frame& frame, const Token& token);
    void dropParent(Frame& frame, const Token& key, int number);
    static void valueEnds(Frame& frame);
    void open(Frame& frame, bool dictionary);
    void close(Frame& frame, bool dictionary);

    CPdf& source_;
    CPdf& target_;
    const ClassLogger& logger_;
    std::unordered_map<int, int> numbers_;
    std::vector<Frame> frames_;  // a stack of our own: no call nests, however long a chain of references is
    std::string value_;
    std::size_t dataRoom_;  // bytes of streams that may still be copied
};

/// The kind of a value as `readObject` numbers it; references are followed.
int valueKind(CPdf& source, std::string_view value);

}  // namespace varnpdf
