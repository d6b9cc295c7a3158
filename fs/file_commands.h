#pragma once

/// Registers the file commands in the user view.
void ESH_Fs_Init();
