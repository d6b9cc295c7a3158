#include "net/interface_settings.h"

#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cstring>

#include "util/fixed_text.h"
#include "util/unique_handle.h"

namespace {

/// One interface, asked over a socket.
class Inquiry {
 public:
  Inquiry(int socket, const char* interface) : socket_(socket), interface_(interface) {}

  /// @return the kernel's answer, valid until the next question; NULL when it has none.
  const ifreq* Ask(unsigned long question) {
    request_ = {};
    CopyText(request_.ifr_name, interface_);
    return ioctl(socket_, question, &request_) == 0 ? &request_ : nullptr;
  }

  bool AskAddress(unsigned long question, in_addr& address) {
    const ifreq* answer = Ask(question);
    if (answer == nullptr) return false;
    sockaddr_in internet{};
    std::memcpy(&internet, &answer->ifr_addr, sizeof(internet));
    address = internet.sin_addr;
    return true;
  }

 private:
  int socket_;
  const char* interface_;
  ifreq request_{};
};

void AskLinkLayer(Inquiry& inquiry, InterfaceSettings& settings) {
  if (const ifreq* answer = inquiry.Ask(SIOCGIFHWADDR)) {
    settings.hardware_family = answer->ifr_hwaddr.sa_family;
    std::memcpy(settings.hardware_address, answer->ifr_hwaddr.sa_data, sizeof(settings.hardware_address));
  }
  if (const ifreq* answer = inquiry.Ask(SIOCGIFMTU)) settings.mtu = answer->ifr_mtu;
  if (const ifreq* answer = inquiry.Ask(SIOCGIFTXQLEN)) settings.transmit_queue_length = answer->ifr_qlen;
}

}  // namespace

bool ReadInterfaceSettings(const char* interface, InterfaceSettings& settings) {
  const UniqueFd socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  if (!socket) return false;
  Inquiry inquiry(socket.Get(), interface);
  if (inquiry.Ask(SIOCGIFFLAGS) == nullptr) return false;  // no such interface
  AskLinkLayer(inquiry, settings);
  if (inquiry.AskAddress(SIOCGIFADDR, settings.address)) inquiry.AskAddress(SIOCGIFNETMASK, settings.netmask);
  return true;
}
