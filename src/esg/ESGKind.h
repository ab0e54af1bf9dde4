#pragma once

#include "common/ElementHandlers.h"
#include "common/XmlDocument.h"
#include "common/XmlRead.h"
#include "esg/ESGElement/ESGElement.h"
#include "platform/Log.h"

// What the parsers of the service guide share. A class is its record, a table of handlers for its child
// elements, and a function that reads its attributes; SESGKind ties the three to the one life cycle that
// CESGElement and CESGFragmentBase have for all of them.
//
// A handler takes the record and the child element. Most of them are made by the templates below from the
// member that the child ends up in: {"Link", vyr::TakeContent<&SIcon::link>}.

namespace vyr {

/// What a class of the guide is.
struct SESGKind {
    SHere where;               ///< where it is told: the source of the class, and a line of it
    const char* className;     ///< its name, as the log has it
    const char* element;       ///< name of the element that it parses
    const char* process;       ///< the step of reading it, as the log has it
    const char* otherElement;  ///< second name of the element, or null
    SESGState* (*create)();    ///< a new record
    void (*read)(SESGState& state, void* node);

    /// Where a message comes from that a function of the base has for the class.
    SHere Here(const char* function) const { return {where.file, function, where.line}; }
};

/// What a class with the record TState is: TRead(record, node) reads the attributes, the tables THandlers, one or none,
/// the children.
template <class TState, auto TRead, const auto&... THandlers>
const SESGKind& ElementKind(const char* className, const char* element, const char* process = "m_Process()",
                            const char* otherElement = nullptr, VYR_CALLER)
{
    static const SESGKind kind = {here,
                                  className,
                                  element,
                                  process,
                                  otherElement,
                                  []() -> SESGState* { return new TState; },
                                  [](SESGState& base, void* node) {
                                      auto& state = static_cast<TState&>(base);
                                      TRead(state, node);
                                      (DispatchChildren(&state, THandlers, node), ...);
                                  }};
    return kind;
}

/// True for "true", false for "false"; other text leaves it.
void Read(const CNodeText& text, bool& out);

/// Seconds since 1970 of a date such as "2026-01-31T20:15:00Z"; 0 for other text or none.
void ReadDate(void* node, const char* name, long long& out);

/// ReadAttribute; an attribute that is not there leaves the value.
template <class T>
void UpdateAttribute(void* node, const char* name, T& out)
{
    const CNodeText attribute = CNodeText::Attribute(node, name);
    if (attribute.Found()) {
        Read(attribute, out);
    }
}

/// What the attributes of `node` say of a file.
void ReadMediaInfo(SESGMediaInfo& info, void* node);
/// The same with the element's text.
void ReadMedia(SESGMedia& media, void* node);

template <class T>
void ReadContent(void* node, T& out)
{
    Read(CNodeText::Content(node), out);
}

template <class T>
void ReadContent(void* node, std::vector<T>& out)
{
    ReadContent(node, out.emplace_back());
}

/// The record of a member, from its pointer.
template <auto TMember>
struct SMember;
template <class TOf, class TValue, TValue TOf::*TMember>
struct SMember<TMember> {
    using TState = TOf;
};

/// Handler: the child's text becomes the member, or one more in a list.
template <auto TMember>
void TakeContent(typename SMember<TMember>::TState* state, void* node)
{
    ReadContent(node, state->*TMember);
}

template <class T>
T& Fresh(std::vector<T>& list)
{
    return list.emplace_back();
}

template <class T>
T& Fresh(std::unique_ptr<T>& single)
{
    single = std::make_unique<T>();
    return *single;
}

/// Handler: a record read by TRead(record, child) becomes the member, or one more in a list.
template <auto TMember, auto TRead>
void TakeRecord(typename SMember<TMember>::TState* state, void* node)
{
    TRead(Fresh(state->*TMember), node);
}

/// CESGElement::Parse inside the parse of another: memory that is out ends the whole.
struct SESGChild {
    static bool Parse(CESGElement& child) { return child.m_Parse(); }
};

/// Texts of the steps of building an element object, and the line that has them.
struct SESGSteps : SChildSteps {
    constexpr SESGSteps(const char* createText, const char* parseText, int at = __builtin_LINE())
        : SChildSteps{createText, parseText}, line(at)
    {
    }

    int line;
};

/// An element object made of a child, and parsed; null after logging the failed step.
template <class TChild>
TOwned<TChild> BuildElement(void* node, const SChildSteps& steps, const SHere& here)
{
    return BuildChild<TChild>(
        steps, here, [node](TChild& child) { return child.Create(NodeDocument(node), node); },
        [](TChild&) { return true; }, [](TChild& child) { return SESGChild::Parse(child); });
}

template <class TChild>
void Build(TOwned<TChild>& single, void* node, const SChildSteps& steps, VYR_CALLER)
{
    single = BuildElement<TChild>(node, steps, here);
}

template <class TChild>
void Build(TOwnedList<TChild>& list, void* node, const SChildSteps& steps, VYR_CALLER)
{
    if (TOwned<TChild> child = BuildElement<TChild>(node, steps, here)) {
        list.push_back(std::move(child));
    }
}

/// Handler: an element object made of the child becomes the member, in place of an earlier one, or one more
/// in a list.
template <auto TMember, const SESGSteps& TSteps>
void TakeElement(typename SMember<TMember>::TState* state, void* node)
{
    Build(state->*TMember, node, TSteps, {k_source.text, __func__, TSteps.line});
}

}  // namespace vyr
