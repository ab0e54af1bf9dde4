#pragma once

#include <memory>
#include <new>
#include <utility>

#include "common/ElementHandlers.h"
#include "common/ParseXML.h"
#include "common/State.h"
#include "common/XmlElement.h"

// What the parsers on CXmlElement share. Such a class is
//   - a state, which has the public record and what the parser keeps beside it: SState, on TXmlState or SXmlState;
//   - its m_ProcessParse, which reads the attributes and hands the rows to DispatchChildren;
//   - a handler for each row, sm_Cb and the element's name, which takes the state and the child;
//   - its t_Kind, and its getters.
// What a record owns is let go of from its last member to its first, and the log shows it.

namespace vyr {

/// What a class is.
struct SXmlKind {
    SHere where;  ///< where it is told: the source of the class, and a line of it
    const char* className;
    SXmlState* (*create)();
    ELogPriority priority;  ///< of the notes of Create and Destroy
    const char* noteEnd;    ///< what the note of Create ends with

    /// Where a message comes from that a function of CXmlElement has for the class.
    SHere Here(const char* function) const { return {where.file, function, where.line}; }
};

template <class TState>
SXmlKind XmlKind(const char* className, ELogPriority priority = LOG_PRIORITY_DEBUG, const char* noteEnd = "",
                 VYR_CALLER)
{
    return {here, className, []() -> SXmlState* { return new TState; }, priority, noteEnd};
}

/// XMLBase::Parse of an element inside the parse of another: memory that is out ends the whole.
struct SXmlChild {
    static bool Parse(XMLBase& child, void* document, void* node) { return child.m_ParseElement(document, node); }
};

/// What SetReplace does to a record of lists once a new document is known to be of its kind.
template <class TValues>
void Renew(TXmlState<TValues>& state)
{
    if (state.replace) {
        state.values.~TValues();
        new (&state.values) TValues{};
    }
}

/// BuildChild for a child that is an XMLBase: Create(), `prepare(child)`, Parse on the parent's document.
template <class T, class TPrepare>
TOwned<T> BuildXmlChild(const SXmlState& parent, void* node, const SChildSteps& steps, TPrepare prepare, VYR_CALLER)
{
    return BuildChild<T>(
        steps, here, [](T& child) { return child.Create(); }, prepare,
        [&parent, node](T& child) { return SXmlChild::Parse(child, parent.xml->Doc(), node); });
}

/// The same for a child that must know nothing beforehand.
template <class T>
TOwned<T> BuildXmlChild(const SXmlState& parent, void* node, const SChildSteps& steps, VYR_CALLER)
{
    return BuildXmlChild<T>(
        parent, node, steps, [](T&) { return true; }, here);
}

/// Puts a child behind those of a list, or in the place of the one held before.
template <class T>
void Keep(TOwnedArray<T>& list, TOwned<T> child)
{
    list.Append(std::move(child));
}

template <class T>
void Keep(TOwned<T>& single, TOwned<T> child)
{
    single = std::move(child);
}

/// Builds a child and keeps it in its place, a TOwned or a TOwnedArray. One that cannot be built changes nothing.
template <template <class, class> class TPlace, class T, class TPrepare>
void AddChild(TPlace<T, SDestroy>& place, const SXmlState& parent, void* node, const SChildSteps& steps,
              TPrepare prepare, VYR_CALLER)
{
    if (TOwned<T> child = BuildXmlChild<T>(parent, node, steps, prepare, here)) {
        Keep(place, std::move(child));
    }
}

/// The same for a child that must know nothing beforehand.
template <template <class, class> class TPlace, class T>
void AddChild(TPlace<T, SDestroy>& place, const SXmlState& parent, void* node, const SChildSteps& steps, VYR_CALLER)
{
    AddChild(
        place, parent, node, steps, [](T&) { return true; }, here);
}

}  // namespace vyr
