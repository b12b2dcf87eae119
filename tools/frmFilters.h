#pragma once

#include "ModalDialog.h"

#include "engine/TreeFilter.h"

#include <memory>

class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

/**
 * File > Filters...: the patterns a compare leaves out of both trees, one a line as in a
 * .gitignore, and whether each tree's own .gitignore files apply. Both are kept in the
 * settings; OK stores them.
 */
class frmFilters : public ModalDialog {
    Q_OBJECT
public:
    explicit frmFilters(QWidget *parent = nullptr);

    QLabel *lblFilters;
    QPlainTextEdit *txtFilters;
    QCheckBox *chkGitignore;
    QPushButton *cmdOK;
    QPushButton *cmdCancel;

    /** Shows the stored filter over \a owner and stores what the user confirms; true on OK. */
    static bool Edit(QWidget *owner);
    /** The stored filter; null when it leaves nothing out. */
    static std::shared_ptr<const TreeFilter> StoredFilter();
};
