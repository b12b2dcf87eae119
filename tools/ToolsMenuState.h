#pragma once

/**
 * Which Tools commands are enabled, computed when the menu (or a listing's popup) opens, for
 * the list that has the focus.
 */
struct ToolsMenuState {
    bool openContainingFolder = false;
    bool examineDifferences = false;
    bool copyToSource = false;
    bool copyToDestination = false;

    bool operator==(const ToolsMenuState &) const = default;

    /**
     * The rule: with the focus in listing \a focusedSide (0 source, 1 destination; any other
     * value: elsewhere) that has \a selectedCount selected rows, Open Containing Folder needs
     * a selected row, Examine Differences a selected row and a diff program, Copy to Source a
     * selection in the destination listing, Copy to Destination one in the source listing.
     */
    static ToolsMenuState Compute(int focusedSide, int selectedCount, bool diffProgramSet);
};
