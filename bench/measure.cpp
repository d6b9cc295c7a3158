#include "bench/measure.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

double Millis(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

/// What a child cost that ran `body`.
rusage UsageOfChild(const std::function<void()>& body) {
  std::fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
    body();
    std::fflush(stdout);
    _exit(0);
  }
  int status = -1;
  rusage usage{};
  Require(child > 0 && wait4(child, &status, 0, &usage) == child && status == 0, "a measured process fails");
  return usage;
}

}  // namespace

void Report(const char* figure, double ours, double peer, double goal) {
  std::printf("%s\t%.6g\t%.6g\t%.2f\n", figure, ours, peer, goal);
  std::fflush(stdout);
}

double Median(std::vector<double> samples) {
  const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
  std::nth_element(samples.begin(), middle, samples.end());
  return *middle;
}

double MillisOf(const rusage& usage) { return Millis(usage.ru_utime) + Millis(usage.ru_stime); }

double MillisOfChild(const std::function<void()>& body) { return MillisOf(UsageOfChild(body)); }

double PeakOfChild(const std::function<void()>& body) { return static_cast<double>(UsageOfChild(body).ru_maxrss); }

void Require(bool holds, const char* what) {
  if (!holds) {
    std::fflush(stdout);
    std::fprintf(stderr, "bench: %s\n", what);
    std::exit(EXIT_FAILURE);
  }
}
