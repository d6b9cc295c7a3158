#pragma once

namespace mkpkg {

/// Exit statuses of every sub-command.
enum ExitStatus {
  kDone = 0,         ///< done; check: a device would take the package
  kRefused = 1,      ///< check: a device would refuse the package
  kUsage = 2,        ///< the command line is wrong
  kBadInput = 3,     ///< something that was to be read is missing, unreadable or wrong
  kCannotWrite = 4,  ///< the result could not be written; what was there before is unchanged
};

}  // namespace mkpkg
