#include "engine/FolderFiles.h"

#include "engine/RecordIndex.h"

void FolderFiles::make(const FolderRef &listed, std::vector<QByteArray> &names) {
    folder = listed;
    records.clear();
    hashes.clear();
    records.reserve(names.size());
    hashes.reserve(names.size());
    for (QByteArray &name : names) {
        hashes.push_back(RecordIndex::hashOf(*listed, name));
        records.push_back(std::make_shared<ComparisonFile>(::FileObject(listed, std::move(name))));
    }
}
