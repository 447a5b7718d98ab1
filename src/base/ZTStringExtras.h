#pragma once

#include "base/ZTRange.h"

#include <QString>
#include <QStringList>

// How the locating operations search.
enum class ZTSearchOption { None = 0, Backwards = 1 };

// The text vocabulary the page readers are written in. Fetchers do not parse
// pages; they find literal tags and cut out what lies between them, then clean
// it. Everything here is a pure function of its arguments and safe on any
// thread. Lengths and positions count UTF-16 units.
//
// Null and empty strings differ where it matters: a null tag in the locating
// operations means "from the start" or "to the end", while an empty tag is
// never found; extractors answer a null string when there is nothing.
namespace ZTText {

// --- Locating text ---------------------------------------------------------

// The stretch between the first tag and the second tag behind it, both tags
// excluded, searched inside range (clamped to the text; the whole text by
// default). With Backwards the last occurrence of the first tag is taken,
// then the last occurrence of the second behind it.
ZTRange rangeBetweenString(const QString &text, const QString &first, const QString &second,
                           ZTSearchOption options = ZTSearchOption::None, ZTRange range = ZTRange::all());
// The same search, but the result runs from the start of the first tag to the
// end of the second, both included.
ZTRange rangeFromString(const QString &text, const QString &first, const QString &second,
                        ZTSearchOption options = ZTSearchOption::None, ZTRange range = ZTRange::all());

// --- Cleaning text ---------------------------------------------------------

QString digitsOnly(const QString &text);                 // Unicode decimal digits, in order
bool containsNonWhitespace(const QString &text);         // Unicode white space and line ends
QString stringByTrimmingWhitespace(const QString &text); // space, tab, CR, LF only
QString stringByTrimmingPunctuation(const QString &text);
QString stringByStrippingPunctuation(const QString &text);
QString stringByStrippingDashesAndWhitespace(const QString &text); // space, tab, CR, LF, "-"
QString noSpaces(const QString &text);
QString replaceString(const QString &text, const QString &search, const QString &replacement);
QString capitalizedFirstLetterString(const QString &text);
QStringList componentsSeparatedByLineSeparators(const QString &text);
QString reverseFirstLastName(const QString &text);
// 1 to 3999 and beyond for well-formed numerals, -1 for an empty text or a
// character that is no Roman digit. Malformed numerals ("IIX") are summed, not
// refused.
qint64 arabicNumeralFromRomanNumeral(const QString &text);

// --- HTML and XML ----------------------------------------------------------

QString quickFlattenHTML(const QString &text);
QString flattenHTML(const QString &text);
QString convertHTMLToRegularText(const QString &text);
QString decodeHTML(const QString &text);
QString htmlString(const QString &text);
QString nonBreakingSpaceString(const QString &text);
QString convertToXML(const QString &text);
QString convertFromXML(const QString &text);

// --- Scanner input ---------------------------------------------------------

// A keyboard-wedge CueCat scanner types ".serial.type.code." in its own
// base64 alphabet with every byte scrambled.
bool isValidEncodedCueCatCode(const QString &text);
QString decodedValueFromValidEncodedCueCatCode(const QString &text);

} // namespace ZTText
