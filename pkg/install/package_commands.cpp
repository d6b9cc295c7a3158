#include "pkg/install/package_commands.h"

#include "fs/user_file.h"
#include "pkg/identity/version_display.h"
#include "pkg/install/install_load.h"
#include "pkg/install/package_description.h"
#include "pkg/install/package_help.h"
#include "shell/command/command_table.h"
#include "shell/command/parameter.h"

namespace {

constexpr CommandWord PackageName(const char* help, ESH_CMD_HELP_F list_values) {
  return Param(ESH_ELEM_STRING, "STRING<1-63>", help, ESH_RecordPkgFile, ESH_FS_CheckUserManipulatedFile, list_values);
}

constexpr CommandRow kPackageCommands[] = {
    {ESH_ProcInstallLoad,
     kUserView,
     {Word("install", "Perform package management operation"), Word("load", "Load a package"),
      PackageName("[file name]", HelpInstallLoad)}},
    {ESH_ProcDisInstallPkg,
     kAllViews,
     {kDisplay, Word("install", "Display information of system packages"),
      Word("package", "Display information about a package"), PackageName("[package name]", HelpDisInstallPkg)}},
};
static_assert(WellFormed(kPackageCommands));

}  // namespace

void ESH_Pkgm_Init() {
  RegisterCommands(kPackageCommands);
  RegisterIdentityCommands();
}
