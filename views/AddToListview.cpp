#include "views/AddToListview.h"

#include "views/FileIconCache.h"
#include "views/FileListModel.h"
#include "views/ImageList.h"
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

int AddToListview(const ComparisonFilePtr &record, ListView *list, ImageList *images) {
    if (!record->DetailsLoaded())
        record->UpdateDetails();
    int icon = 0;
    if (images) {
        const QString key = RecordIconKey(*record);
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
