#include "content/MmtReader.h"

#include <cstdio>

#include "base/Gunzip.h"
#include "base/Json.h"
#include "base/Names.h"
#include "base/Text.h"
#include "common/RSAT.h"
#include "content/Certificates.h"
#include "content/LibraryPort.h"
#include "content/MessageHead.h"
#include "content/MmtContent.h"
#include "content/MmtDescriptors.h"
#include "content/MpdContent.h"
#include "content/SlsContent.h"
#include "mmt/desc/MMTUsbd.h"
#include "mmt/msg/MMTMsgAtsc3.h"
#include "mmt/msg/MMTMsgCri.h"
#include "mmt/msg/MMTMsgDci.h"
#include "mmt/msg/MMTMsgFactory.h"
#include "mmt/msg/MMTMsgMpi.h"
#include "mmt/msg/MMTMsgMpt.h"
#include "mmt/msg/MMTMsgPa.h"
#include "mmt/msg/MMTMsgPayload.h"
#include "mmt/msg/MMTMsgSmm.h"
#include "model/Content.h"

namespace vyr::inspect {

namespace {

/// What the library said while it parsed.
struct SRemarks {
    SRemarks() : refusal(Reason()), failedStep(FailedStep())
    {
        if (const SFailure* failure = LastFailure()) {
            unknownTags.insert(failure->unknownTags, failure->unknownTags + failure->tags);
        }
    }

    std::string refusal;
    std::string failedStep;
    std::set<unsigned> unknownTags;
};

/// Reads a parsed message and those it wraps.
class CMessageReader {
  public:
    CMessageReader(SRemarks& remarks, SMessageOutcome& outcome) : m_remarks(remarks), m_outcome(outcome) {}

    SContent Read(CMMTMsg& message, SView bytes);

  private:
    void m_Add(const char* key, const std::string& title, SContent part, SContent& content);
    void m_AddTable(const char* key, CMMTTbl& table, SContent& content);
    void m_AddUnlessRefused(const char* name, bool refused, SContent part, SContent& content);
    void m_ReadPa(CMMTMsgPa& message, SContent& content);
    void m_ReadMpi(CMMTMsgMpi& message, SContent& content);
    void m_ReadAtsc3(CMMTMsgAtsc3& message, SView bytes, SContent& content);
    void m_ReadAtsc3Content(CMMTMsgAtsc3& message, SView bytes, SContent& content);
    void m_ReadRsat(const CRSAT& rsat, SContent& content);
    void m_ReadMpd(const CMMTMsgAtsc3& message, SContent& content);
    void m_ReadOther(const CMMTMsgAtsc3& message, SView bytes, SContent& content);
    void m_ReadSigned(CMMTMsgSmm& message, SContent& content);

    SRemarks& m_remarks;
    SMessageOutcome& m_outcome;
};

SContent CMessageReader::Read(CMMTMsg& message, SView bytes)
{
    SContent content;
    switch (message.ClassType()) {
        case CMMTMsg::CLASS_TYPE_PA:
            m_ReadPa(static_cast<CMMTMsgPa&>(message), content);
            break;
        case CMMTMsg::CLASS_TYPE_MPI:
            m_ReadMpi(static_cast<CMMTMsgMpi&>(message), content);
            break;
        case CMMTMsg::CLASS_TYPE_MPT:
            m_AddTable("MP_table", *static_cast<CMMTMsgMpt&>(message).MPTable(), content);
            break;
        case CMMTMsg::CLASS_TYPE_CRI:
            m_AddTable("CRI_table", *static_cast<CMMTMsgCri&>(message).CRITable(), content);
            break;
        case CMMTMsg::CLASS_TYPE_DCI:
            m_AddTable("DCI_table", *static_cast<CMMTMsgDci&>(message).DCITable(), content);
            break;
        case CMMTMsg::CLASS_TYPE_ATSC3:
            m_ReadAtsc3(static_cast<CMMTMsgAtsc3&>(message), bytes, content);
            break;
        case CMMTMsg::CLASS_TYPE_SMM:
            m_ReadSigned(static_cast<CMMTMsgSmm&>(message), content);
            break;
        default: {
            const auto& payload = static_cast<const CMMTMsgPayload&>(message);
            content = MmtPayloadContent(payload);
            content.json["payload"] = Hex({payload.Payload(), payload.PayloadLength()});
        }
    }
    return content;
}

void CMessageReader::m_Add(const char* key, const std::string& title, SContent part, SContent& content)
{
    content.text += "  " + title + ": " + part.headline + '\n' + part.text;
    content.json[key] = std::move(part.json);
    content.faults.insert(content.faults.end(), part.faults.begin(), part.faults.end());
}

void CMessageReader::m_AddTable(const char* key, CMMTTbl& table, SContent& content)
{
    m_Add(key, MmtTableTitle(table.TableId()) + " version " + std::to_string(table.Version()), MmtTableContent(table),
          content);
}

/// Adds a document that the library has parsed, unless it refused it.
void CMessageReader::m_AddUnlessRefused(const char* name, bool refused, SContent part, SContent& content)
{
    const std::string& reason = m_remarks.refusal.empty() ? m_remarks.failedStep : m_remarks.refusal;
    if (refused && !reason.empty()) {
        content.faults.push_back(std::string(name) + " did not parse: " + reason);
        m_remarks.refusal.clear();
    } else {
        m_Add(name, name, std::move(part), content);
    }
}

void CMessageReader::m_ReadPa(CMMTMsgPa& message, SContent& content)
{
    content.headline = Counted(static_cast<std::uint64_t>(message.TableCount()), "table");
    TJson tables = TJson::array();
    for (int i = 0; i < message.TableCount(); ++i) {
        unsigned char id = 0;
        unsigned char version = 0;
        unsigned short length = 0;
        CMMTTbl* table = message.Table(i);
        if (table == nullptr || !message.GetTableInfo(i, id, version, length)) {
            continue;
        }
        m_AddTable("table", *table, content);
        tables.push_back(std::move(content.json["table"]));
        content.json.erase("table");
        if (id != table->TableId() || version != table->Version()) {
            m_outcome.faults.emplace_back(ERule::MESSAGE_NOT_PARSED,
                                          "the list of tables names " + MmtTableTitle(id) + " version " +
                                              std::to_string(version) + " where " + MmtTableTitle(table->TableId()) +
                                              " version " + std::to_string(table->Version()) + " is");
        }
    }
    content.json["tables"] = std::move(tables);
}

void CMessageReader::m_ReadMpi(CMMTMsgMpi& message, SContent& content)
{
    m_AddTable("MPI_table", *message.MPITable(), content);
    if (message.AssociatedMPTableFlag()) {
        m_AddTable("MP_table", *message.MPTable(), content);
    }
}

void CMessageReader::m_ReadAtsc3(CMMTMsgAtsc3& message, SView bytes, SContent& content)
{
    const unsigned type = message.ContentType();
    const char* name = ContentTypeName(type);
    const bool gzip = message.ContentCompression() == CMMTMsgAtsc3::k_gzip;
    m_outcome.services.insert(message.ServiceId());
    content.headline = Joined({(name != nullptr ? name : "content type " + std::to_string(type)) + " version " +
                                   std::to_string(message.ContentVersion()),
                               "service " + std::to_string(message.ServiceId()), gzip ? "gzip" : "",
                               message.Uri() != nullptr ? Quoted(message.Uri()) : ""});
    TJson& json = content.json;
    json["service_id"] = message.ServiceId();
    PutNamed(json, "atsc3_message_content_type", type, name);
    json["atsc3_message_content_version"] = message.ContentVersion();
    json["atsc3_message_content_compression"] = message.ContentCompression();
    PutText(json, "URI", message.Uri());
    json["atsc3_message_content_length"] = message.ContentLength();
    m_ReadAtsc3Content(message, bytes, content);
}

void CMessageReader::m_ReadAtsc3Content(CMMTMsgAtsc3& message, SView bytes, SContent& content)
{
    switch (message.ContentType()) {
        case CMMTMsgAtsc3::CONTENT_TYPE_USBD: {
            const CMMTUsbd& usbd = *message.UserServiceBundleDescription();
            constexpr unsigned short k_none = 0xFFFF;
            const bool numbered = usbd.ServiceId() != 0 && usbd.ServiceId() != k_none;
            m_AddUnlessRefused("BundleDescriptionMMT", !numbered && usbd.GlobalServiceId() == nullptr,
                               MmtUsbdContent(usbd), content);
            break;
        }
        case CMMTMsgAtsc3::CONTENT_TYPE_MPD:
            m_ReadMpd(message, content);
            break;
        case CMMTMsgAtsc3::CONTENT_TYPE_RSAT:
            m_ReadRsat(*message.RSAT(), content);
            break;
        case CMMTMsgAtsc3::CONTENT_TYPE_VSP:
        case CMMTMsgAtsc3::CONTENT_TYPE_CAPTION:
        case CMMTMsgAtsc3::CONTENT_TYPE_ASP:
        case CMMTMsgAtsc3::CONTENT_TYPE_SP:
        case CMMTMsgAtsc3::CONTENT_TYPE_LICENSE_URL:
            content.json["descriptors"] = TJson::array();
            message.GetDescriptors(
                [](void* to, CMMTDesc* descriptor) {
                    TJson json = DescriptorJson(*descriptor);
                    static_cast<SContent*>(to)->text += DescriptorText("    ", json);
                    Append(static_cast<SContent*>(to)->json, "descriptors", std::move(json));
                },
                &content);
            break;
        default:
            m_ReadOther(message, bytes, content);
    }
}

void CMessageReader::m_ReadRsat(const CRSAT& rsat, SContent& content)
{
    std::string timestamp;
    rsat.GetTimestamp(timestamp);
    if (timestamp.empty() && m_remarks.refusal.find("root element") != std::string::npos) {
        m_remarks.refusal = "its timestamp is missing";
    }
    m_AddUnlessRefused("RSAT", timestamp.empty(), RsatContent(rsat), content);
}

void CMessageReader::m_ReadMpd(const CMMTMsgAtsc3& message, SContent& content)
{
    std::string document;
    message.GetContent(
        [](void* to, unsigned char* data, unsigned length) {
            if (data != nullptr) {
                static_cast<std::string*>(to)->assign(reinterpret_cast<const char*>(data), length);
            }
        },
        &document);
    std::string reason;
    if (COptionalContent mpd = ReadMpd(document, reason)) {
        m_Add("MPD", "MPD", std::move(*mpd), content);
    } else {
        content.faults.push_back("MPD did not parse: " + (m_remarks.refusal.empty() ? reason : m_remarks.refusal));
        m_remarks.refusal.clear();
    }
}

/// A content that the library does not keep: taken from the message itself.
void CMessageReader::m_ReadOther(const CMMTMsgAtsc3& message, SView bytes, SContent& content)
{
    constexpr unsigned k_held = 3;
    SMessageHead head;
    ReadMessageHead(bytes, head);
    const std::optional<SView> sent = Atsc3Content(head.payload);
    if (!sent) {
        content.faults.emplace_back("the content is not whole");
        return;
    }
    SView plain = *sent;
    std::vector<unsigned char> inflated;
    if (IsGzip(plain)) {
        if (!Gunzip(plain, CMMTMsgAtsc3::k_maxContent, inflated)) {
            content.faults.emplace_back("the content does not inflate, or is larger than 512 KiB");
            return;
        }
        plain = {inflated.data(), inflated.size()};
    }
    const std::string text(reinterpret_cast<const char*>(plain.data), plain.size);
    const bool held = message.ContentType() == k_held;
    m_Add(held ? "HELD" : "content", held ? "HELD" : "content", AppDataContent(text), content);
}

void CMessageReader::m_ReadSigned(CMMTMsgSmm& message, SContent& content)
{
    const SView wrapped = {reinterpret_cast<const unsigned char*>(message.MessageData().data()),
                           message.MessageData().size()};
    const std::string_view bytes = message.Signature();
    const SSignature signature = ReadSignature(std::vector<unsigned char>(bytes.begin(), bytes.end()));
    SMessageHead head;
    const bool headed = ReadMessageHead(wrapped, head);
    const std::string title = headed ? MessageTitle(head.id) : "no message";
    content.headline = "service " + std::to_string(message.ServiceId()) + ", wraps " + title;
    content.text =
        "  signature over " + Counted(message.SignedBlock().size(), "byte") + ": " + SignatureText(signature) + '\n';
    content.json["service_id"] = message.ServiceId();
    content.json["signedSize"] = message.SignedBlock().size();
    content.json["signature"] = SignatureJson(signature);
    if (!signature.error.empty()) {
        m_outcome.faults.emplace_back(ERule::BAD_SIGNATURE, "the signature is " + signature.error);
    }
    if (!headed) {
        m_outcome.faults.emplace_back(ERule::MESSAGE_NOT_PARSED, "there is no whole message in it");
        return;
    }
    TJson json = TJson::object();
    PutNamed(json, "message_id", head.id, MessageName(head.id));
    json["version"] = head.version;
    if (message.Message()) {
        SContent inner = Read(*message.Message(), wrapped);
        content.text += "  " + title + " version " + std::to_string(head.version) +
                        (inner.headline.empty() ? "" : ": " + inner.headline) + '\n' + Indented(inner.text, "  ");
        content.faults.insert(content.faults.end(), inner.faults.begin(), inner.faults.end());
        json.update(inner.json);
    } else {
        m_outcome.faults.emplace_back(
            ERule::MESSAGE_NOT_PARSED,
            "the " + title + " message in it is not supported or did not parse" +
                (m_remarks.refusal.empty() ? m_remarks.failedStep.empty() ? "" : ": " + m_remarks.failedStep
                                           : ": " + m_remarks.refusal));
        m_remarks.refusal.clear();
    }
    content.json["message"] = std::move(json);
}

void CountDescriptor(void* count, CMMTDesc* /*descriptor*/)
{
    ++*static_cast<std::uint64_t*>(count);
}

}  // namespace

SMessageOutcome ReadMessage(SView bytes)
{
    SMessageOutcome outcome;
    const unsigned size = static_cast<unsigned>(bytes.size);
    const std::shared_ptr<CMMTMsg> message = CMMTMsgFactory::CreateMessage(bytes.data, size);
    outcome.supported = message != nullptr;
    if (!message) {
        return outcome;
    }
    IParse::SItem item = {bytes.data, size, size * 8, 0, true};
    const bool parsed = message->Parse(&item);
    SRemarks remarks;
    if (!parsed) {
        outcome.reason = !remarks.refusal.empty()      ? remarks.refusal
                         : !remarks.failedStep.empty() ? remarks.failedStep
                                                       : "it ends inside a field";
        return outcome;
    }
    message->Process();
    std::uint64_t descriptors = 0;
    message->GetDescriptors(CountDescriptor, &descriptors);
    SContent content = CMessageReader(remarks, outcome).Read(*message, bytes);
    content.headline = Joined({content.headline, descriptors != 0 ? Counted(descriptors, "descriptor") : ""});
    for (const unsigned tag : remarks.unknownTags) {
        content.text += "  a descriptor of tag " + std::to_string(tag) + " is not known: none behind it is read\n";
        Append(content.json, "unknownDescriptorTags", tag);
    }
    for (const std::string& fault : content.faults) {
        outcome.faults.emplace_back(ERule::DOCUMENT_NOT_PARSED, fault);
    }
    if (!remarks.refusal.empty()) {
        outcome.faults.emplace_back(ERule::MESSAGE_NOT_PARSED, "a part did not parse: " + remarks.refusal);
    }
    content.whole = outcome.faults.empty();
    outcome.content = std::move(content);
    return outcome;
}

}  // namespace vyr::inspect
