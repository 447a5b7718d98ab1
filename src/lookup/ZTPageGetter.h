#pragma once

#include <QByteArray>
#include <QUrl>

// Fetches one page and waits for it, turning the event loop meanwhile: for the
// few rules that must read a shop's page while judging a typed code.
namespace ZTPageGetter {
// The page's bytes, or a null array on any failure or after 30 seconds.
QByteArray fetch(const QUrl &url);
// Lets the code rules fetch pages through this.
void install();
} // namespace ZTPageGetter
