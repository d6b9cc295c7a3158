#pragma once

#include <net/if.h>
#include <netinet/in.h>

/// What the kernel tells about an interface. Addresses are 0.0.0.0 where the interface has none.
struct InterfaceSettings {
  short flags = 0;
  unsigned short hardware_family = 0;  ///< an ARPHRD_ number
  unsigned char hardware_address[6] = {};
  int metric = 0;
  int mtu = 0;
  ifmap map = {};
  int transmit_queue_length = -1;
  in_addr address = {};
  in_addr peer = {};
  in_addr broadcast = {};
  in_addr netmask = {};
};

/// Asks the kernel. What it does not tell keeps the value from above.
/// @return false when it cannot be asked or knows no such interface.
[[nodiscard]] bool ReadInterfaceSettings(const char* interface, InterfaceSettings& settings);
