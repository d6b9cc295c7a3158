#include "term/line_state.h"

ESH_LINE_S g_stESh_Line;
ESH_DISPLAY_S g_stESh_Display;
std::uint16_t g_bESh_SynInput = 0;
