#pragma once

/// Ends a running tool and puts the terminal back as it was found. The caller then ends the process.
void ESH_Exit();
