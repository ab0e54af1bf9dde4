#pragma once

#include "common/OutOfMemory.h"
#include "platform/Log.h"

// What `m` points to, of the classes that have a life of their own.

namespace vyr {

/// What every Create shares: makes the state, after a note in the log if there is one. One that is there already is
/// asserted.
template <class TState>
bool CreateState(TState*& m, const char* note = nullptr, VYR_CALLER)
try {
    if (m) {
        return AssertFailed(here, "!m");
    }
    if (note && LogEnabled(LOG_PRIORITY_DEBUG)) {
        Print(LOG_PRIORITY_DEBUG, here, "%s", note);
    }
    m = new TState;
    return true;
} catch (...) {
    return OutOfMemory(here);
}

/// What every Destroy shares: frees it, after a note. None is asserted.
template <class TState>
void DestroyState(TState*& m, const char* note = nullptr, VYR_CALLER)
{
    if (!m) {
        AssertFailed(here, "m");
        return;
    }
    if (note && LogEnabled(LOG_PRIORITY_DEBUG)) {
        Print(LOG_PRIORITY_DEBUG, here, "%s", note);
    }
    delete m;
    m = nullptr;
}

/// What every SetCallback shares: copies the record, null takes it back; no state is asserted: false.
template <class TState, class TCallback>
bool SetCallback(TState* m, const TCallback* callback, VYR_CALLER)
{
    if (!m) {
        return AssertFailed(here, "m");
    }
    m->callback = callback ? *callback : TCallback{};
    return true;
}

}  // namespace vyr
