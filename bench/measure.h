#pragma once

#include <sys/resource.h>

#include <functional>
#include <vector>

/// One row for the table that bench/run prints.
/// @param figure what was measured, with its unit and the peer.
/// @param goal   ours may be at most so many times the peer's.
void Report(const char* figure, double ours, double peer, double goal);

/// @return the middle one of the samples, of which there must be some.
[[nodiscard]] double Median(std::vector<double> samples);

/// @return user and system time in milliseconds.
[[nodiscard]] double MillisOf(const rusage& usage);

/// Processor time of a child process that runs `body` with its output thrown away. The time it waits for a processor
/// does not count, so that other work on the machine disturbs little.
/// @return user and system time in milliseconds. A child that fails ends the benchmark.
[[nodiscard]] double MillisOfChild(const std::function<void()>& body);

/// Most memory that such a child had, in KB.
[[nodiscard]] double PeakOfChild(const std::function<void()>& body);

/// Ends the benchmark when something that it relies on does not hold: no figure is better than a wrong one.
void Require(bool holds, const char* what);
