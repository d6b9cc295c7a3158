#include "tools/mkpkg/arguments.h"

#include <algorithm>

namespace mkpkg {

std::string Arguments::Parse(std::span<char* const> words, std::span<const Option> options) {
  bool options_ended = false;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string_view word = words[i];
    if (options_ended || !word.starts_with("--")) {
      if (!options_ended && word.size() > 1 && word[0] == '-') return "there is no option " + std::string(word);
      operands_.emplace_back(word);
      continue;
    }
    if (word == "--") {
      options_ended = true;
      continue;
    }
    const std::size_t equals = std::min(word.find('='), word.size());
    const std::string name(word.substr(2, equals - 2));
    const auto option = std::find_if(options.begin(), options.end(), [&](const Option& o) { return o.name == name; });
    if (option == options.end()) return "there is no option --" + name;
    if (Has(name)) return "option --" + name + " is given twice";
    if (!option->has_value) {
      if (equals != word.size()) return "option --" + name + " takes no value";
      given_.push_back({name, ""});
    } else if (equals != word.size()) {
      given_.push_back({name, std::string(word.substr(equals + 1))});
    } else if (i + 1 < words.size()) {
      given_.push_back({name, words[++i]});
    } else {
      return "option --" + name + " needs a value";
    }
  }
  return "";
}

std::string Arguments::Value(std::string_view name, const std::string& otherwise) const {
  const Given* given = Find(name);
  return given == nullptr ? otherwise : given->value;
}

const Arguments::Given* Arguments::Find(std::string_view name) const {
  const auto found = std::find_if(given_.begin(), given_.end(), [&](const Given& given) { return given.name == name; });
  return found == given_.end() ? nullptr : &*found;
}

}  // namespace mkpkg
