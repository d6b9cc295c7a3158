#pragma once

struct ESH_VIEW_S;

/// Makes the three views and enters the user view. A view for which memory is short is missing.
void ESH_View_Init();

/// Enters a view: makes it the current one and its prompt the line editor's. NULL changes nothing.
void ESH_SetCmdMode(ESH_VIEW_S* view);
