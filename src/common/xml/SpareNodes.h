#pragma once

#include "common/xml/LibXml.h"

// Elements, texts and attributes of freed documents, for the next document of the thread: libxml2 takes them
// from its context before it allocates. Half of what a small document costs is their allocation.
//
// They are what malloc gave and free takes: with other allocators, and with hooks of the host that want to be
// told of freed nodes, nothing is kept. A thread's nodes go when it ends; those of the main thread stay.

namespace vyr::xml {

/// Lends the thread's nodes to a context, which frees what it is not relieved of.
void LendNodes(xmlParserCtxtPtr context);
/// Takes back what is left.
void TakeBackNodes(xmlParserCtxtPtr context);
/// Takes the nodes out of a document that is about to be freed. Allocates nothing.
void KeepNodes(xmlDocPtr doc);

}  // namespace vyr::xml
