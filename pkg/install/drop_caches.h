#pragma once

/// Has the kernel give back the memory in which it keeps files: the system that starts next needs it.
void DropCaches();
