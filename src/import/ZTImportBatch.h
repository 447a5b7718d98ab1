#pragma once

class ZTDocument;

// What every importer does after its last new item. The items themselves go
// in through ZTDocument::addItemFromDictionary, one by one.
namespace ZTImportBatch {

// Brings the document's views and caches up to date and marks it changed.
// This is the one place where the view pipeline's refresh and the rebuild of
// the main caches are to be called once the document offers them; until then
// only the change count moves.
void finish(ZTDocument &document);

} // namespace ZTImportBatch
