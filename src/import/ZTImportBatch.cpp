#include "import/ZTImportBatch.h"

#include "library/ZTDocument.h"

void ZTImportBatch::finish(ZTDocument &document)
{
    document.updateChangeCount(ZTDocument::ChangeType::Done);
}
