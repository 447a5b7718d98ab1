#pragma once

#include <QHash>
#include <QUrl>

// Sends the requests meant for a site's host to another base URL, for
// debugging fetchers against a local server. Read once from the environment
// variable ZETTARY_SITE_OVERRIDE, "host=http://127.0.0.1:8080,other.host=...".
// An overridden URL is used as given: it is not upgraded to https.
namespace ZTSiteOverride {

// The rewritten URL when url's host is overridden, else an invalid URL.
QUrl overriddenURL(const QUrl &url);
// Replaces the table (tests); the text has the form of the variable.
void setOverrides(const QString &text);

} // namespace ZTSiteOverride
