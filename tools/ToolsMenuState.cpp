#include "tools/ToolsMenuState.h"

ToolsMenuState ToolsMenuState::Compute(int focusedSide, int selectedCount, bool diffProgramSet) {
    ToolsMenuState state;
    if ((focusedSide != 0 && focusedSide != 1) || selectedCount <= 0)
        return state;
    state.openContainingFolder = true;
    state.examineDifferences = diffProgramSet;
    state.copyToSource = focusedSide == 1;
    state.copyToDestination = focusedSide == 0;
    return state;
}
