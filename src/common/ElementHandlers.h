#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <memory>

#include "common/OutOfMemory.h"
#include "common/Owned.h"
#include "common/XmlNode.h"
#include "platform/Log.h"

// The one way from element names to handlers. A parser has one table of rows, a static array beside its handlers:
// SElementHandler<SState> k_handlers[] = {...}; and gives it to DispatchChildren wherever it walks an element. A
// handler takes what the parser holds, and the child. A child with structure of its own becomes an object of another
// class through BuildChild.

namespace vyr {

/// One row: the element's local name and its handler.
template <class TState>
struct SElementHandler {
    const char* name;
    void (*handler)(TState* state, void* node);
};

/// Which child elements a walk logs by name.
enum EChildLog { LOG_HANDLED_CHILDREN, LOG_ALL_CHILDREN };

/// Calls the handler of each child element of `node` that has one, in document order; the others, and
/// whatever is not an element, are skipped. `format` is the message that logs a name, with one %s; null: none does.
/// Rows are looked through in order: tables have 1 to 23, and first letter and strcmp are faster there than a hash.
template <class TState, std::size_t N>
void DispatchChildren(TState* state, const SElementHandler<TState> (&table)[N], void* node,
                      const char* format = nullptr, EChildLog log = LOG_HANDLED_CHILDREN, VYR_CALLER)
{
    const bool shown = format && LogEnabled(LOG_PRIORITY_DEBUG);
    for (void* child = FirstElement(node); child; child = NextElement(child)) {
        const char* name = NodeName(child);
        const auto* row = std::find_if(std::begin(table), std::end(table), [name](const SElementHandler<TState>& r) {
            return *r.name == *name && std::strcmp(r.name, name) == 0;
        });
        const bool handled = row != std::end(table);
        if (shown && (handled || log == LOG_ALL_CHILDREN)) {
            Print(LOG_PRIORITY_DEBUG, here, format, name);
        }
        if (handled) {
            row->handler(state, child);
        }
    }
}

/// Texts of the steps of building a child, as the log shows them when one fails.
struct SChildSteps {
    const char* create;
    const char* parse;
};

/// Builds a child parser on the parent's document: new, `create(child)`, `prepare(child)` (hands over
/// what the child must know; false after logging its own failed step), `parse(child)`. Returns the
/// child, which the caller owns, or null after logging the failed step and freeing the child. A fresh child
/// cannot be created only when memory is out, which ends the parent's parse.
template <class TChild, class TCreate, class TPrepare, class TParse>
TOwned<TChild> BuildChild(const SChildSteps& steps, const SHere& here, TCreate create, TPrepare prepare, TParse parse)
{
    auto fresh = std::make_unique<TChild>();
    if (!create(*fresh)) {
        CheckFailed(here, steps.create);
        throw std::bad_alloc();
    }
    TOwned<TChild> child(fresh.release());
    if (!prepare(*child)) {
        return nullptr;
    }
    if (!parse(*child)) {
        CheckFailed(here, steps.parse);
        return nullptr;
    }
    return child;
}

}  // namespace vyr
