#include "views/ListItem.h"

#include "views/ListModel.h"
#include "views/ListView.h"

QString ListItem::Key() const {
    const auto r = row();
    return r ? r->key : QString();
}

QString ListItem::Text() const {
    return SubItems(0);
}

void ListItem::setText(const QString &text) {
    setSubItems(0, text);
}

QString ListItem::SubItems(int index) const {
    const auto r = row();
    return r ? m_view->listModel()->text(*r, index) : QString();
}

void ListItem::setSubItems(int index, const QString &text) {
    if (const auto r = row())
        m_view->listModel()->setText(*r, index, text);
}

QVariant ListItem::Tag() const {
    const auto r = row();
    return r ? r->tag : QVariant();
}

void ListItem::setTag(const QVariant &tag) {
    if (const auto r = row())
        m_view->listModel()->setTag(*r, tag);
}

bool ListItem::Selected() const {
    const auto r = row();
    return r && m_view->isRowSelected(r->index);
}

void ListItem::setSelected(bool selected) {
    if (const auto r = row())
        m_view->setRowSelected(r->index, selected);
}

int ListItem::SmallIcon() const {
    const auto r = row();
    return r ? r->icon : 0;
}

void ListItem::setSmallIcon(int index) {
    if (const auto r = row())
        m_view->listModel()->setIcon(*r, std::max(0, index));
}

int ListItem::Index() const {
    const auto r = row();
    return r ? r->index + 1 : 0;
}

ComparisonFilePtr ListItem::Record() const {
    const auto r = row();
    return r ? r->record : nullptr;
}

void ListItem::setRecord(const ComparisonFilePtr &record, bool textsFromRecord) {
    if (const auto r = row())
        m_view->listModel()->setRecord(*r, record, textsFromRecord);
}
