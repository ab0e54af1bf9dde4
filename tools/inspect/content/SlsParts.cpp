#include "content/SlsParts.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "base/Gunzip.h"
#include "base/Text.h"
#include "content/Certificates.h"
#include "content/Roots.h"
#include "model/Content.h"

namespace vyr::inspect {

namespace {

using TView = std::string_view;

constexpr std::size_t k_longestField = 1024;
constexpr char k_envelopeName[] = "metadataEnvelope";
constexpr char k_signatureName[] = "signature";

/// Header fields of a package or of a part.
struct SHead {
    std::string type;  ///< with its parameters
    std::string location;
    std::string encoding;
};

TView Trimmed(TView text)
{
    constexpr TView k_blank = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(k_blank);
    return begin == TView::npos ? TView() : text.substr(begin, text.find_last_not_of(k_blank) - begin + 1);
}

std::string Lower(TView text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

/// "multipart/related", without parameters.
std::string MediaType(const std::string& type)
{
    return Lower(Trimmed(TView(type).substr(0, type.find(';'))));
}

/// A parameter of a field, without its quotes; empty: not given.
std::string Parameter(const std::string& field, TView name)
{
    for (std::size_t at = field.find(';'); at < field.size();) {
        const std::size_t equals = field.find('=', at);
        if (equals == std::string::npos) {
            break;
        }
        const std::string key = Lower(Trimmed(TView(field).substr(at + 1, equals - at - 1)));
        const bool quoted = equals + 1 < field.size() && field[equals + 1] == '"';
        const std::size_t begin = equals + (quoted ? 2 : 1);
        const std::size_t end = std::min(field.find(quoted ? '"' : ';', begin), field.size());
        if (key == name) {
            return quoted ? field.substr(begin, end - begin)
                          : std::string(Trimmed(TView(field).substr(begin, end - begin)));
        }
        at = field.find(';', end);
    }
    return {};
}

/// Reads the fields from `at` on, which becomes the place where the content begins: behind an empty line, or at what
/// is no field.
SHead ReadHead(TView text, std::size_t& at)
{
    constexpr int k_mostLines = 64;
    SHead head;
    std::string other;
    std::string* last = &other;
    for (int line = 0; line < k_mostLines && at < text.size(); ++line) {
        const std::size_t end = std::min(text.find('\n', at), text.size() - 1);
        const TView field = text.substr(at, end + 1 - at).substr(0, k_longestField);
        const std::size_t colon = field.find(':');
        const bool folded = field[0] == ' ' || field[0] == '\t';
        const bool empty = Trimmed(field).empty();
        if (!empty && !folded && (colon == TView::npos || field[0] == '<' || field.substr(0, 2) == "--")) {
            break;
        }
        at = end + 1;
        if (empty) {
            break;
        }
        if (!folded) {
            const std::string name = Lower(Trimmed(field.substr(0, colon)));
            last = name == "content-type"                ? &head.type
                   : name == "content-location"          ? &head.location
                   : name == "content-transfer-encoding" ? &head.encoding
                                                         : &other;
            last->clear();
        }
        last->append(last->empty() ? "" : " ").append(Trimmed(folded ? field : field.substr(colon + 1)));
        last->resize(std::min(last->size(), k_longestField));
    }
    return head;
}

class CPackageReader {
  public:
    CPackageReader(SView text, const std::vector<SSlsText>& documents)
        : m_text(reinterpret_cast<const char*>(text.data), text.size),
          m_documents(documents),
          m_envelope(FindEnvelope(text))
    {
    }

    SPackage Read()
    {
        std::size_t at = std::min(m_text.find_first_not_of(" \t\r\n"), m_text.size());
        if (m_text.substr(at, 2) == "--") {
            const TView line = m_text.substr(at + 2, m_text.find('\n', at) - at - 2);
            m_boundaries.emplace_back(Trimmed(line.substr(0, k_longestField)));
        } else {
            m_Open(ReadHead(m_text, at));
        }
        if (m_boundaries.empty() || m_boundaries[0].empty()) {
            return {};
        }
        at = m_text.substr(at, 2) == "--" ? at : m_NextLine(at);
        while (!m_boundaries.empty() && at < m_text.size()) {
            m_Boundary(at);
            at = m_NextLine(at);
        }
        m_package.ended = m_boundaries.empty() && !m_package.parts.empty();
        m_EndPart(m_text.size());
        if (m_signed && !m_package.signature) {
            m_package.signatureFault = "the package is multipart/signed, and has no signature";
        }
        return std::move(m_package);
    }

  private:
    static constexpr std::size_t k_deepest = 4;

    /// Where the next line that may be a boundary begins.
    std::size_t m_NextLine(std::size_t at) const
    {
        const std::size_t found = m_text.find("\n--", at);
        return found == TView::npos ? m_text.size() : found + 1;
    }

    /// Whether the head is that of a package.
    bool m_Open(const SHead& head)
    {
        const std::string type = MediaType(head.type);
        const std::string boundary = Parameter(head.type, "boundary");
        if (type.compare(0, 10, "multipart/") != 0 || boundary.empty() || m_boundaries.size() == k_deepest) {
            return false;
        }
        if (type == "multipart/signed" && !m_signed) {
            m_signed = true;
            m_signedLevel = m_boundaries.size();
        }
        m_boundaries.push_back(boundary);
        return true;
    }

    /// Looks whether the line is a boundary: of the innermost package, or of one around it.
    void m_Boundary(std::size_t& at)
    {
        for (std::size_t level = m_boundaries.size(); level-- > 0;) {
            const std::string& boundary = m_boundaries[level];
            if (m_text.compare(at + 2, boundary.size(), boundary) != 0) {
                continue;
            }
            const TView rest = m_text.substr(at + 2 + boundary.size());
            const bool last = rest.substr(0, 2) == "--";
            const std::size_t end = std::min(rest.find('\n'), rest.size());
            if (!last && !Trimmed(rest.substr(0, std::min<std::size_t>(end, 80))).empty()) {
                continue;
            }
            m_EndPart(at);
            m_boundaries.resize(level + (last ? 0 : 1));
            if (m_signed && level == m_signedLevel) {
                m_SignedBoundary(at, std::min(m_text.size() - rest.size() + end + 1, m_text.size()));
            }
            if (!last) {
                at = std::min(m_text.size() - rest.size() + end + 1, m_text.size());
                m_head = ReadHead(m_text, at);
                m_inPart = !m_Open(m_head);
                m_begin = at;
                // The next boundary may be the next line.
                at -= at > 0 ? 1 : 0;
            }
            return;
        }
    }

    bool m_Holds(SView part, const unsigned char* at) const { return at >= part.data && at < part.data + part.size; }

    /// What is signed stands between the first two boundaries of the package, without the end of its last line.
    void m_SignedBoundary(std::size_t line, std::size_t behind)
    {
        if (m_signedBoundaries == 0) {
            m_signedBegin = behind;
        } else if (m_signedBoundaries == 1) {
            m_signedEnd = m_WithoutLineEnd(line, m_signedBegin);
        }
        ++m_signedBoundaries;
    }

    /// Where the text that begins there ends, in front of the line.
    std::size_t m_WithoutLineEnd(std::size_t line, std::size_t begin) const
    {
        line -= line > begin && m_text[line - 1] == '\n' ? 1 : 0;
        return line - (line > begin && m_text[line - 1] == '\r' ? 1 : 0);
    }

    SView m_Part(std::size_t begin, std::size_t end) const
    {
        return {reinterpret_cast<const unsigned char*>(m_text.data()) + begin, end > begin ? end - begin : 0};
    }

    /// Takes the part that ends before the line at `end`, if there is one.
    void m_EndPart(std::size_t end)
    {
        if (!m_inPart) {
            return;
        }
        m_inPart = false;
        const SView body = m_Part(m_begin, end < m_text.size() ? m_WithoutLineEnd(end, m_begin) : end);
        SPackagePart part = {m_head.type, m_head.location, body.size, {}, {}, body};
        if (m_Holds(body, m_envelope.data)) {
            part.readAs.emplace_back(k_envelopeName);
            m_package.hasEnvelope = true;
        }
        for (const SSlsText& document : m_documents) {
            if (m_Holds(body, document.bytes.data)) {
                part.readAs.emplace_back(DocumentName(document.kind));
            }
        }
        const std::string type = MediaType(part.contentType);
        if (!m_package.signature &&
            (type == "application/pkcs7-signature" || type == "application/x-pkcs7-signature")) {
            m_Signature(body);
            part.readAs.emplace_back(k_signatureName);
        }
        if (m_package.parts.size() == k_mostParts) {
            ++m_package.moreParts;
            return;
        }
        if (part.readAs.empty()) {
            part.root = RootElement(body);
            m_package.hasUnread = true;
            m_package.unreadHash = m_package.unreadHash * 31 + ContentHash(body);
        }
        m_package.parts.push_back(std::move(part));
    }

    void m_Signature(SView body)
    {
        const SSignature signature = Lower(m_head.encoding) == "base64"
                                         ? ReadSignature(std::string(body.data, body.data + body.size))
                                         : ReadSignature(std::vector<unsigned char>(body.data, body.data + body.size));
        m_package.signature.emplace().headline = SignatureText(signature);
        m_package.signature->json = SignatureJson(signature);
        if (m_signedBoundaries == 2 && m_boundaries.size() == m_signedLevel + 1) {
            m_package.signedBytes = SignedText(signature, m_Part(m_signedBegin, m_signedEnd));
        }
        m_package.signatureFault = signature.error.empty() ? "" : "the signature of the package is " + signature.error;
    }

    const TView m_text;
    const std::vector<SSlsText>& m_documents;
    const SView m_envelope;
    std::vector<std::string> m_boundaries;  ///< of the package, and of those within it that are open
    bool m_signed = false;
    std::size_t m_signedLevel = 0;  ///< of the package that is signed, in m_boundaries
    int m_signedBoundaries = 0;     ///< of it that came
    std::size_t m_signedBegin = 0;
    std::size_t m_signedEnd = 0;
    bool m_inPart = false;
    SHead m_head;             ///< of the part
    std::size_t m_begin = 0;  ///< of its content
    SPackage m_package;
};

/// "a, b and 3 more": the first few of some names, and those that have none.
class CNames {
  public:
    void Add(const std::string& name)
    {
        ++m_count;
        if (name.empty()) {
            ++m_nameless;
        } else if (m_names.size() < k_shown) {
            m_names.push_back(Short(Printable(name)));
        }
    }
    /// "2 items " and what is said of them; empty for none.
    std::string Text(const char* what, const char* of) const
    {
        const std::size_t more = m_count - m_nameless - m_names.size();
        return m_count == 0 ? std::string()
                            : Counted(m_count, what) + of +
                                  Joined({Joined(m_names),
                                          m_nameless != 0 ? std::to_string(m_nameless) + " without Content-Location"
                                                          : std::string()}) +
                                  (more != 0 ? " and " + std::to_string(more) + " more" : "");
    }

  private:
    static constexpr std::size_t k_shown = 8;
    std::size_t m_count = 0;
    std::size_t m_nameless = 0;
    std::vector<std::string> m_names;
};

bool Comparable(const SPackage& package)
{
    return package.hasEnvelope && package.moreParts == 0;
}

/// As far as a field is read.
std::string Field(const std::string& text)
{
    return std::string(Trimmed(text)).substr(0, k_longestField);
}

}  // namespace

SPackage ReadPackage(SView text, const std::vector<SSlsText>& documents)
{
    return CPackageReader(text, documents).Read();
}

std::string ItemsWithoutPart(const SPackage& package, const std::vector<SEnvelopeItem>& items)
{
    std::set<std::string> locations;
    for (const SPackagePart& part : package.parts) {
        locations.insert(part.contentLocation);
    }
    CNames names;
    for (const SEnvelopeItem& item : items) {
        if (item.metadataURI && !item.metadataURI->empty() && locations.count(Field(*item.metadataURI)) == 0) {
            names.Add(*item.metadataURI);
        }
    }
    return Comparable(package) ? names.Text("item", " of the metadata envelope without a part in the package: ")
                               : std::string();
}

std::string PartsWithoutItem(const SPackage& package, const std::vector<SEnvelopeItem>& items)
{
    std::set<std::string> named;
    for (const SEnvelopeItem& item : items) {
        named.insert(Field(item.metadataURI.value_or("")));
    }
    CNames names;
    for (const SPackagePart& part : package.parts) {
        const bool ours =
            !part.readAs.empty() && (part.readAs[0] == k_envelopeName || part.readAs[0] == k_signatureName);
        if (!ours && (part.contentLocation.empty() || named.count(part.contentLocation) == 0)) {
            names.Add(part.contentLocation);
        }
    }
    return Comparable(package) ? names.Text("part", " of the package without an item in the metadata envelope: ")
                               : std::string();
}

}  // namespace vyr::inspect
