#include "frmFilters.h"

#include "settings/Options.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmFilters::frmFilters(QWidget *parent)
    : ModalDialog(parent)
    , lblFilters(new QLabel(QStringLiteral("&Leave out of both trees (one pattern a line, as in "
                                           ".gitignore; ! keeps; the last match wins):"),
                            this))
    , txtFilters(new QPlainTextEdit(this))
    , chkGitignore(new QCheckBox(QStringLiteral("Apply each tree's .&gitignore files"), this))
    , cmdOK(new QPushButton(QStringLiteral("OK"), this))
    , cmdCancel(new QPushButton(QStringLiteral("Cancel"), this)) {
    setWindowTitle(QStringLiteral("Filters"));
    lblFilters->setWordWrap(true);
    lblFilters->setBuddy(txtFilters);
    txtFilters->setTabChangesFocus(true);
    txtFilters->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblFilters);
    layout->addWidget(txtFilters, 1);
    layout->addWidget(chkGitignore);
    layout->addWidget(OkCancelButtons(cmdOK, cmdCancel));
}

bool frmFilters::Edit(QWidget *owner) {
    frmFilters dialog(owner);
    dialog.txtFilters->setPlainText(Options::filters());
    dialog.chkGitignore->setChecked(Options::useGitignore());
    if (!dialog.ShowOver(owner))
        return false;
    Options::setFilters(dialog.txtFilters->toPlainText());
    Options::setUseGitignore(dialog.chkGitignore->isChecked());
    return true;
}

std::shared_ptr<const TreeFilter> frmFilters::StoredFilter() {
    auto filter = std::make_shared<TreeFilter>();
    filter->rules.addLines(Options::filters().toUtf8());
    filter->gitignore = Options::useGitignore();
    if (!filter->isActive())
        return nullptr;
    return filter;
}
