#pragma once

#include <netinet/in.h>

/// What is shown of an interface's settings. Addresses are 0.0.0.0 where the interface has none.
struct InterfaceSettings {
  unsigned short hardware_family = 0;  ///< an ARPHRD_ number
  unsigned char hardware_address[6] = {};
  int mtu = 0;
  int transmit_queue_length = -1;
  in_addr address = {};
  in_addr netmask = {};
};

/// Asks the kernel. What it does not tell keeps the value from above.
/// @return false when it cannot be asked or knows no such interface.
[[nodiscard]] bool ReadInterfaceSettings(const char* interface, InterfaceSettings& settings);
