#pragma once

#include <cstddef>

namespace vyr::xml {

/// What an accepted document is like: UTF-8 without a zero byte, with or without document type, or anything else.
enum ETextForm { TEXT_UNTYPED, TEXT_TYPED, TEXT_OTHER };

/// Looks for what would cost libxml2 far more time or memory than its bytes are worth, before libxml2
/// sees it. Null: the document may be parsed. Else the reason it is refused, for the log:
/// - a start tag of more than 1,024 attributes (each is compared with each), or more comparisons of
///   attributes than one such tag and 64 for each byte of the document;
/// - more than 256 namespace declarations (searched for every prefix), or attributes declared that could be some;
/// - more than 16,384 different names (the dictionary stops growing), those of references and instructions
///   included, or as many identifiers (`xml:id`,
///   attributes declared ID, IDREF or IDREFS), or more than 8 ID attributes of one element;
/// - more than 1,024 catalog instructions before the root;
/// - in an internal subset: a parameter entity; an entity that could expand to more than 524,288 bytes or
///   references, or nests deeper than 64; more than 1,024 values of enumerated attribute types; more than
///   1,024 attribute defaults, or more than 4 M for all elements together, where each default counts its
///   bytes, 64 and the number of its element's defaults;
/// - encodings of which ASCII is no part but UTF-16, and a name that contradicts the byte order; with
///   libxml2 2.10 or newer also a name other than UTF-8 behind that one's mark, unless all is ASCII;
/// - what is not well-formed, where that would make libxml2 read on otherwise than this scan.
/// But for those names, comments, CDATA sections, instructions and texts count for nothing. The scan is exact because
/// it reads the characters that libxml2 reads (other encodings are decoded by its own decoders first), and never beyond
/// something that the two could take for different things. Most documents need far less of it: one that is too short
/// for any of this is only searched for a document type.
const char* RefusalOf(const char* data, std::size_t size, ETextForm* form = nullptr);

}  // namespace vyr::xml
