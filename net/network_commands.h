#pragma once

/// Registers the commands of the management port: its settings in the interface view, its displays in every view.
void ESH_Network_Init();
