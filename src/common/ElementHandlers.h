#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <type_traits>

#include "common/Give.h"
#include "common/OutOfMemory.h"
#include "common/Owned.h"
#include "common/XmlNode.h"
#include "platform/Log.h"

// The one way from element names to handlers. A parser class has
//   - one table of rows, a static array: SElementHandler<CParser> k_handlers[] = {...};
//   - `handlers` in its state, which t_CreateCallback points to the table;
//   - DispatchChildren wherever it walks an element.
// A child element with structure of its own becomes an object of another class through BuildChild.

namespace vyr {

/// One row: the element's local name and its handler.
template <class TParser>
struct SElementHandler {
    const char* name;
    void (*handler)(TParser* parser, void* node);
};

/// The rows of a class, looked through in order: tables have 1 to 23 rows, and first letter and strcmp are
/// faster there than a hash. Nothing is made for an object.
struct SRows {
    const void* rows = nullptr;
    std::size_t count = 0;

    /// The row of an element name; null: there is none.
    template <class TParser>
    const SElementHandler<TParser>* Find(const char* name) const
    {
        const auto* row = static_cast<const SElementHandler<TParser>*>(rows);
        for (const auto* end = row + count; row != end; ++row) {
            if (*row->name == *name && std::strcmp(row->name, name) == 0) {
                return row;
            }
        }
        return nullptr;
    }
};

/// Takes a class's table; true.
template <class TParser, std::size_t N>
bool AddHandlers(SRows& handlers, const SElementHandler<TParser> (&table)[N])
{
    handlers = {table, N};
    return true;
}

/// What the state of every parser with handlers begins with.
struct SHandlers {
    SRows handlers;
};

/// What every Create shares: makes the state. One that is there already is asserted.
template <class TState>
bool CreateState(TState*& m, const SHere& here)
try {
    if (m) {
        return AssertFailed(here, "!m");
    }
    m = new TState;
    return true;
} catch (...) {
    return OutOfMemory(here);
}

/// The same of a parser with handlers, which `addHandlers()` gives to the state.
template <class TState, class TAdd>
bool CreateState(TState*& m, const SHere& here, TAdd addHandlers)
{
    return CreateState(m, here) && addHandlers();
}

/// Which child elements a walk logs by name.
enum EChildLog { LOG_ALL_CHILDREN, LOG_HANDLED_CHILDREN, LOG_NO_CHILDREN };

/// Calls the handler of each child element of `node` that has one, in document order; the others, and
/// whatever is not an element, are skipped. `format` is the message that logs a name, with one %s; null: none does.
template <class TParser>
void DispatchChildren(TParser* parser, const SRows& rows, void* node, EChildLog log = LOG_NO_CHILDREN,
                      const char* format = nullptr, VYR_CALLER)
{
    const bool shown = format && LogEnabled(LOG_PRIORITY_DEBUG);
    for (void* child = FirstElement(node); child; child = NextElement(child)) {
        const char* name = NodeName(child);
        const SElementHandler<TParser>* row = rows.Find<TParser>(name);
        if (shown && (log == LOG_ALL_CHILDREN || (row && log == LOG_HANDLED_CHILDREN))) {
            Print(LOG_PRIORITY_DEBUG, here, format, name);
        }
        if (row) {
            row->handler(parser, child);
        }
    }
}

/// The same with the rows of a class.
template <class TParser, std::size_t N>
void DispatchChildren(TParser* parser, const SElementHandler<TParser> (&table)[N], void* node,
                      EChildLog log = LOG_NO_CHILDREN, const char* format = nullptr, VYR_CALLER)
{
    DispatchChildren(parser, SRows{table, N}, node, log, format, here);
}

using ::SDestroy;

/// Deletes an element of a CCPtrArray of child parsers; the array's release callback.
template <class TChild>
void RemoveChild(void* /*context*/, void* element)
{
    SDestroy()(static_cast<TChild*>(element));
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
std::unique_ptr<TChild, SDestroy> BuildChild(const SChildSteps& steps, const SHere& here, TCreate create,
                                             TPrepare prepare, TParse parse)
{
    auto fresh = std::make_unique<TChild>();
    if (!create(*fresh)) {
        CheckFailed(here, steps.create);
        throw std::bad_alloc();
    }
    std::unique_ptr<TChild, SDestroy> child(fresh.release());
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
