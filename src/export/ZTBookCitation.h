#pragma once

#include "export/ZTStyledText.h"

#include <QString>
#include <QStringList>

class ZTBook;

// A book as a bibliography entry: a BibTeX record and an MLA entry.
namespace ZTBookCitation {

// "@book {KEY,\n   title = {…}…}\n" with the fields that have a value. The key
// comes from the authors, the title and the year; an empty one becomes "book".
QString formatBibtex(const ZTBook &book);
// The citation key alone, as formatBibtex writes it.
QString bibtexKey(const ZTBook &book);
// A field's text made safe inside BibTeX braces: a brace without its partner
// is dropped, so the record stays readable.
QString balancedBraces(const QString &text);

// People by the entry's rule: one name inverted; two joined by ", and ";
// three with ", " and ", and " before the last; four or more as the first and
// ", et al. ". Corporate names stand as written.
QString mlaNames(const QStringList &names, const QStringList &roles, const QString &localeCode);
ZTStyledText formatMLA(const ZTBook &book);

} // namespace ZTBookCitation
