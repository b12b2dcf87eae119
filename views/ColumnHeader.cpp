#include "views/ColumnHeader.h"

#include "views/ListView.h"

#include <QHeaderView>

#include <algorithm>

void ColumnHeader::setText(const QString &text) {
    if (m_text == text)
        return;
    m_text = text;
    m_view->headerChanged(*this);
}

void ColumnHeader::setWidth(float width) {
    m_width = std::max(0.0f, width);
    m_view->applyWidth(*this);
}

void ColumnHeader::setAlignment(Qt::Alignment alignment) {
    alignment &= Qt::AlignHorizontal_Mask;
    if (m_alignment == alignment)
        return;
    m_alignment = alignment;
    m_view->headerChanged(*this);
}

int ColumnHeader::Position() const {
    return m_view->header()->visualIndex(m_index);
}

void ColumnHeader::setPosition(int position) {
    QHeaderView *header = m_view->header();
    position = std::clamp(position, 0, header->count() - 1);
    header->moveSection(header->visualIndex(m_index), position);
}
