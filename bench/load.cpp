/// Loads a package as the shell does: bench_load PACKAGE PEAK. Leaves its peak memory, in KB, in the file PEAK.
#include <sys/resource.h>

#include <cstdlib>
#include <fstream>

#include "bench/measure.h"
#include "pkg/install/install_load.h"
#include "util/result.h"

int main(int argc, char** argv) {
  Require(argc == 3 && ESH_PKG_InstallLoadSystem(argv[1]) == kSuccess, "a package is not loaded");
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::ofstream(argv[2]) << usage.ru_maxrss;
  return EXIT_SUCCESS;
}
