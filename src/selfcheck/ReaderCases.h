// What the readers of PDF syntax give for fixed inputs. The self-check and the tests judge by these tables.
#pragma once

#include <string_view>

namespace varnpdf::selfcheck {

using namespace std::literals;

// Every row is "input -> results". What the results of a reader are stands in front of its table.

// result, kind, value, offset behind the number
inline constexpr std::string_view kReadNumber[] = {
    " -> 0",
    "1A3 -> 0",
    "ABC -> 0",
    "] -> 0",
    "/1 -> 0",
    "1 -> 1 integer 1 1",
    " 1 -> 1 integer 1 2",
    " 1  -> 1 integer 1 2",
    "1  -> 1 integer 1 1",
    "123 -> 1 integer 123 3",
    " 123 -> 1 integer 123 4",
    " 123  -> 1 integer 123 4",
    "123  -> 1 integer 123 3",
    "1.0 -> 1 float 1 3",
    " 1.0 -> 1 float 1 4",
    " 1.0  -> 1 float 1 4",
    "1.0  -> 1 float 1 3",
    "1. -> 1 float 1 2",
    " 1. -> 1 float 1 3",
    " 1.  -> 1 float 1 3",
    "1.  -> 1 float 1 2",
    ".1 -> 1 float 0.1 2",
    " .1 -> 1 float 0.1 3",
    " .1  -> 1 float 0.1 3",
    ".1  -> 1 float 0.1 2",
    ". -> 1 float 0 1",
    " . -> 1 float 0 2",
    " .  -> 1 float 0 2",
    ".  -> 1 float 0 1",
    "123.5 -> 1 float 123.5 5",
    " 123.5 -> 1 float 123.5 6",
    " 123.5  -> 1 float 123.5 6",
    "123.5  -> 1 float 123.5 5",
    "123. -> 1 float 123 4",
    " 123. -> 1 float 123 5",
    " 123.  -> 1 float 123 5",
    "123.  -> 1 float 123 4",
    ".123 -> 1 float 0.123 4",
    " .123 -> 1 float 0.123 5",
    " .123  -> 1 float 0.123 5",
    ".123  -> 1 float 0.123 4",
    "1 23 -> 1 integer 1 1",
    " 1 23 -> 1 integer 1 2",
    " 12 3  -> 1 integer 12 3",
    "1 ] -> 1 integer 1 1",
    "1] -> 1 integer 1 1",
    "12R/ -> 1 integer 12 3",
};

// result, and behind 1 the two numbers and the offset behind them
inline constexpr std::string_view kReadPairOfNumbers[] = {
    " -> 0",
    "1 -> 0",
    "1 2 -> 1 integer 1 integer 2 3",
    " 1 2.5 3 -> 1 integer 1 float 2.5 6",
};

// result, count
inline constexpr std::string_view kGetNumArraySize[] = {
    "[1 2]  -> 1 2", "[1 2 3] -> 1 3", "1 2 -> 1 2", " 1 2  -> 1 2",
    " [123] -> 1 1", "[1 A 3] -> 0 1", "[] -> 0 0",  "[1 [2]] -> 0 1",
};

inline constexpr std::string_view kCheckOnlyWhiteSpaces[] = {
    "[1 2] -> 0",
    "      -> 1",
    " -> 1",
    " 1  -> 0",
};

// result, kind, length, text
inline constexpr std::string_view kReadObject[] = {
    " -> 0 0 0 ",
    "false -> 1 1 5 false",
    "true -> 1 1 4 true",
    " true -> 1 1 6 true",
    " FALSE -> 1 1 6 FALSE",
    "true ] -> 0 0 0 ",
    "1 -> 1 2 1 1",
    "1.5 -> 1 2 3 1.5",
    "12 R -> 1 2 2 12",
    "nULL -> 1 8 4 nULL",
    " nullify -> 1 8 5 null",
    "nul -> 0 0 0 ",
    "(huhu) -> 1 3 6 (huhu)",
    " (hu -> 0 3 0 ",
    "< -> 0 3 0 ",
    "<AFFE9815> -> 1 3 10 <AFFE9815>",
    "/Name123 -> 1 4 8 /Name123",
    " /A/B -> 1 4 3 /A",
    "[1 2 -> 0 5 0 ",
    "[ -> 0 0 0 ",
    "<< -> 0 0 0 ",
    "13 0 R -> 1 9 6 13 0 R",
    " 13 0 R -> 1 9 7 13 0 R",
    " 13 0 Rest -> 1 9 7 13 0 R",
    "[ 1 2 3 ] -> 1 5 9 [ 1 2 3 ]",
    " [ 1 2 3 ] -> 1 5 10 [ 1 2 3 ]",
    "<< /Dict >> -> 1 6 11 << /Dict >>",
    " << /Dict >> -> 1 6 12 << /Dict >>",
    " << Dict >> -> 0 6 0 ",
    "<< /Dict >>stream zeug -> 0 7 0 ",
    "<</A <</B [ 1 0 R ]>> >> tail -> 1 6 24 <</A <</B [ 1 0 R ]>> >>",
    "<< /Dict >>stream zeug endstream -> 1 7 22 << /Dict >>stream zeug",
    " << /Dict >>streamendstream -> 1 7 17 << /Dict >>strea",
    "<< /Dict >> stream zeug endstream -> 1 6 11 << /Dict >>",
};

// result, length, text
inline constexpr std::string_view kReadArray[] = {
    "[ 1 2 3] -> 1 8 [ 1 2 3]",
    "[1 2 3 ] -> 1 8 [1 2 3 ]",
    " [ 1 2 3] -> 1 9  [ 1 2 3]",
    "[[1] 2]] -> 1 7 [[1] 2]",
    "[ /test1 2 <<dict>>] -> 0 0 ",
    "[] -> 0 0 ",
    "x [1] -> 0 0 ",
    "[1 2  -> 0 0 ",
};

// result and text of the elements -1 to 3
inline constexpr std::string_view kReadArrayElement[] = {
    "[ 1 2 3] -> 0: 1:1 1:2 1:3 0:",
    "[/A 1 0 R 20 0 R] -> 0: 1:1 0 R 1:20 0 R 0: 0:",
    "[] -> 0: 0: 0: 0: 0:",
};

// result, length, text; the whole text is given
inline constexpr std::string_view kReadDict[] = {
    "[ 1 2 3] -> 0 0 ",
    "<< /test 113 >> -> 1 15 << /test 113 >>",
    " << /test 113 >> -> 1 16  << /test 113 >>",
    "<< /test 113 >>  -> 1 16 << /test 113 >> ",
    "<< /test 113 > -> 0 0 ",
    "<< test >> -> 0 0 ",
    "12 0 obj \r\n<< /test 113 >>\r\nendobj\r\n -> 1 36 12 0 obj \r\n<< /test 113 >>\r\nendobj\r\n",
};

// the same, cut behind the dictionary
inline constexpr std::string_view kReadDictCut[] = {
    "<<>> -> 0 0 ",
    "<< /a test >> -> 0 0 ",
    "x << /a << /b 1 >>> > y -> 1 21 x << /a << /b 1 >>> >",
    "<< /a > /b >> >> -> 1 13 << /a > /b >>",
};

// Input: the key, a blank, the text. Results: result, offset of the key, offset behind the value, value
inline constexpr std::string_view kReadDictEntry[] = {
    "/Test4 <</Test1 12 0 R /Test2 [1 2 3] /Test3 << /dict >> /Test4 (huhu)>> -> 1 50 63 (huhu)",
    "/Test4 <</Test1 12 0 R /Test2 [1 2 3] /Test3 << dict >> /Test4 (huhu)>> -> 0 0 0 ",
    "/TestKey <</TestKey 1109>> -> 1 2 15 1109",
    "/TestKey <</TestKey 1109 >> -> 1 2 15 1109",
    "/TestKey << /TestKey 1109>> -> 1 3 16 1109",
    "/TestKey << /TestKey (1109)>> -> 1 3 18 (1109)",
    "T 1 0 obj<</T  3 0 R>> -> 1 9 18 3 0 R",
    "T << /A /T /T 1 >> -> 1 6 11 /T",
    "T << /R << /T 9 >> /T 1 >> -> 1 17 21 1",
    "T << /A 1 /T >> -> 1 8 10 ",
    "T << /T x >> -> 0 0 0 ",
    "T << /A 1 >> -> 0 0 0 ",
    "T << -> 0 0 0 ",
    "T /T 1 -> 0 0 0 ",
};

// result, kind, length, text
inline constexpr std::string_view kReadString[] = {
    "Abc12 -> 0 0 0 ",
    "(ABC12 3) -> 1 1 9 (ABC12 3)",
    "<AA450F> -> 1 2 8 <AA450F>",
    " (a(b)c)d) -> 1 1 8  (a(b)c)",
    "(a\\)b)c -> 1 1 6 (a\\)b)",
    "(a\\\\)b) -> 1 1 7 (a\\\\)b)",
    "(a(b) -> 0 0 0 ",
    "<AA -> 0 0 0 ",
};

// result, and behind 1 the offsets of the dictionary and behind it, and its text
inline constexpr std::string_view kReadTrailerDict[] = {
    "xref \r\n 1 2 N \r\n 2 3 N \r\n trailer\r\n<< /Size 123\r\n>>\r\n Startxref\r\n 123\r\n%%EOF -> 1 35 51 << /Size 123\r\n>>",
    " xref trailer <</I <</A 1>> /S 1>> >> -> 1 14 34 <</I <</A 1>> /S 1>>",
    "xref trailer<</I<</A 1>>>> 9 -> 1 12 25 <</I<</A 1>>>",
    "xref trailer << /Size 1 > -> 0",
    "xref trailer >> << -> 0",
    "xref << >> -> 0",
    "1 xref trailer << >> -> 0",
};

inline constexpr std::string_view kIsTrailerDict[] = {
    "xref \r\n 1 2 N \r\n 2 3 N \r\n trailer\r\n -> 1",
    "  -> 0",
};

// The bound is the length of the text.
inline constexpr std::string_view kIsArray[] = {" [ -> 1", "[ -> 0", "x[ -> 0"};
inline constexpr std::string_view kIsDict[] = {"\a<< -> 1", "<< -> 0", "< < -> 0"};

inline constexpr std::string_view kCreateLiteralEscapeSeq[] = {
    "test -> test", "te(st -> te\\(st", "te(1)st -> te\\(1\\)st", "(a) -> (a\\)", "a\\) -> a\\\\)", " -> ",
};

inline constexpr std::string_view kRemoveLiteralEscapeSeq[] = {
    "te\\(st -> te(st",
    "te\\(1\\)st -> te(1)st",
    "a\\\\) -> a)",
};

// length, text
inline constexpr std::string_view kGetObjectContent[] = {
    "59 0 obj1234 endobj -> 5 1234 ",
    "1 0 obj \r\n[2]endobj endobj -> 3 [2]",
    "1 0 obj 7 -> 1 7",
    "7 -> 0 ",
};

// result, and behind 1 number and generation
inline constexpr std::string_view kIsReference2[] = {
    "12 0 R -> 1 12 0",   " 1.5 0 Rx -> 1 0 0",   "12 R -> 0",    "12 0R -> 0",   "[12 0 R -> 0",
    "1 2 R 3 R -> 1 1 2", "\n12\n0\nR -> 1 12 0", "1 0 2 R -> 0", "A 1 0 R -> 0", "1 0 [R -> 0",
};

// the same; what is not read stays -1
inline constexpr std::string_view kIsReference[] = {
    "12 0 R -> 1 12 0",  "[12 0 R] -> 0 -1 -1", "12 0 -> 1 12 0",     "/P 12 0 R -> 1 12 0",
    "/P 12 -> 1 -1 -1",  "7 8 9 -> 1 8 9",      "1x 2 R -> 1 1 -1",   "12 -> 0 -1 -1",
    "]12 0[ -> 0 -1 -1", " \v12 0 -> 1 12 0",   "[12 3 R -> 1 -1 -1", " -> 0 -1 -1",
};

// the text, and the text as the beginning of a longer one
inline constexpr std::string_view kIsDictionary[] = {
    " << /A 1 >>\v\n -> 1 1", "<< /A <1F> >> -> 1 1", "<< /A 1 > -> 0 0",     "<< -> 0 0",
    "<< /A (<) >> -> 0 0",    "<<>> -> 1 1",          "<< /A 1 >> /B -> 0 0", "\a<< /A 1 >> -> 0 0",
};

inline constexpr std::string_view kIsPageObject[] = {
    "4 0 obj << /Type /Page >> endobj -> 1",
    "2 0 obj << /Type /Pages /Kids [4 0 R] >> endobj -> 0",
    "2 0 obj << /Type /Catalog >> endobj -> 0",
    " -> 0",
};

// kinds 1, 2 and 3
inline constexpr std::string_view kStripBrackets[] = {
    "  [1 0 R]  -> 1 0 R:[1 0 R]:[1 0 R]",
    "[[1]] -> [1]:[[1]]:[[1]]",
    " <AB>  -> <AB>:AB:<AB>",
    "(a)  -> (a):(a):a",
    "[ a  ->  a:[ a:[ a",
    "a]  -> a:a]:a]",
    "  -> ::",
};

inline constexpr std::string_view kCreateBrackets[] = {"1 0 R -> [1 0 R]:(1 0 R):(1 0 R)"};

inline constexpr std::string_view kStripReferenceArray[] = {"a]b[1 [2] 3] -> 1 [1 [2]", "no -> 1 ", "]1[ -> 1 "};

// count, type, and the entries -1, 0 and 5
inline constexpr std::string_view kReferenceArrays[] = {
    "[1 0 R 20 0 R 25 0 R] -> 3 1 1 0 R 20 0 R 25 0 R:1 0 R 20 0 R 25 0 :1",
    "[3 12 0 R] -> 1 2 3 12 0 R:3 12 0 :3",
    "[/XYZ 1 2] -> 0 0 ::/",
    "[/R 1] -> 1 0 /R:/:/",
    "[] -> 0 0 ::",
    "1 0 R -> 0 1 ::1",
    "7 -> 0 0 7:7:7",
};

// Input: how many digits are wanted, a blank, the text. Results: the bytes, and the 0x77 that stood behind them
inline constexpr std::string_view kStringToHex[] = {
    "4 0aFF -> 0aff77", "4 0\ra\rF\rf99 -> 0aff77", "4 1 G2 -> 100277",
    "4 AB -> ab0077",   "3 0AFF1 -> 0a77",          "0 AB -> 77",
};

// result, text
inline constexpr std::string_view kReplaceTjValue[] = {
    "BT (Hello) Tj (x) Tj ET -> 0 BT (Hello+) Tj (x) Tj ET",
    "BT <41>\r\n Tj ET -> 0 BT <41> (+)\r\n Tj ET",
    "BT (x) TJ ET -> -1801 BT (x) TJ ET",
};

// Input: the entry, a blank, the text. Results: result, text
inline constexpr std::string_view kAddDictionaryEntry[] = {
    "/X 1 0 obj\n<< /Type /Catalog >>\nendobj -> 1 1 0 obj\n<< /Type /Catalog /X\r\n>>\nendobj",
    "/X\n << /D << /A 1 >>>> -> 1 << /D << /A 1 >>/X\n>>",
    "/X\r << /A\0 1>> -> 1 << /A\0 1/X\r>>"sv,
    "/X [1 2] -> 0 [1 2]",
};

}  // namespace varnpdf::selfcheck
