#include "pkg/install/change_list.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string_view>

#include "fs/names/name_rules.h"
#include "pkg/format/package_name.h"
#include "util/new_file.h"
#include "util/result.h"

namespace {

constexpr char kDirectory[] = "/var/pkg";
constexpr char kRecord[] = "/var/pkg/change.list";
constexpr char kUnfinished[] = "/var/pkg/change.list.new";
constexpr mode_t kDirectoryMode = 0777;
constexpr mode_t kRecordMode = 0644;

bool WriteUnfinished(const char (&record)[kLoadRecordSize]) {
  UniqueFd file(CreateAnew(kUnfinished, kRecordMode));
  return file && WriteAll(file.Get(), record, sizeof(record)) && fsync(file.Get()) == 0 && close(file.Release()) == 0;
}

}  // namespace

std::uint32_t WriteChangeList(const char* package) {
  const std::string_view path(package);
  if (!path.starts_with(kMediaPrefix)) return ESH_ERR_FAIL;
  // A longer path is cut, and then nothing terminates it.
  char record[kLoadRecordSize] = {};
  path.substr(kMediaPrefix.size()).copy(record, sizeof(record));
  (void)mkdir(kDirectory, kDirectoryMode);  // it may exist; where it cannot be made, the next step fails
  if (WriteUnfinished(record) && std::rename(kUnfinished, kRecord) == 0) return kSuccess;
  (void)unlink(kUnfinished);
  return ESH_ERR_FAIL;
}
