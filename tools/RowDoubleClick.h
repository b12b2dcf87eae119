#pragma once

class ComparisonFileCollection;
class ListView;
class QAction;
class QWidget;

/**
 * A double click on the selected row of \a listing (side \a side, 0 source, 1 destination):
 * a file that exists on both sides goes to the diff program, which is asked for first when
 * none is set (the Tag of \a mnuToolsDiff); a file that exists on one side only opens with
 * the desktop's default application. A failure is told in a message box over \a owner.
 */
void RowDoubleClick(QWidget *owner, QAction *mnuToolsDiff, const ListView *listing, int side,
                    const ComparisonFileCollection &source,
                    const ComparisonFileCollection &destination);
