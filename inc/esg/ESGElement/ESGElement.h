#pragma once

#include "../ESGState.h"

/// What the attributes of an element say of a file.
struct SESGMediaInfo {
    TESGText mimeType;  ///< MIMEType
    int width = 0;      ///< width, pixels
    int height = 0;     ///< height, pixels
    int dataSize = 0;   ///< dataSize, bytes
};

/// A file that an element points to.
struct SESGMedia : SESGMediaInfo {
    TESGText content;  ///< text: URI of the file
};

/// Base of the parsers of the elements in a service guide (OMA BCAST Service Guide, ATSC A/332). An object
/// works on one element of a document that somebody else holds and keeps alive until the parse is over: Create,
/// Parse once, Destroy, delete. The results are the record of State(), which each class has, copied from the
/// document; it is null before Create and good until Destroy. Not thread-safe.
class VYR_API CESGElement {
  public:
    /// Frees nothing: Destroy comes first, else "!m" is asserted.
    virtual ~CESGElement();
    CESGElement(const CESGElement&) = delete;
    CESGElement& operator=(const CESGElement&) = delete;

    /// Reads the element, and lets go of the document. False: the element is not of this class's name, or it
    /// was parsed before (asserted). Asserts "m".
    virtual bool Parse();

    /// Binds the object to the element `node` of the document `doc` (CXML::Doc). False, asserted, when it is
    /// bound already ("!m") or one of them is null ("doc", "node").
    bool Create(void* doc, void* node);
    /// Frees the record, not the document; the object can be created anew. Asserts "m".
    void Destroy();

  protected:
    CESGElement();
    /// The record, for the derived class; null before Create.
    const SESGState* t_State() const { return m; }

  private:
    friend struct vyr::SESGChild;

    virtual const vyr::SESGKind& t_Kind() const = 0;
    bool m_Parse();
    bool m_Process();

    SESGState* m;
    const vyr::SESGKind* m_kind;  ///< what the object is, from Create on
    void* m_node;                 ///< the element, somebody else's; null after the parse
};
