#pragma once

#include "../platform/Api.h"
#include "ParseXML.h"

namespace vyr {

struct SXmlKind;

/// What a parser holds between Create and Destroy, for its own use.
struct VYR_API SXmlState {
    SXmlState();
    virtual ~SXmlState();
    SXmlState(const SXmlState&) = delete;
    SXmlState& operator=(const SXmlState&) = delete;

    /// Reads the element; false: it cannot be used.
    virtual bool m_ProcessParse(void* root) = 0;

    const CXML* xml;  ///< the document, while it is parsed
    bool replace;     ///< what SetReplace said
};

/// The same with the record that State gives.
template <class TValues>
struct TXmlState : SXmlState {
    /// What the element said, zero and empty before its parse.
    TValues values{};
};

}  // namespace vyr

/// The one life of the parsers of the signalling's XML documents and elements: Create makes the record, Parse fills
/// it with copies of what the document says, Destroy frees it. A document of its own is let go of after its parse.
class VYR_API CXmlElement : public XMLBase {
  public:
    /// Frees nothing: the owner calls Destroy first.
    ~CXmlElement() override;

    bool Create() override;
    void Destroy() override;

  protected:
    CXmlElement();

    /// What the parser holds, of its class's own type; null before Create.
    template <class TState>
    TState* t_State() const
    {
        return static_cast<TState*>(m_state);
    }
    /// The record in it; null before Create.
    template <class TValues>
    const TValues* t_Values() const
    {
        return m_state ? &t_State<vyr::TXmlState<TValues>>()->values : nullptr;
    }
    /// What the class is called, and what it holds.
    virtual vyr::SXmlKind t_Kind() const = 0;

  private:
    bool m_ProcessParse(void* root) override;

    vyr::SXmlState* m_state;
};
