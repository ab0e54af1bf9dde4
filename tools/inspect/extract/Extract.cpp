#include "extract/Extract.h"

#include <cstdio>
#include <cstring>

#include "base/Gunzip.h"
#include "base/Json.h"
#include "base/Names.h"
#include "base/Text.h"
#include "model/Guide.h"
#include "model/Items.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_maxInflated = 8388608;

/// A text of ours as a part of a name: small letters, digits, '.' and '-'.
std::string Plain(const std::string& text)
{
    std::string plain;
    for (const char c : text) {
        const bool fits = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.';
        plain += fits ? c : c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : '-';
    }
    return plain;
}

/// "lls-224.0.23.60-4937"; what has no session is in "lls".
std::string FolderName(const char* kind, const std::string& session)
{
    return Plain(session.empty() ? std::string(kind) : std::string(kind) + ' ' + session);
}

std::uint64_t Hash(const std::string& text)
{
    return ContentHash({reinterpret_cast<const unsigned char*>(text.data()), text.size()});
}

/// What the bytes are inflated; empty: they are not compressed, or do not inflate.
std::vector<unsigned char> Inflated(SView bytes)
{
    std::vector<unsigned char> inflated;
    if (!IsGzip(bytes) || !Gunzip(bytes, k_maxInflated, inflated)) {
        inflated.clear();
    }
    return inflated;
}

}  // namespace

/// A file to be written.
struct CExtract::SPiece {
    const char* form;  ///< what it is of the item
    std::string name;  ///< behind the item's own
    std::string what;  ///< tells it apart from others of the item's kind and place
    std::vector<SView> bytes;
    TJson more = TJson::object();  ///< of the index

    std::uint64_t Size() const
    {
        std::uint64_t size = 0;
        for (const SView& part : bytes) {
            size += part.size;
        }
        return size;
    }
    std::uint64_t Hash() const
    {
        std::uint64_t hash = 0;
        for (const SView& part : bytes) {
            hash = hash * 31 + ContentHash(part);
        }
        return hash;
    }
};

/// What comes at a time, and is written whole or not at all. The first piece is what was sent.
struct CExtract::SItem {
    const SSource& source;
    std::string folder;
    std::string name;
    std::string what;  ///< tells it apart from others in the folder, its version aside
    TJson index;
    std::vector<SPiece> pieces;

    TKey Key(const SPiece& piece) const
    {
        const std::string all = source.file + '\n' + folder + '\n' + what + '\n' + piece.form + '\n' + piece.what;
        return {vyr::inspect::Hash(all), piece.Hash()};
    }
};

CExtract::CExtract(CReport& report, const std::string& folder, std::uint64_t limit)
    : m_report(report), m_folder(folder), m_limit(limit)
{
    m_report.AddChosenWitness(*this);
}

CExtract::~CExtract()
{
    m_report.RemoveWitness(*this);
}

/// Whether it has not been written yet, and can be.
bool CExtract::m_Takes(const SItem& item) const
{
    return !m_full && Error() == 0 && m_known.count(item.Key(item.pieces[0])) == 0;
}

void CExtract::Table(const STable& table)
{
    if (table.status == EStatus::REPEATED) {
        return;
    }
    const SLlsHeader& header = table.header;
    const unsigned char start[] = {header.tableId, header.groupId, header.groupCountMinus1, header.version};
    const char* known = TableName(header.tableId);
    const std::string kind = known != nullptr ? known : "table" + std::to_string(header.tableId);
    const std::string group = kind + "-group" + std::to_string(header.groupId);
    SItem item = {table.source,
                  FolderName("lls", table.stream),
                  group + "-version" + std::to_string(header.version),
                  group + (table.insideMultiTable ? " inside" : ""),
                  {{"type", "table"}},
                  {}};
    PutText(item.index, "stream", table.stream);
    PutNamed(item.index, "LLS_table_id", header.tableId, known);
    item.index["LLS_group_id"] = header.groupId;
    item.index["LLS_table_version"] = header.version;
    if (table.insideMultiTable) {
        item.index["insideSignedMultiTable"] = true;
    }
    item.pieces.push_back({"sent", ".lls", {}, {{start, sizeof start}, table.payload}});
    if (!m_Takes(item)) {
        return;
    }
    const std::vector<unsigned char> inflated = Inflated(table.payload);
    if (!inflated.empty()) {
        item.pieces.push_back({"inflated", ".xml", {}, {{inflated.data(), inflated.size()}}});
    } else if (std::strcmp(table.encoding, "XML") == 0) {
        item.pieces.push_back({"inflated", ".xml", {}, {table.payload}});
    }
    unsigned count = 0;
    for (const std::vector<unsigned char>& der : table.certificateBytes) {
        const std::string number = std::to_string(++count);
        item.pieces.push_back({"certificate", "-certificate" + number + ".der", {}, {{der.data(), der.size()}}});
    }
    m_Write(item);
}

void CExtract::Signalling(const SSignalling& signalling)
{
    if (signalling.status == EStatus::REPEATED) {
        return;
    }
    SItem item = {signalling.source, FolderName("sls", signalling.session), "object", {}, {{"type", "signalling"}}, {}};
    PutText(item.index, "session", signalling.session);
    PutList(item.index, "serviceIds", signalling.services);
    if (signalling.toi) {
        item.name = "toi" + ToiText(*signalling.toi);
        item.index["TSI"] = 0;
        PutToi(item.index, *signalling.toi);
    }
    PutText(item.index, "Content-Type", signalling.contentType);
    item.pieces.push_back({"sent", ".sls", {}, {signalling.sent}});
    if (!m_Takes(item)) {
        return;
    }
    if (signalling.gzip) {
        item.pieces.push_back({"inflated", ".txt", {}, {signalling.text}});
    }
    unsigned number = 0;
    for (const SPackagePart& part : signalling.parts) {
        const bool xml = !part.root.empty() || (!part.readAs.empty() && part.readAs[0] != "signature");
        const std::string name = (part.readAs.empty() ? "" : '-' + part.readAs[0]) + (xml ? ".xml" : "");
        item.pieces.push_back({"part", "-part" + std::to_string(++number) + name, part.contentLocation, {part.bytes}});
        TJson& more = item.pieces.back().more;
        PutText(more, "Content-Type", part.contentType);
        PutText(more, "Content-Location", part.contentLocation);
        PutList(more, "readAs", part.readAs);
    }
    // What is no package can be several documents, one behind the other.
    for (const SSlsDocument& document : signalling.documents) {
        if (signalling.parts.empty() && signalling.documents.size() > 1) {
            const std::string name = DocumentName(document.kind);
            item.pieces.push_back(
                {"part", "-part" + std::to_string(++number) + '-' + name + ".xml", name, {document.bytes}});
            item.pieces.back().more["readAs"] = {name};
        }
    }
    m_Write(item);
}

void CExtract::Message(const SMessage& message)
{
    if (message.status == EStatus::REPEATED) {
        return;
    }
    const std::string kind = "message" + std::to_string(message.id);
    SItem item = {message.source,
                  FolderName("mmt", message.session),
                  kind + "-version" + std::to_string(message.version),
                  kind,
                  {{"type", "message"}},
                  {}};
    PutText(item.index, "session", message.session);
    PutList(item.index, "serviceIds", message.services);
    if (message.packetId) {
        item.name = "packet" + std::to_string(*message.packetId) + '-' + item.name;
        item.what += ' ' + std::to_string(*message.packetId);
    }
    PutValue(item.index, "packet_id", message.packetId);
    PutNamed(item.index, "message_id", message.id, MessageName(message.id));
    item.index["version"] = message.version;
    item.pieces.push_back({"sent", ".mmt", {}, {message.sent}});
    if (!m_Takes(item)) {
        return;
    }
    const std::vector<unsigned char> inflated = Inflated(message.carried);
    const SView content = inflated.empty() ? message.carried : SView{inflated.data(), inflated.size()};
    if (content.size != 0) {
        item.pieces.push_back({"inflated", "-content", {}, {content}});
    }
    m_Write(item);
}

void CExtract::GuideObject(const SGuideObject& object)
{
    if (object.status == EStatus::REPEATED) {
        return;
    }
    const std::string kind = GuideObjectName(object.kind);
    SItem item = {object.source, FolderName("guide", object.session), kind, kind, {{"type", "guideObject"}}, {}};
    PutText(item.index, "session", object.session);
    PutValue(item.index, "TSI", object.tsi);
    if (object.tsi && object.toi) {
        item.name = "tsi" + std::to_string(*object.tsi) + "-toi" + ToiText(*object.toi) + '-' + kind;
        item.what += ' ' + std::to_string(*object.tsi);
        PutToi(item.index, *object.toi);
    }
    PutText(item.index, "Content-Location", object.contentLocation);
    item.index["name"] = kind;
    item.pieces.push_back({"sent", ".sent", object.contentLocation, {object.sent}});
    if (!m_Takes(item)) {
        return;
    }
    if (object.text.size != object.sent.size || object.gzip) {
        const char* name = object.kind == EGuideObject::DELIVERY_UNIT ? ".sgdu" : ".xml";
        item.pieces.push_back({"inflated", name, object.contentLocation, {object.text}});
    }
    unsigned number = 0;
    for (const SGuidePart& part : object.parts) {
        constexpr const char* k_names[] = {"other", "service", "content", "schedule"};
        const std::string name = k_names[part.type < 4 ? part.type : 0];
        item.pieces.push_back({"part",
                               "-part" + std::to_string(++number) + '-' + name + ".xml",
                               std::to_string(part.transportId),
                               {part.bytes},
                               {{"fragmentType", part.type},
                                {"fragmentTransportID", part.transportId},
                                {"fragmentVersion", part.version}}});
    }
    m_Write(item);
}

void CExtract::File(const SFile& file)
{
    const std::string session = "tsi" + std::to_string(file.tsi);
    SItem item = {file.source,
                  FolderName("files", file.session),
                  session + "-toi" + ToiText(file.toi),
                  session + ' ' + (file.contentLocation.empty() ? ToiText(file.toi) : file.contentLocation),
                  {{"type", "file"}, {"session", file.session}},
                  {}};
    PutList(item.index, "serviceIds", file.services);
    item.index["TSI"] = file.tsi;
    PutToi(item.index, file.toi);
    PutText(item.index, "Content-Location", file.contentLocation);
    PutText(item.index, "Content-Type", file.contentType);
    PutText(item.index, "Content-Encoding", file.contentEncoding);
    item.pieces.push_back({"sent", ".sent", {}, {file.sent}});
    if (!m_Takes(item)) {
        return;
    }
    const std::vector<unsigned char> inflated = Inflated(file.body);
    if (!inflated.empty()) {
        item.pieces.push_back({"inflated", ".file", {}, {{inflated.data(), inflated.size()}}});
    } else if (file.body.size != file.sent.size) {
        item.pieces.push_back({"inflated", ".file", {}, {file.body}});
    }
    m_Write(item);
}

void CExtract::m_Write(SItem& item)
{
    char number[16];
    std::snprintf(number, sizeof number, "%06zu-", m_items + 1);
    struct SNew {
        const SPiece& piece;
        std::string name;
        std::string line;
        TKey key;
    };
    std::vector<SNew> news;
    std::uint64_t bytes = 0;
    for (const SPiece& piece : item.pieces) {
        const TKey key = item.Key(piece);
        if (m_known.count(key) != 0) {
            continue;
        }
        const std::string name = number + Plain(item.name + piece.name);
        TJson index = {{"path", item.folder + '/' + name}, {"form", piece.form}, {"bytes", piece.Size()}};
        index["source"] = SourceJson(item.source);
        index.update(item.index);
        index.update(piece.more);
        news.push_back({piece, name, JsonLine(index), key});
        bytes += piece.Size() + news.back().line.size();
    }
    if (bytes > m_limit - m_bytes) {
        return m_Full(item.source, std::to_string(m_limit) + " bytes");
    }
    if (news.size() > k_mostFiles - m_files || (m_folder.Folders() == k_mostFolders && !m_folder.Has(item.folder))) {
        return m_Full(item.source, Counted(k_mostFiles, "file") + ", or " + Counted(k_mostFolders, "folder"));
    }
    ++m_items;
    m_bytes += bytes;
    for (const SNew& each : news) {
        if (!m_folder.Write(item.folder, each.name, each.piece.bytes, each.line)) {
            return;
        }
        ++m_files;
        m_known.insert(each.key);
    }
}

/// Nothing more is written, and that is told once.
void CExtract::m_Full(const SSource& source, const std::string& most)
{
    m_full = true;
    m_report.Finding(
        {ERule::EXTRACT_LIMIT, "what is to be written out is more than " + most + ": the rest is not written", source});
}

}  // namespace vyr::inspect
