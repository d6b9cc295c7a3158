#include <arpa/inet.h>
#include <net/if_arp.h>

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "net/interface_counters.h"
#include "net/interface_settings.h"
#include "net/ipv6_listing.h"
#include "net/management_port.h"
#include "net/network_commands.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kShutDown[] = "Administratively DOWN";

/// @return what the carrier file says in a word; empty when it says nothing.
const char* CarrierState(std::FILE* file) {
  char line[kCarrierLineRoom];
  if (std::fgets(line, sizeof(line), file) == nullptr) return "";
  return std::strtol(line, nullptr, 10) == 1 ? "UP" : "DOWN";
}

void PrintState(int mtu) {
  const char* state = kShutDown;
  if (!IsPortShut()) {
    const UniqueFile carrier(std::fopen(kCarrierFile, "re"));
    if (carrier == nullptr) return;
    state = CarrierState(carrier.get());
  }
  std::printf("%s%s\r\n", "m-eth0 current state: ", state);
  std::printf("%s%s\r\n", "Line protocol current state: ", state);
  std::printf("The Maximum Transmit Unit is %d \r\n", mtu);
}

void PrintIPv4Address(const InterfaceSettings& settings) {
  if (settings.address.s_addr == INADDR_ANY) return;
  char address[INET_ADDRSTRLEN] = "";
  (void)inet_ntop(AF_INET, &settings.address, address, sizeof(address));  // there is room for every address
  std::printf("Inet4 Address is %s/%d\r\n", address, std::popcount(settings.netmask.s_addr));
}

/// How far an address reaches; the other bits of the kernel's number do not count.
const char* ScopeName(unsigned scope) {
  switch (scope & 0xF0) {
    case 0x00:
      return "Global";
    case 0x10:
      return "Host";
    case 0x20:
      return "Link";
    case 0x40:
      return "Site";
    case 0x80:
      return "Compat";
    default:
      return "Unknown";
  }
}

void PrintIPv6Addresses(std::string_view interface) {
  const UniqueFile listing(std::fopen(kIPv6ListingFile, "re"));
  if (listing == nullptr) return;  // a kernel without IPv6
  IPv6Entry entry;
  while (ReadIPv6Entry(listing.get(), entry)) {
    if (entry.interface == interface) {
      std::printf("Inet6 Address is %s/%d Scope:%s\r\n", entry.address, static_cast<int>(entry.prefix_length),
                  ScopeName(entry.scope));
    }
  }
}

void PrintHardware(const InterfaceSettings& settings) {
  const char* frame = settings.hardware_family == ARPHRD_ETHER ? "PKTFMT_ETHNT_2" : "PKTFMT_OTHER_2";
  const unsigned char* byte = settings.hardware_address;
  for (const char* protocol : {"IP", "IPV6"})
    std::printf("%s Packet Frame Type:%s, Hardware Address:%02X%02X-%02X%02X-%02X%02X\r\n", protocol, frame, byte[0],
                byte[1], byte[2], byte[3], byte[4], byte[5]);
}

void PrintCounters(const InterfaceCounters& counters, int transmit_queue_length) {
  const auto& of = counters.column;
  std::printf("Input:%llu packets, %llu errors, %llu dropped, %llu overruns, %llu frame\r\n", of[kReceivedPackets],
              of[kReceiveErrors], of[kReceiveDrops], of[kReceiveFifo], of[kReceiveFrame]);
  std::printf("Output:%llu packets, %llu errors, %llu dropped, %llu overruns, %llu carrier\r\n", of[kSentPackets],
              of[kSendErrors], of[kSendDrops], of[kSendFifo], of[kSendCarrier]);
  std::printf("       %llu collisions, %d txqueuelen\r\n", of[kSendCollisions], transmit_queue_length);
  std::printf("Input bytes:%llu\r\n", of[kReceivedBytes]);
  std::printf("Output bytes:%llu\r\n", of[kSentBytes]);
}

}  // namespace

std::uint32_t ESH_ProcDisInterface() {
  InterfaceCounters counters;
  InterfaceSettings settings;
  if (!ReadInterfaceCounters(kPortName, counters) || !ReadInterfaceSettings(counters.name, settings)) {
    std::puts(kOperationFailed);
    return ESH_ERR_FAIL;
  }
  PrintState(settings.mtu);
  PrintIPv4Address(settings);
  PrintIPv6Addresses(counters.name);
  PrintHardware(settings);
  PrintCounters(counters, settings.transmit_queue_length);
  return kSuccess;
}
