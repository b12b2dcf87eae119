#include "views/frmAbout.h"

#include "views/IdentityPanel.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QScreen>

#include <algorithm>

frmAbout::frmAbout(QWidget *parent)
    : QDialog(parent) {
    setWindowTitle(QStringLiteral("About Pairscope"));
    auto *panel =
        new IdentityPanel(QStringLiteral("Hold SHIFT at startup to reset window location."), this);
    lblVersion = panel->versionLabel();
    lblHint = panel->hintLabel();

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 22, 24, 16);
    layout->setSpacing(18);
    layout->addWidget(panel);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

frmAbout *frmAbout::ShowAbout(QWidget *mainWindow, bool topmost) {
    auto *about = new frmAbout(mainWindow);
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->setWindowFlag(Qt::WindowStaysOnTopHint, topmost);
    if (mainWindow)
        about->PlaceOver(mainWindow);
    about->open();
    return about;
}

void frmAbout::PlaceOver(const QWidget *window) {
    adjustSize();
    QRect placed(QPoint(0, 0), size());
    placed.moveCenter(window->frameGeometry().center());
    if (const QScreen *screen = window->screen()) {
        const QRect area = screen->availableGeometry();
        // Right and bottom first, so that a window larger than the screen shows its top left.
        placed.moveLeft(std::min(placed.left(), area.right() + 1 - placed.width()));
        placed.moveTop(std::min(placed.top(), area.bottom() + 1 - placed.height()));
        placed.moveLeft(std::max(placed.left(), area.left()));
        placed.moveTop(std::max(placed.top(), area.top()));
    }
    move(placed.topLeft());
}
