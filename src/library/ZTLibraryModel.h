#pragma once

class ZTObjectModel;

namespace ZTLibraryModel {
// Every entity a library store holds: the items of the four kinds, their
// shared rows, pictures, loans and lists. Made once, on first use.
const ZTObjectModel &objectModel();
} // namespace ZTLibraryModel
