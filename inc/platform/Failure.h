#pragma once

#include "Api.h"

/// Why the library did not take something.
enum EFailure {
    FAILURE_NONE,    ///< no cause is known beyond the step that failed
    FAILURE_MISUSE,  ///< an assertion, `detail` is its expression: a fault of the program, or of values required
    FAILURE_MEMORY,  ///< memory was out
    FAILURE_SIZE,    ///< a length does not fit what is there, or is not allowed; `detail` says which
    FAILURE_XML,     ///< not well-formed; `detail` is libxml2's message, `documentLine` the line
    FAILURE_LIMIT,   ///< XML beyond a limit or in an encoding that CXML::Create refuses, named in `detail`
    FAILURE_KIND,    ///< the root element, or the id in `detail`, is not one that the parser takes, or what is
                     ///< required of it is missing
};

/// What failed first in a call.
struct SFailure {
    EFailure cause;            ///< the first that was met; FAILURE_MISUSE only without another
    const char* step;          ///< text of the first check that failed, as it is logged; empty: none
    const char* source;        ///< its source, such as "src/common/XML"; empty without a step
    int line;                  ///< and the line there; 0 without a step
    int documentLine;          ///< with FAILURE_XML: line of the document, from 1; 0: not known
    char detail[160];          ///< the cause in words; empty: there are none
    unsigned char tags;        ///< number of unknownTags
    unsigned unknownTags[16];  ///< tags of descriptors without a class, each once, in the order they came; nothing
                               ///< behind such a one was read
};

/// What the calling thread's last Parse of a document, LLS table, package, delivery unit, MMT message or MMT table, or
/// CXML::Create, left: null when everything was taken. (What is parsed by itself below these, such as an MMT
/// descriptor, adds to the record and does not begin one.) A call that gives true may have left something out,
/// as that of an LLS table or a descriptor loop does. `document` names one of those in a package that CSLSManager
/// parsed: "USBD", "STSID", "EFDT", "MPD" or "RSAT"; empty: whatever belongs to none. Good until the thread's next
/// call of such a function; calls inside callbacks add to that of the call that they are in. Kept for every call, at
/// no cost while nothing fails.
VYR_API const SFailure* LastFailure(const char* document = "");
