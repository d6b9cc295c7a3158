#include "net/ip_stack.h"

#include <unistd.h>

std::uint16_t ESH_IsExistIpstackKo() { return access(kIpStackModule, F_OK) == 0 ? 1 : 0; }
