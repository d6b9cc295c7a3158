#include "net/management_port.h"

#include "util/fixed_text.h"

ESH_METH_STATUS_E g_enMethStatus = ESH_METH_UP;
char g_szMth0IPv4Add[16] = "";
char g_szMth0IPv4Mask[16] = "";
char g_szMth0IPv4Gateway[16] = "";
char g_szMth0IPv6Add[46] = "";
char g_szMth0IPv6Per[5] = "";
char g_szMth0IPv6Gateway[46] = "";

void SaveIPv4Address(const char* address, const char* mask) {
  CopyText(g_szMth0IPv4Add, address);
  CopyText(g_szMth0IPv4Mask, mask);
}

void SaveIPv6Address(const char* address, const char* prefix_length) {
  CopyText(g_szMth0IPv6Add, address);
  CopyText(g_szMth0IPv6Per, prefix_length);
}

void ForgetIPv4Address() { SaveIPv4Address("", ""); }
void ForgetIPv6Address() { SaveIPv6Address("", ""); }
void ForgetIPv4Gateway() { CopyText(g_szMth0IPv4Gateway, ""); }
void ForgetIPv6Gateway() { CopyText(g_szMth0IPv6Gateway, ""); }
