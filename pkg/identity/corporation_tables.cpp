#include "pkg/identity/corporation_tables.h"

const char* const g_apcCorpName[kCorporations] = {
    "Ostrel",    // 0
    "Kelvane",   // 1
    "Durell",    // 2
    "Pellam",    // 3
    "Sorvik",    // 4
    "Brenna",    // 5
    "Talvo",     // 6
    "Morrel",    // 7
    "Halden",    // 8
    "Quintrel",  // 9
    "Averley",   // 10
    "Norvane",   // 11
    nullptr,     // 12
    nullptr,     // 13
    nullptr,     // 14
    nullptr,     // 15
    nullptr,     // 16
    "Vantrel",   // 17
    nullptr,     // 18
    "Castrel",   // 19
    nullptr,     // 20
    nullptr,     // 21
    nullptr,     // 22
    nullptr,     // 23
    "Lindow",    // 24
    "Marsten",   // 25
    "Oxenby",    // 26
    "Tarrick",   // 27
    "Ulvern",    // 28
    "Wexcombe",  // 29
    nullptr,     // 30
    "Zelbury",   // 31
    nullptr,     // 32
    nullptr,     // 33
    nullptr,     // 34
    nullptr,     // 35
    nullptr,     // 36
    nullptr,     // 37
    nullptr,     // 38
    "Fenwold",   // 39
    "Garrowby",  // 40
    nullptr,     // 41
    "Ilverton",  // 42
};

const char* const g_apcSoftwareName[kCorporations] = {
    "Tessaro",          // 0
    "Kelvane NOS",      // 1
    "Durell Tessaro",   // 2
    "PellamOS",         // 3
    "Sorvik SwitchOS",  // 4
    "Brenna NetOS",     // 5
    "Talvo RouteOS",    // 6
    "Morrel CoreOS",    // 7
    "Halden OS",        // 8
    nullptr,            // 9
    nullptr,            // 10
    nullptr,            // 11
    nullptr,            // 12
    nullptr,            // 13
    nullptr,            // 14
    nullptr,            // 15
    nullptr,            // 16
    "Vantrel OS",       // 17; the rest has none
};

const char* const g_apcCopyRight[kCorporations] = {
    "Copyright (c) 2004-%s Ostrel Networks Ltd. All rights reserved.",    // 0
    "Copyright (c) 2009-%s Kelvane Inc. All rights reserved.",            // 1
    "Copyright (c) 2010-%s Durell Communications. All rights reserved.",  // 2
    "Copyright (c) 2011-%s Pellam Systems. All rights reserved.",         // 3
    "Copyright (c) 2012-%s Sorvik AS. All rights reserved.",              // 4
    "Copyright (c) 2012-%s Brenna Networks. All rights reserved.",        // 5
    "Copyright (c) 2014-%s Talvo Technologies. All rights reserved.",     // 6
    "Copyright (c) 2013-%s Morrel Group. All rights reserved.",           // 7
    "Copyright (c) 2015-%s Halden Data. All rights reserved.",            // 8
    nullptr,                                                              // 9
    nullptr,                                                              // 10
    nullptr,                                                              // 11
    nullptr,                                                              // 12
    nullptr,                                                              // 13
    nullptr,                                                              // 14
    nullptr,                                                              // 15
    nullptr,                                                              // 16
    "Copyright (c) 2016-%s Vantrel Corporation. All rights reserved.",    // 17; the rest has none
};
