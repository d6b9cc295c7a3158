#pragma once

#include <cstdint>

/// Asks the operator who he is on a remote host, at prompts of their own. Nothing of it reaches the history.

/// Asks for the user name of an SSH connection.
/// @return the name as typed, valid until the next line is read; NULL when the operator gave up (Ctrl+C), typed
///         nothing, or typed what is not one word.
[[nodiscard]] const char* GetSSHUserName();

/// Asks for the user name and the password of an FTP connection and records them in g_szUserName and g_szPassword. The
/// password is asked for whatever became of the name.
/// @return 0 when both were recorded, otherwise ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t GetFTPUserPassword();

/// Overwrites the recorded password when it goes out of scope.
class PasswordForgotten {
 public:
  PasswordForgotten() = default;
  PasswordForgotten(const PasswordForgotten&) = delete;
  PasswordForgotten& operator=(const PasswordForgotten&) = delete;
  /// Zeroes all of g_szPassword.
  ~PasswordForgotten();
};
