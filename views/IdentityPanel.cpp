#include "views/IdentityPanel.h"

#include "views/Emblem.h"
#include "views/VersionText.h"

#include <QBoxLayout>
#include <QLabel>

namespace {

QLabel *plainLabel(const QString &text, QWidget *parent) {
    auto *label = new QLabel(text, parent);
    // Plain text keeps the two blanks of the version line.
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

IdentityPanel::IdentityPanel(const QString &hint, QWidget *parent)
    : QWidget(parent) {
    auto *title = plainLabel(QStringLiteral("Pairscope"), this);
    QFont titleFont = title->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.8);
    titleFont.setWeight(QFont::DemiBold);
    title->setFont(titleFont);

    auto *summary = plainLabel(QStringLiteral("Compares two folder trees, file by file."), this);
    m_version = plainLabel(VersionText(), this);
    m_version->setObjectName(QStringLiteral("lblVersion"));
    m_version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_hint = plainLabel(hint, this);
    m_hint->setObjectName(QStringLiteral("lblHint"));
    m_hint->setForegroundRole(QPalette::PlaceholderText);

    auto *text = new QVBoxLayout;
    text->setSpacing(4);
    text->addWidget(title);
    text->addWidget(summary);
    text->addSpacing(14);
    text->addWidget(m_version);
    text->addWidget(m_hint);
    text->addStretch();

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(20);
    row->addWidget(new Emblem(72, this), 0, Qt::AlignTop);
    row->addLayout(text, 1);
}
