#pragma once

#include <net/if.h>

/// The numbers that /proc/net/dev holds for an interface, in the order of its columns.
enum CounterColumn : unsigned {
  kReceivedBytes,
  kReceivedPackets,
  kReceiveErrors,
  kReceiveDrops,
  kReceiveFifo,
  kReceiveFrame,
  kReceiveCompressed,
  kReceiveMulticast,
  kSentBytes,
  kSentPackets,
  kSendErrors,
  kSendDrops,
  kSendFifo,
  kSendCollisions,
  kSendCarrier,
  kSendCompressed,
  kCounterColumns
};

struct InterfaceCounters {
  char name[IFNAMSIZ] = "";  ///< empty: the kernel knows no such interface
  unsigned long long column[kCounterColumns] = {};
};

/// Reads the counters of one interface. @return false when /proc/net/dev cannot be opened.
[[nodiscard]] bool ReadInterfaceCounters(const char* interface, InterfaceCounters& counters);
