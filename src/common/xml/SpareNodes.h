#pragma once

#include "common/xml/LibXml.h"

// Elements, texts and attributes of freed documents, for the next document of the thread: libxml2 takes them
// from its context before it allocates. Half of what a small document costs is their allocation.
//
// They are what malloc gave and free takes: with other allocators, and with hooks of the host that want to be
// told of freed nodes, nothing is kept. A thread's nodes go when it ends; those of the main thread stay.

namespace vyr::xml {

class CSpareNodes;

/// Lends the thread's nodes to a context, and takes back what is left.
class CNodeLoan {
  public:
    explicit CNodeLoan(xmlParserCtxtPtr context);
    ~CNodeLoan();
    CNodeLoan(const CNodeLoan&) = delete;
    CNodeLoan& operator=(const CNodeLoan&) = delete;

  private:
    [[maybe_unused]] xmlParserCtxtPtr m_context;
    [[maybe_unused]] CSpareNodes* m_spare;
};

/// Takes the nodes out of a document that is about to be freed. Allocates nothing.
void KeepNodes(xmlDocPtr doc);

}  // namespace vyr::xml
