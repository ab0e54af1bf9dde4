#pragma once

#include <cstdio>
#include <memory>

#include "common/CoreOS/StringHash.h"
#include "common/Log.h"
#include "common/Owned.h"
#include "common/XmlNode.h"

// The one way from element names to handlers. A parser class has
//   - one table of rows, a static array: SElementHandler<CParser> k_handlers[] = {...};
//   - a CCStringHash `hashCallback` in its state, filled from the table and emptied by the functions
//     below, each called from the class's Create, t_CreateCallback, t_DestroyCallback;
//   - DispatchChildren wherever it walks an element.
// A child element with structure of its own becomes an object of another class through BuildChild.

namespace vyr {

/// One row: the element's local name, the handler, and the handler's name as the log shows it.
template <class TParser>
struct SElementHandler {
    const char* name;
    void (*handler)(TParser* parser, void* node);
    const char* handlerName;
};

/// Takes every row back.
inline void RemoveHandlers(CCStringHash& hashCallback)
{
    while (hashCallback.SetPosition(CCStringHash::POS_HEAD, 0)) {
        hashCallback.Remove();
    }
}

/// Adds every row; when one cannot be added, logs it as the failed step and takes all of them back.
template <class TParser, std::size_t N>
bool AddHandlers(CCStringHash& hashCallback, const SElementHandler<TParser> (&table)[N], const SHere& here)
{
    for (const SElementHandler<TParser>& row : table) {
        if (!hashCallback.Add(row.name, &row)) {
            char text[128];
            std::snprintf(text, sizeof text, "m->hashCallback.Add(\"%s\", (const void*)%s)", row.name, row.handlerName);
            RemoveHandlers(hashCallback);
            return CheckFailed(here, text);
        }
    }
    return true;
}

/// Makes the hash of a parser's Create with `buckets` buckets; a failure is logged as that step.
inline bool CreateHandlers(CCStringHash& hashCallback, unsigned int buckets, const SHere& here)
{
    if (hashCallback.Create(buckets, ~0u)) {
        return true;
    }
    char text[64];
    std::snprintf(text, sizeof text, "m->hashCallback.Create(%u)", buckets);
    return CheckFailed(here, text);
}

/// Empties and destroys the hash of a parser's Destroy.
inline void DestroyHandlers(CCStringHash& hashCallback)
{
    if (hashCallback.FlagCreate()) {
        RemoveHandlers(hashCallback);
        hashCallback.Destroy();
    }
}

/// What the state of every parser with handlers begins with; deleting the state takes them back.
struct SHandlers {
    CCStringHash hashCallback;

    SHandlers() = default;
    SHandlers(const SHandlers&) = delete;
    SHandlers& operator=(const SHandlers&) = delete;
    ~SHandlers() { DestroyHandlers(hashCallback); }
};

/// What every such parser's Create shares: the state, its hash, the handlers that `addHandlers()` adds.
/// A failed step is logged and leaves no state; a state that is there already is asserted.
template <class TState, class TAdd>
bool CreateState(TState*& m, unsigned int buckets, const SHere& here, TAdd addHandlers)
{
    if (m) {
        return AssertFailed(here, "!m");
    }
    m = new TState;
    if (CreateHandlers(m->hashCallback, buckets, here) && (addHandlers() || CheckFailed(here, "t_CreateCallback()"))) {
        return true;
    }
    delete m;
    m = nullptr;
    return false;
}

/// Gives a value to a getter's output; true.
template <class T, class TOut>
bool Give(const T& value, TOut& out)
{
    out = static_cast<TOut>(value);
    return true;
}

/// Which child elements a walk logs by name.
enum EChildLog { LOG_ALL_CHILDREN, LOG_HANDLED_CHILDREN, LOG_NO_CHILDREN };

/// Calls the handler of each child element of `node` that has one, in document order; the others, and
/// whatever is not an element, are skipped. `format` is the message that logs a name, with one %s.
template <class TParser>
void DispatchChildren(TParser* parser, CCStringHash& hashCallback, void* node, EChildLog log, const char* format,
                      const SHere& here)
{
    const bool shown = LogEnabled(LOG_PRIORITY_DEBUG);
    for (void* child = FirstElement(node); child; child = NextElement(child)) {
        const char* name = NodeName(child);
        const bool handled = hashCallback.Find(name);
        if (shown && (log == LOG_ALL_CHILDREN || (handled && log == LOG_HANDLED_CHILDREN))) {
            Print(LOG_PRIORITY_DEBUG, here, format, name);
        }
        if (handled) {
            const auto* row = static_cast<const SElementHandler<TParser>*>(hashCallback.Data());
            row->handler(parser, child);
        }
    }
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
/// child, which the caller owns, or null after logging the failed step and freeing the child.
template <class TChild, class TCreate, class TPrepare, class TParse>
std::unique_ptr<TChild, SDestroy> BuildChild(const SChildSteps& steps, const SHere& here, TCreate create,
                                             TPrepare prepare, TParse parse)
{
    auto fresh = std::make_unique<TChild>();
    if (!create(*fresh)) {
        CheckFailed(here, steps.create);
        return nullptr;
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
