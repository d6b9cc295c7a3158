// SPDX-License-Identifier: GPL-2.0
/*
 * The product's add-on to the kernel: the settings that the shell knows by number. 61000/1 is the device's object
 * identifier, 61000/2 a brief version text, 61000/3 the name of the boot image; 7/8/1 is the console switch, which
 * this device only remembers.
 */
#include <linux/module.h>
#include <linux/sysctl.h>
#include <linux/version.h>

#include "addon_settings.h"

/* Newer kernels know the length of a table and refuse an empty entry, which older ones find its end by. */
#if LINUX_VERSION_CODE < KERNEL_VERSION(6, 11, 0)
#define TABLE_END { }
#else
#define TABLE_END
#endif

static char object_id[] = ADDON_OBJECT_ID;
static char brief_version[] = ADDON_BRIEF_VERSION;
static char boot_image[] = ADDON_BOOT_IMAGE;
static int console_switch;

#define IDENTITY(number, text) \
	{ .procname = number, .data = text, .maxlen = sizeof(text), .mode = 0444, .proc_handler = proc_dostring }

static struct ctl_table identity[] = {
	IDENTITY("1", object_id),
	IDENTITY("2", brief_version),
	IDENTITY("3", boot_image),
	TABLE_END
};

static struct ctl_table console[] = {
	{
		.procname = "1",
		.data = &console_switch,
		.maxlen = sizeof(console_switch),
		.mode = 0644,
		.proc_handler = proc_dointvec,
	},
	TABLE_END
};

static struct ctl_table_header *identity_header;
static struct ctl_table_header *console_header;

static int __init addon_init(void)
{
	identity_header = register_sysctl("61000", identity);
	if (!identity_header)
		return -ENOMEM;
	console_header = register_sysctl("7/8", console);
	if (!console_header) {
		unregister_sysctl_table(identity_header);
		return -ENOMEM;
	}
	return 0;
}

static void __exit addon_exit(void)
{
	unregister_sysctl_table(console_header);
	unregister_sysctl_table(identity_header);
}

module_init(addon_init);
module_exit(addon_exit);
MODULE_LICENSE("GPL");
MODULE_DESCRIPTION("Numbered kernel settings of the device");
