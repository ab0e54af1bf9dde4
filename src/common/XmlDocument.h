#pragma once

#include <climits>

#include "common/XML.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

// The one way to open a document.

namespace vyr {

/// Size of a document in memory: a length that no document has becomes one that the document refuses.
inline int DocumentSize(unsigned int length)
{
    return length <= INT_MAX ? static_cast<int>(length) : -1;
}

/// Lets go of a document at the end of its parse, however that comes.
struct SDocumentEnd {
    CXML& xml;

    ~SDocumentEnd()
    {
        if (xml.FlagCreate()) {
            xml.Destroy();
        }
    }
};

/// Texts of the steps of reading a document, as the log shows them when one fails.
struct SDocumentSteps {
    const char* create;
    const char* root;
    const char* process;
};

/// What follows on the creation of a document, which `created` tells of: moves to the root and gives it to
/// `process(xml, root)`. A failed step is logged.
template <class TProcess>
bool ProcessRoot(CXML& xml, bool created, const SDocumentSteps& steps, TProcess process, VYR_CALLER)
{
    void* root = nullptr;
    const char* failed = !created               ? steps.create
                         : !xml.MoveRoot(&root) ? steps.root
                         : !process(xml, root)  ? steps.process
                                                : nullptr;
    if (root && failed) {
        KeepFailure(FAILURE_KIND);
    }
    return !failed || CheckFailed(here, failed);
}

}  // namespace vyr
