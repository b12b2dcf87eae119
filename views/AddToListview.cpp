#include "views/AddToListview.h"

#include "views/FileIconCache.h"
#include "views/FileListModel.h"
#include "views/ImageList.h"
#include "views/ListView.h"

int AddToListview(const ComparisonFilePtr &record, ListView *list, ImageList *images) {
    if (!record->DetailsLoaded())
        record->UpdateDetails();
    int icon = 0;
    if (images) {
        const QString key = FileIconCache::RecordIconKey(*record);
        int index = FileIconCache::ImageIndexOfKey(images, key);
        // A placeholder's file does not exist on this side: there is no icon to fetch.
        if (index <= 0 && record->HasFileObject()) {
            FileIconCache::AddFileIcon(images, record->NativePath(), key);
            index = FileIconCache::ImageIndexOfKey(images, key);
        }
        if (!list->files()->icons())
            list->files()->setIcons(images);
        icon = index > 0 ? index : 1;
    }
    return list->files()->addRecord(record, icon);
}
