#include "views/ImageList.h"

ImageList::ImageList(QObject *parent)
    : QObject(parent) {}

int ImageList::Add(const QString &key, const QIcon &icon) {
    const int existing = IndexOfKey(key);
    if (existing > 0)
        return existing;
    m_icons.push_back(icon);
    m_keys.push_back(key);
    const int index = Count();
    m_byKey.insert(key, index);
    return index;
}

QIcon ImageList::Icon(int index) const {
    if (index < 1 || index > Count())
        return QIcon();
    return m_icons[size_t(index - 1)];
}

QString ImageList::Key(int index) const {
    if (index < 1 || index > Count())
        return QString();
    return m_keys[size_t(index - 1)];
}

void ImageList::Clear() {
    m_icons.clear();
    m_keys.clear();
    m_byKey.clear();
}
