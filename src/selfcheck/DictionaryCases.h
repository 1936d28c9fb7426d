// What the lookup of a dictionary entry gives for fixed inputs. The self-check and the tests judge by this table.
#pragma once

#include <string_view>

namespace varnpdf::selfcheck {

using namespace std::literals;

/// One call of `CPdfObj::ReadDictionaryEntry2`.
struct Lookup {
    std::string_view text;
    const char* value;  ///< null: not found
    int keyPos = 0;
    int endPos = 0;
    const char* key = "TestKey";
    int namesAsValues = 1;
    int start = 0;
};

inline constexpr Lookup kLookups[] = {
    {"<</huhu 1109>>", nullptr},
    {"<</TestKey2 1109>>", nullptr},
    // numbers and references
    {"<</TestKey 1109>>", "1109", 2, 15},
    {"<</TestKey 1109 >>", "1109", 2, 15},
    {"<< /TestKey 1109>>", "1109", 3, 16},
    {"<< /TestKey 1109 >>", "1109", 3, 16},
    {"<< /TestKey 10 0 R>>", "10 0 R", 3, 18},
    {"<< /TestKey 10 0 R >>", "10 0 R", 3, 18},
    {"<</TestKey 10 0 R /TestKey2 20 0 R>>", "10 0 R", 2, 17},
    {"<< /TestKey NULL>>", "NULL", 3, 16},
    {"<< /TestKey NULL >>", "NULL", 3, 16},
    // names
    {"<< /TestKey /TestValue /N 12>>", "/TestValue", 3, 22},
    {"<< /TestKey /TestValue>>", "/TestValue", 3, 22},
    {"<< /TestKey /Erg >>", "/Erg", 3, 16},
    {"<< /TestKey/Erg/Erg2 >>", "/Erg", 3, 15},
    {"<< /TestKey/Erg(test)/Erg2 >>", "/Erg(test)", 3, 21},
    {"<</TestKey/Contents<30821ABC>>>", "/Contents<30821ABC>", 2, 28},
    // strings
    {"<< /TestKey<0123456>>>", "<0123456>", 3, 20},
    {"<< /TestKey <0123456>>>", "<0123456>", 3, 21},
    {"<< /TestKey(huhu)>>", "(huhu)", 3, 17},
    {"<< /TestKey (huhu)>>", "(huhu)", 3, 18},
    {"<< /TestKey (hu[]hu)>>", "(hu[]hu)", 3, 20},
    {"<< /TestKey (hu/hu)>>", "(hu/hu)", 3, 19},
    {"<< /TestKey (hu(hu)>>", "(hu(hu)", 3, 19},
    {"<</Filter /Adobe /TestKey (abc\\) und huhu 1234) /WilliWusel>>", "(abc\\) und huhu 1234)", 17, 47, "/TestKey"},
    {"<</Filter /Adobe /TestKey () und huhu) /WilliWusel>>", "()", 17, 28, "/TestKey"},
    {"<</Size (Theo Test (1))>>", "(Theo Test (1)", 2, 22, "/Size"},
    {"<< /A (x\0/TestKey 9\0) /TestKey 8 >>"sv, "8", 22, 32},
    // arrays and dictionaries
    {"<</TestKey [<01234567890ABCDEF><01234567890ABCDEF>]/Info 2 0 R>>", "[<01234567890ABCDEF><01234567890ABCDEF>]", 2,
     51},
    {"<< /TestKey [<01234567890ABCDEF><01234567890ABCDEF>]>>", "[<01234567890ABCDEF><01234567890ABCDEF>]", 3, 52},
    {"<< /TestKey [<01234567890ABCDEF><01234567890ABCDEF>] >>", "[<01234567890ABCDEF><01234567890ABCDEF>]", 3, 52},
    {"<< /TestKey [<41]42>] >>", "[<41]42>]", 3, 21},
    {"<< /TestKey [10 0 R 20 0 R]>>", "[10 0 R 20 0 R]", 3, 27},
    {"<</TestKey <</neuesDicthier 1>>/TestKey2 2>>", "<</neuesDicthier 1>>", 2, 31},
    {"<</TestKey <</neuesDicthier 1>>>>", "<</neuesDicthier 1>>", 2, 31},
    {"<</TestKey <</neuesDicthier 1>> /TestKey2 2>>", "<</neuesDicthier 1>>", 2, 31},
    {"<< /TestKey [<</Array [0 0 0]>><</Array2 [0 0 0]>>] /TestKey2 2 >>", "[<</Array [0 0 0]>><</Array2 [0 0 0]>>]", 3,
     51},
    {"<</ID [<DEBCA6D45E8163346BE84C6F95804655> (123(123)] /Size 2648>>", "2648", 53, 63, "/Size"},
    // empty values
    {"<< /TestKey>>", "", 3, 11},
    {"<< /TestKey >>", "", 3, 12},
    // other entries in front
    {"<< /Huhu << /Egalwas>> /TestKey 10 0 R>>", "10 0 R", 23, 38},
    {"<< /Huhu <<Egalwas>> /TestKey 10 0 R>>", "10 0 R", 21, 36},
    {"<</Type/Page<</ProcSet[/PDF /Text]>>/TestKey 5 0 R>>", "5 0 R", 36, 50},
    {"<</Type/Page<</ProcSet[/PDF /Text]>> /TestKey <<Hupsi >>/Contents 5 0 R>>", "<<Hupsi >>", 37, 56, "/TestKey"},
    {"<</Key1 /DA(/Helv 0 Tf 0 g )/SigFlags 3/DR<</TestKey /falsch>>/TestKey/Korrekt>>", "/Korrekt", 62, 78,
     "/TestKey"},
    {"<</Ty/XOb/Res<</Pro [/PDF /Text]/Font<</Helv 2 0 R>>>>/BBox[0 0 282.5 110.56]/TestKey huhu>>", "huhu", 77, 90,
     "/TestKey"},
    {"<< /ID [(hu>hu)(hu>hu)]/TestKey\n1234>>", "1234", 23, 36, "/TestKey"},
    {"<< /ID /Test1 5 /Test 4>>", "4", 16, 23, "/Test"},
    {"<< /Type /Sig /Filter /X >>", "/Filter", 9, 21, "/Sig"},  // keys and name values are not told apart
    // line ends
    {"<< /TestKey 1234\r>>", "1234\r", 3, 17, "/TestKey"},
    {"<< /TestKey 1234\n>>", "1234\n", 3, 17, "/TestKey"},
    {"<< /TestKey ()\n>>", "()", 3, 14, "/TestKey"},
    {"<< /TestKey\n1234>>", "1234", 3, 16, "/TestKey"},
    // no dictionary around the key
    {"/TestKey 10 0 R", "10 0 R", 0, 15, "/TestKey"},
    {"[/TestKey 10 0 R]", "10 0 R", 1, 16, "/TestKey"},
    // names are keys
    {"<< /TestKey /Erg >>", "", 3, 12, "/TestKey", 0},
    {"<< /TestKey/Erg/Erg2 >>", "", 3, 11, "/TestKey", 0},
    {"<< /ID[(11/11)(11/11)]/TestKey Huhu >>", "Huhu", 22, 35, "/TestKey", 0},
    {"<< /ID Eins /ID Zwei >>", "Zwei", 12, 20, "ID", 0, 5},
    // nested, unfinished, ended
    {"<< /D << /TestKey 2 >> >>", nullptr},
    {"<< /TestKey 1 /D << /TestKey 2 >> >>", nullptr, 0, 0, "TestKey", 1, 11},
    {"<< /A [ << /TestKey 2 >> ] >>", nullptr},
    {"<< /A (/TestKey 1 >>", nullptr},
    {"<< /A <12 /TestKey 1 ", nullptr},
    {"<< /A [1 2 /TestKey 1 >>", nullptr},
    {"<< /A << /B 1 /TestKey 1 >>", nullptr},
    {"<< /A 1 >> /TestKey (x)", nullptr},
    {"<< /TestKey 12", nullptr},
    {"", nullptr},
};

}  // namespace varnpdf::selfcheck
