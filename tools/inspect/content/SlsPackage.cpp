#include "content/SlsPackage.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "base/Gunzip.h"
#include "common/XML.h"
#include "content/LibraryPort.h"

namespace vyr::inspect {

namespace {

using TView = std::string_view;

constexpr std::size_t k_maxDocument = 131071;  ///< bytes that the library parses

struct SKind {
    ESlsDocument kind;
    TView start;
    TView otherStart;
    TView end;
    TView otherEnd;
    std::size_t extra;  ///< bytes behind the end tag that the library counts in
};

constexpr SKind k_kinds[] = {{ESlsDocument::USBD, "<bundleDescriptionROUTE", "<BundleDescriptionROUTE",
                              "</bundleDescriptionROUTE>", "</BundleDescriptionROUTE>", 1},
                             {ESlsDocument::STSID, "<S-TSID", "", "</S-TSID>", "", 1},
                             {ESlsDocument::EFDT, "<EFDT", "", "</EFDT>", "", 0},
                             {ESlsDocument::MPD, "<MPD", "", "</MPD>", "", 1},
                             {ESlsDocument::APPLICATION_LIST, "<ApplicationList", "", "</ApplicationList>", "", 1},
                             {ESlsDocument::HELD, "<HELD", "", "</HELD>", "", 1},
                             {ESlsDocument::RSAT, "<RSAT", "", "</RSAT>", "", 1}};

/// The text as the library searches it: up to the first zero byte.
TView Searched(SView text)
{
    const TView all(reinterpret_cast<const char*>(text.data), text.size);
    return all.substr(0, all.find('\0'));
}

SView Bytes(TView text)
{
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

/// Linear in the text, which string_view's own search is not quite: it stops at every '<'.
std::size_t Find(TView text, TView tag, std::size_t from)
{
    if (from >= text.size()) {
        return TView::npos;
    }
    const void* found = memmem(text.data() + from, text.size() - from, tag.data(), tag.size());
    return found != nullptr ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data()) : TView::npos;
}

std::size_t Find(TView text, TView tag, TView otherTag, std::size_t from, TView& found)
{
    found = tag;
    std::size_t at = Find(text, tag, from);
    if (at == TView::npos && !otherTag.empty()) {
        found = otherTag;
        at = Find(text, otherTag, from);
    }
    return at;
}

bool IsNameByte(char c)
{
    return std::strchr("<>/ \t\r\n\"'=", c) == nullptr;
}

TView Envelope(TView text)
{
    constexpr TView k_name = "metadataEnvelope";
    constexpr std::size_t k_maxPrefix = 64;
    const std::size_t name = Find(text, k_name, 0);
    if (name == TView::npos) {
        return {};
    }
    std::size_t begin = name;
    while (begin > 0 && name - begin < k_maxPrefix && IsNameByte(text[begin - 1])) {
        --begin;
    }
    if (begin == 0 || text[begin - 1] != '<') {
        return {};
    }
    const std::string end = "</" + std::string(text.substr(begin, name - begin)) + std::string(k_name) + '>';
    const std::size_t last = Find(text, end, name);
    return last == TView::npos ? text.substr(begin - 1) : text.substr(begin - 1, last + end.size() - begin + 1);
}

}  // namespace

std::vector<SSlsText> FindSlsDocuments(SView bytes)
{
    const TView text = Searched(bytes);
    std::vector<SSlsText> documents;
    for (const SKind& kind : k_kinds) {
        // An EFDT of its own is looked for only where there is no S-TSID, which has others inside.
        if (kind.kind == ESlsDocument::EFDT && Find(text, "<S-TSID", 0) != TView::npos) {
            continue;
        }
        TView tag;
        const std::size_t start = Find(text, kind.start, kind.otherStart, 0, tag);
        if (start == TView::npos) {
            continue;
        }
        const std::size_t end = Find(text, kind.end, kind.otherEnd, start, tag);
        const bool ended = end != TView::npos;
        const std::size_t size = ended ? end + tag.size() - start : text.size() - start;
        const SView document = Bytes(text.substr(start, size));
        documents.push_back(
            {kind.kind, document, ended, ended && size + kind.extra <= k_maxDocument, ContentHash(document)});
    }
    return documents;
}

SView FindEnvelope(SView bytes)
{
    const TView envelope = Envelope(Searched(bytes));
    return envelope.empty() ? SView{} : Bytes(envelope);
}

std::string PackageType(SView bytes)
{
    constexpr TView k_field = "content-type:";
    TView text = Searched(bytes);
    for (int line = 0; line < 16 && !text.empty() && text.front() != '<'; ++line) {
        const std::size_t end = text.find('\n');
        TView field = text.substr(0, end);
        const bool found = field.size() >= k_field.size() &&
                           std::equal(k_field.begin(), k_field.end(), field.begin(), [](char name, char c) {
                               return name == (c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
                           });
        if (found) {
            field.remove_prefix(std::min(field.find_first_not_of(" \t", k_field.size()), field.size()));
            return std::string(field.substr(0, field.find_first_of("; \t\r")));
        }
        text.remove_prefix(end == TView::npos ? text.size() : end + 1);
    }
    return {};
}

std::vector<SEnvelopeItem> ReadEnvelope(SView bytes, std::string& reason)
{
    std::vector<SEnvelopeItem> items;
    const TView envelope = Envelope(Searched(bytes));
    if (envelope.empty()) {
        return items;
    }
    CXML xml;
    void* root = nullptr;
    if (envelope.size() > k_maxDocument || !xml.Create(envelope.data(), static_cast<int>(envelope.size()), false)) {
        reason = envelope.size() > k_maxDocument ? "longer than 131,071 bytes" : Reason();
        return items;
    }
    xml.MoveRoot(&root);
    for (void* node = xml.MoveChild(root); node != nullptr; node = xml.MoveNext(node)) {
        if (xml.Compare(node, "item")) {
            SEnvelopeItem item;
            const auto read = [&](const char* name, std::optional<std::string>& value) {
                bool found = false;
                const std::string text = xml.getStringProp(node, name, &found);
                if (found) {
                    value = text;
                }
            };
            read("metadataURI", item.metadataURI);
            read("version", item.version);
            read("contentType", item.contentType);
            items.push_back(std::move(item));
        }
    }
    xml.Destroy();
    return items;
}

}  // namespace vyr::inspect
