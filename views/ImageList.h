#pragma once

#include <QHash>
#include <QIcon>
#include <QObject>
#include <QString>

#include <vector>

/**
 * A list of icons, each under a string key, numbered from 1 in the order they were added.
 * One list is shared by every list view that shows file icons, so that all files of one
 * kind share one image.
 */
class ImageList : public QObject {
    Q_OBJECT

public:
    explicit ImageList(QObject *parent = nullptr);

    int Count() const { return int(m_icons.size()); }
    /**
     * Adds \a icon under \a key and returns its one-based index. A key already present keeps
     * its image, and its index is returned.
     */
    int Add(const QString &key, const QIcon &icon);
    /** The one-based index of the image with \a key, or -1 when there is none. */
    int IndexOfKey(const QString &key) const { return m_byKey.value(key, -1); }
    /** The image at one-based \a index; a null icon outside 1..Count(). */
    QIcon Icon(int index) const;
    /** The key of the image at one-based \a index; "" outside 1..Count(). */
    QString Key(int index) const;
    void Clear();

private:
    std::vector<QIcon> m_icons;
    std::vector<QString> m_keys;
    QHash<QString, int> m_byKey;
};
