#pragma once

#include <memory>
#include <new>
#include <utility>

#include "common/CoreOS/PtrArray.h"
#include "common/ElementHandlers.h"
#include "common/ParseXML.h"

// What the XMLBase subclasses share beside their handlers.

namespace vyr {

/// What every Create with handlers shares: a state that is there already is asserted; else `message` is
/// logged, and the state made with its handlers, as CreateState says.
template <class TState, class TAdd>
bool CreateXmlParser(TState*& m, const char* message, const SHere& here, TAdd addHandlers,
                     ELogPriority priority = LOG_PRIORITY_DEBUG)
{
    if (!m && LogEnabled(priority)) {
        Print(priority, here, "%s", message);
    }
    return CreateState(m, here, addHandlers);
}

/// The same for a parser of an element without children.
template <class TState>
bool CreateXmlParser(TState*& m, const char* message, const SHere& here)
{
    if (!m && LogEnabled(LOG_PRIORITY_DEBUG)) {
        Print(LOG_PRIORITY_DEBUG, here, "%s", message);
    }
    return CreateState(m, here);
}

/// What every Destroy shares: logs `message`, lets go of the state, children that look into the document
/// among it, and of the document; no state, and a call inside a callback of the parser, are asserted.
template <class TState>
void DestroyXmlParser(XMLBase& parser, TState*& m, const char* message, const SHere& here,
                      ELogPriority priority = LOG_PRIORITY_DEBUG)
{
    if (!m) {
        AssertFailed(here, "m");
        return;
    }
    if (parser.Parsing()) {
        AssertFailed(here, "!m->parsing");
        return;
    }
    if (LogEnabled(priority)) {
        Print(priority, here, "%s", message);
    }
    delete m;
    m = nullptr;
    parser.XMLBase::Destroy();
}

/// What every SetCallback shares: copies the record, null takes it back; no state is asserted: false.
template <class TState, class TCallback>
bool SetCallback(TState* m, const TCallback* callback, const SHere& here)
{
    if (!m) {
        return AssertFailed(here, "m");
    }
    m->callback = callback ? *callback : TCallback{};
    return true;
}

/// XMLBase::Parse of an element inside the parse of another: memory that is out ends the whole.
struct SXmlChild {
    static bool Parse(XMLBase& child, void* document, void* node) { return child.m_ParseElement(document, node); }
};

/// What SetReplace does to a record of lists once a new document is known to be of its kind.
template <class TValues>
void Renew(bool replace, TValues& values)
{
    if (replace) {
        values.~TValues();
        new (&values) TValues;
    }
}

/// BuildChild for a child that is an XMLBase: Create(), `prepare(child)`, Parse(document, node).
template <class TChild, class TPrepare>
std::unique_ptr<TChild, SDestroy> BuildXmlChild(void* document, void* node, const SChildSteps& steps, const SHere& here,
                                                TPrepare prepare)
{
    return BuildChild<TChild>(
        steps, here, [](TChild& child) { return child.Create(); }, prepare,
        [document, node](TChild& child) { return SXmlChild::Parse(child, document, node); });
}

/// The same for a child that must know nothing beforehand.
template <class TChild>
std::unique_ptr<TChild, SDestroy> BuildXmlChild(void* document, void* node, const SChildSteps& steps, const SHere& here)
{
    return BuildXmlChild<TChild>(document, node, steps, here, [](TChild&) { return true; });
}

/// Puts a child in the place of the one held before, if any; null lets go of it.
template <class TChild>
void HoldChild(TChild*& held, std::unique_ptr<TChild, SDestroy> child)
{
    std::unique_ptr<TChild, SDestroy> old(held);
    held = child.release();
}

/// Builds a child that is held singly; one that cannot be built leaves the held one.
template <class TChild>
void HoldXmlChild(TChild*& held, void* document, void* node, const SChildSteps& steps, const SHere& here)
{
    if (auto child = BuildXmlChild<TChild>(document, node, steps, here)) {
        HoldChild(held, std::move(child));
    }
}

/// Builds a child and appends it to its array.
template <class TChild>
void AddXmlChild(CCPtrArray& children, void* document, void* node, const SChildSteps& steps, const SHere& here)
{
    if (auto child = BuildXmlChild<TChild>(document, node, steps, here)) {
        Append(children, std::move(child));
    }
}

/// Appends a text of an element to a CCPtrArray of texts.
inline void AddText(CCPtrArray& texts, char* text)
{
    Append(texts, std::unique_ptr<char[]>(Allocated(text)));
}

/// Frees a text of a CCPtrArray of texts; the array's release callback.
inline void RemoveText(void* /*context*/, void* element)
{
    delete[] static_cast<char*>(element);
}

}  // namespace vyr
