#include "BenchWindow.h"

#include "app/StatusLine.h"
#include "app/frmMain.h"
#include "views/FileListModel.h"
#include "views/ListColumns.h"
#include "views/ListView.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

BenchWindow::BenchWindow(const Setup &setup, const QString &source, const QString &destination) {
    Options::setViewOptions(setup.view);
    Options::setOrientation(setup.orientation);
    m_window = std::make_unique<frmMain>();
    m_window->InitializeDisplay();
    m_window->resize(setup.size);
    m_window->show();
    m_window->activateWindow();
    auto *comparisons = m_window->findChild<QComboBox *>(QStringLiteral("cboComparisons"));
    const int entry = comparisons->findData(setup.comparisons);
    m_ready = entry >= 0;
    if (m_ready)
        comparisons->setCurrentIndex(entry);
    m_window->findChild<QComboBox *>(QStringLiteral("cboSelectPath0"))->setEditText(source);
    m_window->findChild<QComboBox *>(QStringLiteral("cboSelectPath1"))->setEditText(destination);
    settle(*m_window);
}

BenchWindow::~BenchWindow() = default;

ListView *BenchWindow::list(int side) const {
    return m_window->findChild<ListView *>(QStringLiteral("lvwFiles%1").arg(side));
}

QPushButton *BenchWindow::compareButton(const frmMain &window) {
    return window.findChild<QPushButton *>(QStringLiteral("cmdCompare"));
}

qint64 BenchWindow::now() {
    static const QElapsedTimer clock = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    return clock.nsecsElapsed();
}

double BenchWindow::compare() {
    const qint64 start = now();
    // A real click: press and release on the button, as the mouse gives them.
    QTest::mouseClick(compareButton(*m_window), Qt::LeftButton);
    return double(now() - start) / 1e9;
}

double BenchWindow::settle(frmMain &window) {
    const qint64 start = now();
    // Rows added by the command wait for the model's next batch; they are handed to the view
    // here so that the paint below shows them.
    QApplication::processEvents();
    for (ListView *list : window.findChildren<ListView *>())
        list->files()->flush();
    QApplication::processEvents();
    window.repaint();
    return double(now() - start) / 1e9;
}

void BenchWindow::clickHeader(int side, int type) {
    ListView *view = list(side);
    QHeaderView *header = view->header();
    const int logical = FileListModel::columnOf(type);
    if (view->isColumnHidden(logical))
        return;
    // Scrolled so that the section shows, as the user would scroll before clicking.
    if (header->sectionViewportPosition(logical) < 0 ||
        header->sectionViewportPosition(logical) + header->sectionSize(logical) >
            header->viewport()->width()) {
        view->horizontalScrollBar()->setValue(header->sectionPosition(logical));
        QApplication::processEvents();
    }
    const QPoint centre(header->sectionViewportPosition(logical) + header->sectionSize(logical) / 2,
                        header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, centre);
}

QString BenchWindow::statusText() const {
    return m_window->findChild<StatusLine *>(QStringLiteral("StatusBar1"))->shownText().mid(2);
}
