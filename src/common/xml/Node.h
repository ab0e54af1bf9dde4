#pragma once

// What CXML has of nodes beside what common/XmlNode.h reads of them.

namespace vyr::xml {

/// The document's root element; null: none.
void* RootElement(void* document);
/// First child and next sibling of any kind; null: none.
void* FirstChild(void* node);
void* NextSibling(void* node);
/// Copy of a text by libxml2's allocator, which FreeText frees; null: memory is out.
char* NewText(const char* text);
void FreeText(char* text);

}  // namespace vyr::xml
