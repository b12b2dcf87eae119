#include "views/AddToListview.h"

#include "views/FileIconCache.h"
#include "views/ImageList.h"
#include "views/ListHelpers.h"
#include "views/ListModel.h"
#include "views/ListView.h"

QString RecordIconKey(const ComparisonFile &record) {
    if (!record.HasFileObject() || record.Kind() == FileKind::Missing)
        return record.TypeString();
    const QString name = record.Name();
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    const QStringView extension = dot < 0 ? QStringView() : QStringView(name).mid(dot + 1);
    if (extension.compare(QLatin1String("exe"), Qt::CaseInsensitive) == 0 ||
        extension.compare(QLatin1String("ico"), Qt::CaseInsensitive) == 0)
        return record.Path().toLower();
    return record.TypeString().toLower();
}

ListItem AddToListview(const ComparisonFilePtr &record, ListView *list, ImageList *images,
                       bool showFullPath) {
    if (!record->DetailsLoaded())
        record->UpdateDetails();
    // The row keeps no texts of its own: they are read from the record when painted, which
    // keeps a listing of a large compare small and quick to build. A sorted list places a new
    // row by its text, so it is given one there.
    ListItem item =
        GetOrAddListItem(list, record->Key(), list->Sorted() ? record->Name() : QString());
    if (!item)
        return item;
    item.setTag(record->DifferenceCode());
    list->listModel()->setFullPathTexts(showFullPath);
    item.setRecord(record, true);

    if (images) {
        const QString key = RecordIconKey(*record);
        int index = FileIconCache::ImageIndexOfKey(images, key);
        // A placeholder's file does not exist on this side: there is no icon to fetch.
        if (index <= 0 && record->HasFileObject()) {
            FileIconCache::AddFileIcon(images, record->NativePath(), key);
            index = FileIconCache::ImageIndexOfKey(images, key);
        }
        if (!list->SmallIcons())
            list->setSmallIcons(images);
        item.setSmallIcon(index > 0 ? index : 1);
    }
    return item;
}
