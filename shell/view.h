#pragma once

struct ESH_VIEW_S;

/// Makes the three views and enters the user view.
void ESH_View_Init();

/// Enters a view: makes it the current one and its prompt the line editor's.
void ESH_SetCmdMode(ESH_VIEW_S* view);
