#pragma once

#include <array>
#include <string>

#include "util/unique_handle.h"

namespace device {

/// The end of the lab's cable that a machine is plugged in at: whole Ethernet frames go in and out.
class LabCable {
 public:
  using Address = std::array<unsigned char, 6>;

  /// Takes the cable's end from the lab, whose network namespace this process must be in.
  /// @return an empty text, also when the lab has no cable, or one line that says what went wrong.
  [[nodiscard]] std::string Open();

  /// A socket that receives and sends one frame at a time; -1 when there is no cable.
  [[nodiscard]] int Descriptor() const { return socket_.Get(); }

  /// A descriptor that is readable when the cable may have been pulled out or put in; -1 when there is no cable.
  [[nodiscard]] int Changes() const { return changes_.Get(); }
  /// Takes in what made Changes readable. @return whether the cable leads somewhere.
  [[nodiscard]] bool IsPluggedIn() const;

  /// @return the Ethernet address for the machine's port.
  [[nodiscard]] const Address& PortAddress() const { return port_address_; }

 private:
  UniqueFd socket_;
  UniqueFd changes_;
  Address port_address_{0x02, 0x5a, 0xc1, 0x07, 0xf2, 0x0e};
};

}  // namespace device
