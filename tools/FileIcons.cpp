#include "tools/FileIcons.h"

#include "engine/ComparisonFile.h"
#include "engine/IconKey.h"
#include "views/ImageList.h"

#include <QFileIconProvider>
#include <QFileInfo>

int FileIconIndex(ImageList *images, const ComparisonFile &file) {
    if (!images)
        return 1;
    const QString key = IconKey(file.NativePath(), file.TypeString().toLower());
    int index = images->IndexOfKey(key);
    if (index < 0) {
        static const QFileIconProvider provider;
        const QIcon icon = provider.icon(QFileInfo(file.Path()));
        if (!icon.isNull())
            index = images->Add(key, icon);
    }
    return index < 0 ? 1 : index;
}
