#pragma once

#include <gtest/gtest.h>

#include <string>

/// Moves this process into a user and a mount namespace of its own and into a root directory of its own, where it is
/// user 0. The root shows the machine's files, unchangeable, but /mnt, /etc, /tmp, /lib/modules, /proc/net and
/// /proc/sys are the test's: they start empty, lie in memory and end with the process. /lib and /proc show the
/// machine's files, and others can be put beside or in the place of these. A further call changes this root for a new
/// one.
/// @return an empty text, or why there is no such root.
[[nodiscard]] std::string EnterPrivateRoot();

/// Base of the fixtures that need files at the system's own places. Without a root of the test's own nothing else of a
/// fixture runs: it would work on the machine's.
struct PrivateRootTest : testing::Test {
  /// Enters the root; fails the test, or skips it where nobody may make namespaces.
  PrivateRootTest();
};

/// @return why the machine lets nobody make namespaces, when ./test has found that; such tests are then skipped.
const char* WhyNoNamespaces();

/// Writes a file, together with the directories on its way, in the place of a link of that name.
void WriteFile(const std::string& path, const std::string& text);

/// The text of a file; empty when there is none.
[[nodiscard]] std::string ReadFile(const std::string& path);

/// Makes the directory of a medium below /mnt and its slot link. @param device such as "flash:".
void AddMedium(const std::string& device);
