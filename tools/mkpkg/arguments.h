#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mkpkg {

/// An option of a sub-command: "--name" or, with a value, "--name VALUE" and "--name=VALUE".
struct Option {
  const char* name = nullptr;  ///< without the hyphens
  bool has_value = false;
};

/// The options and operands that were given.
class Arguments {
 public:
  /// Reads a command line. Options and operands may come in any order; "--" ends the options.
  /// @return an empty text, or one line that says what is wrong.
  [[nodiscard]] std::string Parse(std::span<char* const> words, std::span<const Option> options);

  /// Whether the option was given, with or without a value.
  [[nodiscard]] bool Has(std::string_view name) const { return Find(name) != nullptr; }
  /// @return the option's value; what is given as `otherwise` without it.
  [[nodiscard]] std::string Value(std::string_view name, const std::string& otherwise = "") const;
  /// What is no option, in order.
  [[nodiscard]] const std::vector<std::string>& Operands() const { return operands_; }

 private:
  struct Given {
    std::string name;
    std::string value;
  };
  [[nodiscard]] const Given* Find(std::string_view name) const;

  std::vector<Given> given_;
  std::vector<std::string> operands_;
};

}  // namespace mkpkg
