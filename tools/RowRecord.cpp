#include "tools/RowRecord.h"

#include "engine/ComparisonFileCollection.h"
#include "views/ListView.h"

ComparisonFilePtr RowRecord(const ListItem &row, const ComparisonFileCollection &collection) {
    if (!row)
        return nullptr;
    if (ComparisonFilePtr file = collection.Item(row.Key()))
        return file;
    return row.Record();
}
