#include "base/ZTHTMLEntities.h"

#include <QHash>

namespace {

// The HTML 4 character entities plus "apos", by code point. The third column
// is what decodeHTML replaces the entity with: it has always differed from
// the standard for a few names, and libraries and pages have been read that
// way for years, so those rows stand as they are.
const ZTHTMLEntity s_entities[] = {
    {"quot", 34, 34},        {"amp", 38, 38},        {"apos", 39, 39}, // XML, not HTML 4; decodeHTML knows it
    {"lt", 60, 38}, // decodeHTML has always read "&lt;" as an ampersand; kept
    {"gt", 62, 62},          {"nbsp", 160, 160},     {"iexcl", 161, 161},
    {"cent", 162, 162},      {"pound", 163, 163},    {"curren", 164, 164},
    {"yen", 165, 165},       {"brvbar", 166, 0}, // left out of decodeHTML
    {"sect", 167, 167},      {"uml", 168, 168},      {"copy", 169, 169},
    {"ordf", 170, 170},      {"laquo", 171, 171},    {"not", 172, 172},
    {"shy", 173, 173},       {"reg", 174, 174},      {"macr", 175, 175},
    {"deg", 176, 0},                                                   // left out of decodeHTML
    {"plusmn", 177, 177},    {"sup2", 178, 178},     {"sup3", 179, 0}, // left out of decodeHTML
    {"acute", 180, 0},                                                 // left out of decodeHTML
    {"micro", 181, 181},     {"para", 182, 182},     {"middot", 183, 183},
    {"cedil", 184, 0}, // left out of decodeHTML
    {"sup1", 185, 0},  // left out of decodeHTML
    {"ordm", 186, 186},      {"raquo", 187, 187},    {"frac14", 188, 188},
    {"frac12", 189, 189},    {"frac34", 190, 190},   {"iquest", 191, 191},
    {"Agrave", 192, 192},    {"Aacute", 193, 193},   {"Acirc", 194, 194},
    {"Atilde", 195, 195},    {"Auml", 196, 196},     {"Aring", 197, 197},
    {"AElig", 198, 198},     {"Ccedil", 199, 199},   {"Egrave", 200, 200},
    {"Eacute", 201, 201},    {"Ecirc", 202, 202},    {"Euml", 203, 203},
    {"Igrave", 204, 204},    {"Iacute", 205, 205},   {"Icirc", 206, 206},
    {"Iuml", 207, 207},      {"ETH", 208, 208},      {"Ntilde", 209, 209},
    {"Ograve", 210, 210},    {"Oacute", 211, 211},   {"Ocirc", 212, 212},
    {"Otilde", 213, 213},    {"Ouml", 214, 214},     {"times", 215, 215},
    {"Oslash", 216, 216},    {"Ugrave", 217, 217},   {"Uacute", 218, 218},
    {"Ucirc", 219, 219},     {"Uuml", 220, 220},     {"Yacute", 221, 221},
    {"THORN", 222, 222},     {"szlig", 223, 223},    {"agrave", 224, 224},
    {"aacute", 225, 225},    {"acirc", 226, 226},    {"atilde", 227, 227},
    {"auml", 228, 228},      {"aring", 229, 229},    {"aelig", 230, 230},
    {"ccedil", 231, 231},    {"egrave", 232, 232},   {"eacute", 233, 233},
    {"ecirc", 234, 234},     {"euml", 235, 235},     {"igrave", 236, 236},
    {"iacute", 237, 237},    {"icirc", 238, 238},    {"iuml", 239, 239},
    {"eth", 240, 240},       {"ntilde", 241, 241},   {"ograve", 242, 242},
    {"oacute", 243, 243},    {"ocirc", 244, 244},    {"otilde", 245, 245},
    {"ouml", 246, 246},      {"divide", 247, 247},   {"oslash", 248, 248},
    {"ugrave", 249, 249},    {"uacute", 250, 250},   {"ucirc", 251, 251},
    {"uuml", 252, 252},      {"yacute", 253, 253},   {"thorn", 254, 254},
    {"yuml", 255, 255},      {"OElig", 338, 338},    {"oelig", 339, 339},
    {"Scaron", 352, 352},    {"scaron", 353, 353},   {"Yuml", 376, 376},
    {"fnof", 402, 402},      {"circ", 710, 710},     {"tilde", 732, 732},
    {"Alpha", 913, 913},     {"Beta", 914, 914},     {"Gamma", 915, 915},
    {"Delta", 916, 916},     {"Epsilon", 917, 917},  {"Zeta", 918, 918},
    {"Eta", 919, 919},       {"Theta", 920, 920},    {"Iota", 921, 921},
    {"Kappa", 922, 922},     {"Lambda", 923, 923},   {"Mu", 924, 924},
    {"Nu", 925, 925},        {"Xi", 926, 926},       {"Omicron", 927, 927},
    {"Pi", 928, 928},        {"Rho", 929, 929},      {"Sigma", 931, 931},
    {"Tau", 932, 932},       {"Upsilon", 933, 933},  {"Phi", 934, 934},
    {"Chi", 935, 935},       {"Psi", 936, 936},      {"Omega", 937, 937},
    {"alpha", 945, 945},     {"beta", 946, 946},     {"gamma", 947, 947},
    {"delta", 948, 948},     {"epsilon", 949, 949},  {"zeta", 950, 950},
    {"eta", 951, 951},       {"theta", 952, 952},    {"iota", 953, 953},
    {"kappa", 954, 954},     {"lambda", 955, 955},   {"mu", 956, 956},
    {"nu", 957, 957},        {"xi", 958, 958},       {"omicron", 959, 959},
    {"pi", 960, 960},        {"rho", 961, 961},      {"sigmaf", 962, 962},
    {"sigma", 963, 963},     {"tau", 964, 964},      {"upsilon", 965, 965},
    {"phi", 966, 966},       {"chi", 967, 967},      {"psi", 968, 968},
    {"omega", 969, 969},     {"thetasym", 977, 977}, {"upsih", 978, 978},
    {"piv", 982, 982},       {"ensp", 8194, 8194},   {"emsp", 8195, 8195},
    {"thinsp", 8201, 8201},  {"zwnj", 8204, 8204},   {"zwj", 8205, 8205},
    {"lrm", 8206, 8206},     {"rlm", 8207, 8207},    {"ndash", 8211, 8211},
    {"mdash", 8212, 8212},   {"lsquo", 8216, 8216},  {"rsquo", 8217, 8217},
    {"sbquo", 8218, 8218},   {"ldquo", 8220, 8220},  {"rdquo", 8221, 8221},
    {"bdquo", 8222, 8222},   {"dagger", 8224, 8224}, {"Dagger", 8225, 8225},
    {"bull", 8226, 8226},    {"hellip", 8230, 8230}, {"permil", 8240, 8240},
    {"prime", 8242, 8242},   {"Prime", 8243, 0}, // left out of decodeHTML
    {"lsaquo", 8249, 8249},  {"rsaquo", 8250, 8250}, {"oline", 8254, 8254},
    {"frasl", 8260, 8260},   {"euro", 8364, 8364},   {"image", 8465, 0}, // left out of decodeHTML
    {"weierp", 8472, 8472},  {"real", 8476, 8476},   {"trade", 8482, 8482},
    {"alefsym", 8501, 8501}, {"larr", 8592, 8592},   {"uarr", 8593, 8593},
    {"rarr", 8594, 8594},    {"darr", 8595, 8595},   {"harr", 8596, 8596},
    {"crarr", 8629, 8629},   {"lArr", 8656, 8656},   {"uArr", 8657, 8657},
    {"rArr", 8658, 8658},    {"dArr", 8659, 8659},   {"hArr", 8660, 8660},
    {"forall", 8704, 8704},  {"part", 8706, 8706},   {"exist", 8707, 8707},
    {"empty", 8709, 8709},   {"nabla", 8711, 0}, // left out of decodeHTML
    {"isin", 8712, 8712},    {"notin", 8713, 8713},  {"ni", 8715, 8715},
    {"prod", 8719, 8719},    {"sum", 8721, 8721},    {"minus", 8722, 8722},
    {"lowast", 8727, 8727},  {"radic", 8730, 8730},  {"prop", 8733, 8733},
    {"infin", 8734, 8734},   {"ang", 8736, 8736},    {"and", 8743, 8743},
    {"or", 8744, 0},  // left out of decodeHTML
    {"cap", 8745, 0}, // left out of decodeHTML
    {"cup", 8746, 0}, // left out of decodeHTML
    {"int", 8747, 0}, // left out of decodeHTML
    {"there4", 8756, 8756},  {"sim", 8764, 8764},    {"cong", 8773, 8773},
    {"asymp", 8776, 8776},   {"ne", 8800, 8800},     {"equiv", 8801, 8801},
    {"le", 8804, 8804},      {"ge", 8805, 8805},     {"sub", 8834, 8834},
    {"sup", 8835, 8835},     {"nsub", 8836, 8836},   {"sube", 8838, 8838},
    {"supe", 8839, 8839},    {"oplus", 8853, 8853},  {"otimes", 8855, 8855},
    {"perp", 8869, 8869},    {"sdot", 8901, 8901},   {"lceil", 8968, 8968},
    {"rceil", 8969, 8969},   {"lfloor", 8970, 8970}, {"rfloor", 8971, 8971},
    {"lang", 9001, 9001},    {"rang", 9002, 9002},   {"loz", 9674, 9674},
    {"spades", 9824, 9824},  {"clubs", 9827, 9827},  {"hearts", 9829, 9829},
    {"diams", 9830, 9830},
};

} // namespace

std::span<const ZTHTMLEntity> ZTHTMLEntities::all()
{
    return s_entities;
}

const ZTHTMLEntity *ZTHTMLEntities::find(QStringView name)
{
    static const QHash<QString, const ZTHTMLEntity *> s_byName = [] {
        QHash<QString, const ZTHTMLEntity *> byName;
        for (const ZTHTMLEntity &e : s_entities)
            byName.insert(QString::fromLatin1(e.name), &e);
        return byName;
    }();
    return s_byName.value(name.toString(), nullptr);
}
