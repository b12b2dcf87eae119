#include "tools/RowDoubleClick.h"

#include "engine/ComparisonFileCollection.h"
#include "tools/DesktopActions.h"
#include "tools/DiffProgram.h"
#include "views/ListView.h"

#include <QMessageBox>

void RowDoubleClick(QWidget *owner, QString &diffProgram, const ListView *listing, int side,
                    const ComparisonFileCollection &source,
                    const ComparisonFileCollection &destination) {
    if (!listing || (side != 0 && side != 1))
        return;
    const ComparisonFileCollection &own = side == 0 ? source : destination;
    const ComparisonFilePtr file = listing->selectedRecord();
    if (!file)
        return;
    const ComparisonFileCollection &other = side == 0 ? destination : source;
    const ComparisonFilePtr counterpart = other.Counterpart(*file, own);
    const bool here = file->HasFileObject();
    const bool there = counterpart && counterpart->HasFileObject();
    if (here && there) {
        if (diffProgram.isEmpty())
            diffProgram = SelectDiffProgram(owner, diffProgram);
        ExamineDifferences(owner, diffProgram, listing, side, source, destination);
        return;
    }
    if (!here && !there)
        return;
    QString error;
    if (!DesktopActions::Open({(here ? file : counterpart)->NativePath()}, &error))
        QMessageBox::warning(owner, QStringLiteral("Pairscope"),
                             QStringLiteral("The file could not be opened:\n%1").arg(error));
}
