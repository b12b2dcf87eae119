#pragma once

#include <QObject>

class QComboBox;

/**
 * The logic of the comparisons combo: recently used comparison sets, each shown by its
 * description, then "  Select..." which opens the comparisons dialog. The combo itself
 * belongs to the window that places it; this object lives as its child.
 *
 * Recent sets: at most six, a new set goes to the top, a set already listed keeps its place,
 * and every choice stores the list with the chosen index.
 */
class ComparisonsCombo : public QObject {
    Q_OBJECT
public:
    /** Item data of the "  Select..." entry. */
    static constexpr int SelectItemData = -1;

    /** Takes charge of \a combo; call Fill() to give it its entries. */
    explicit ComparisonsCombo(QComboBox *combo);

    /**
     * Fills the combo from the stored recent sets, selecting the stored index (brought into
     * range). With \a useDefaults, or when nothing usable is stored, it holds the sets 3, 2,
     * 0 and 31 instead; \a useDefaults also stores that list, clearing the recent sets.
     */
    void Fill(bool useDefaults);

    /**
     * Selects \a comparisons, adding it at the top when it is not listed yet (the oldest set
     * beyond six drops out), and stores the list.
     */
    void Select(int comparisons);

    /** The chosen set: the selected entry's item data, or -1 when none is selected. */
    int Comparisons() const;

    /** Opens the comparisons dialog over the combo's window; true when a set was chosen. */
    bool ChooseComparisons();

Q_SIGNALS:
    /** The user chose a set (from the list or the dialog). */
    void ComparisonsChosen(int comparisons);

private:
    void cboComparisons_CurrentIndexChanged(int index);
    void AddEntry(int comparisons, int position);
    void Save();
    void RefreshDescriptions();

    QComboBox *cboComparisons;
    bool m_busy = false;
    int m_previousIndex = -1;
};
