#include "ComparisonsCombo.h"

#include "GeneralHelpers.h"
#include "PopupKeys.h"
#include "frmComparisons.h"

#include "engine/ComparisonSet.h"
#include "settings/Options.h"
#include "settings/RecentLists.h"

#include <QComboBox>
#include <QScopedValueRollback>

namespace {

const QString selectText = QStringLiteral("  Select...");

} // namespace

ComparisonsCombo::ComparisonsCombo(QComboBox *combo)
    : QObject(combo)
    , cboComparisons(combo) {
    cboComparisons->setEditable(false);
    KeepKeysInPopup(cboComparisons);
    connect(cboComparisons, &QComboBox::currentIndexChanged, this,
            &ComparisonsCombo::cboComparisons_CurrentIndexChanged);
}

void ComparisonsCombo::Fill(bool useDefaults) {
    const QScopedValueRollback guard(m_busy, true);
    cboComparisons->clear();
    int selected = 0;
    if (!useDefaults) {
        const RecentLists::Selections stored = RecentLists::loadSelections();
        for (int comparisons : stored.values) {
            if (FindComboItemData(cboComparisons, comparisons) < 0)
                AddEntry(comparisons, cboComparisons->count());
        }
        selected = qBound(0, stored.last, qMax(0, cboComparisons->count() - 1));
    }
    if (cboComparisons->count() == 0) {
        for (int comparisons : {3, 2, 0, 31})
            AddEntry(comparisons, cboComparisons->count());
        selected = 0;
    }
    AddComboItem(cboComparisons, selectText, SelectItemData);
    cboComparisons->setCurrentIndex(selected);
    m_previousIndex = selected;
    if (useDefaults)
        Save();
}

void ComparisonsCombo::Select(int comparisons) {
    if (comparisons < 0 || comparisons > ComparisonBits::All)
        return;
    const QScopedValueRollback guard(m_busy, true);
    int index = FindComboItemData(cboComparisons, comparisons);
    if (index < 0) {
        AddEntry(comparisons, 0);
        index = 0;
    }
    cboComparisons->setCurrentIndex(index);
    // Entries besides "  Select..." beyond the sixth drop out from the bottom.
    while (cboComparisons->count() - 1 > RecentLists::Capacity)
        cboComparisons->removeItem(cboComparisons->count() - 2);
    m_previousIndex = cboComparisons->currentIndex();
    Save();
}

int ComparisonsCombo::Comparisons() const {
    const int index = cboComparisons->currentIndex();
    const int comparisons = index < 0 ? -1 : cboComparisons->itemData(index).toInt();
    return comparisons == SelectItemData ? -1 : comparisons;
}

bool ComparisonsCombo::ChooseComparisons() {
    const int current = cboComparisons->itemData(m_previousIndex).toInt();
    frmComparisons dialog(m_previousIndex >= 0 ? current : 0, cboComparisons->window());
    if (!dialog.ShowOver(cboComparisons->window())) {
        const QScopedValueRollback guard(m_busy, true);
        cboComparisons->setCurrentIndex(m_previousIndex);
        return false;
    }
    // The dialog may have moved the checksum: the listed descriptions follow it.
    RefreshDescriptions();
    Select(dialog.Comparisons());
    return true;
}

void ComparisonsCombo::cboComparisons_CurrentIndexChanged(int index) {
    if (m_busy || index < 0)
        return;
    const QScopedValueRollback guard(m_busy, true);
    const int comparisons = cboComparisons->itemData(index).toInt();
    if (comparisons == SelectItemData) {
        if (ChooseComparisons())
            Q_EMIT ComparisonsChosen(Comparisons());
        return;
    }
    Select(comparisons);
    Q_EMIT ComparisonsChosen(comparisons);
}

void ComparisonsCombo::AddEntry(int comparisons, int position) {
    cboComparisons->insertItem(position, ComparisonDescription(comparisons, Options::doCRCLast()),
                               comparisons);
}

void ComparisonsCombo::Save() {
    QList<int> values;
    for (int i = 0; i < cboComparisons->count(); ++i) {
        const int comparisons = cboComparisons->itemData(i).toInt();
        if (comparisons != SelectItemData)
            values.append(comparisons);
    }
    RecentLists::saveSelections(values, cboComparisons->currentIndex());
}

void ComparisonsCombo::RefreshDescriptions() {
    const bool crcLast = Options::doCRCLast();
    for (int i = 0; i < cboComparisons->count(); ++i) {
        const int comparisons = cboComparisons->itemData(i).toInt();
        if (comparisons != SelectItemData)
            cboComparisons->setItemText(i, ComparisonDescription(comparisons, crcLast));
    }
}
