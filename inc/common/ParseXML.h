#pragma once

#include "../platform/Api.h"
#include "XML.h"

namespace vyr {
struct SXmlChild;
}

/// Base of every parser of an XML signalling document or of one element inside such a document.
/// Life: construct, Create, Parse any number of times, Destroy, delete. A document is kept from a
/// successful Parse to the next Parse or Destroy, unless the class lets go of it. An object is used by one
/// thread at a time.
///
/// Out of memory is a failed Create or Parse, with a line in the log; what was held before is still held, but for
/// what the document had taken the place of by then.
/// Callbacks of subclasses come inside Parse, on its thread. They may call anything of the object but Parse
/// and Destroy, which are asserted there ("!m->parsing") and do nothing, and may throw: the exception leaves
/// Parse, the document is let go of, and the object can be used again.
class VYR_API XMLBase {
  public:
    XMLBase();

  private:
    virtual bool m_ProcessParse(void* root) = 0;

  public:
    /// Does not call Destroy: the owner does.
    virtual ~XMLBase();
    XMLBase(const XMLBase&) = delete;
    XMLBase& operator=(const XMLBase&) = delete;

    /// Makes the parser ready; a second call is asserted: false.
    virtual bool Create() = 0;
    /// Frees everything; the object can be created anew. Subclasses end by calling this level's own,
    /// which lets go of the document if one is held.
    virtual void Destroy() = 0;

    /// Parses a document in memory with the object's default `compressed` flag (false at first).
    virtual bool Parse(const char* buffer, unsigned int length);
    /// Parses a document in memory. False: not a document of this kind; no document is held then,
    /// and what an earlier parse left stays unless the class says otherwise.
    virtual bool Parse(const char* buffer, unsigned int length, bool compressed);
    /// Extension, off by default, of the classes whose lists pile up from parse to parse until Destroy: what a
    /// document brings takes the place of what the last one left. Held is then what one document holds, 64 bytes
    /// at most for each of its own. A document that does not parse leaves what is held. What was handed out
    /// before is gone with a Parse. Stays as it is set through Destroy and Create.
    void SetReplace(bool replace) { t_replace = replace; }
    /// Parses the element `root` of a document that somebody else holds and keeps alive.
    virtual bool Parse(void* doc, void* root);

    /// Whether a Parse of this object is under way, as in a callback.
    bool Parsing() const { return m_parsing; }

  protected:
    CXML t_xml;         ///< the document, or the view of somebody else's
    bool t_compressed;  ///< the default flag of the two-argument Parse
    /// Whether a document in memory is kept after its parse; true at first. False in a class whose results are all
    /// copies: the tree needs tens of bytes for a byte of text.
    bool t_keepsDocument;
    bool t_replace;  ///< as SetReplace said

  private:
    friend struct vyr::SXmlChild;
    struct SKeeper;

    bool m_ParseElement(void* doc, void* root);

    bool m_parsing;
};
