#include "model/Rule.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace vyr::inspect {

namespace {

constexpr char k_input[] = "The input";
constexpr char k_lls[] = "LLS tables";
constexpr char k_list[] = "The service list";
constexpr char k_time[] = "Time";
constexpr char k_alerts[] = "Alerts";
constexpr char k_ratings[] = "Ratings";
constexpr char k_signalling[] = "Signalling of services";
constexpr char k_delivery[] = "What is on the air";
constexpr char k_mmt[] = "MMT";
constexpr char k_signatures[] = "Certificates and signatures";
constexpr char k_guide[] = "The service guide";

constexpr ESeverity k_note = ESeverity::NOTE;
constexpr ESeverity k_warning = ESeverity::WARNING;
constexpr ESeverity k_error = ESeverity::ERROR;

}  // namespace

// Names of what is no sentence of this table stand in the messages of the findings.
const std::array<SRule, k_rules> k_ruleTable = {{
    {ERule::INPUT_MISSING, k_input, "input-missing", k_error, "Nothing is said of the broadcast.",
     "Check the name of the file, or of the interface.", ""},
    {ERule::INPUT_UNREADABLE, k_input, "input-unreadable", k_error, "Nothing is said of the broadcast.",
     "Check the permissions of the file; to read an interface, those of the tool.", ""},
    {ERule::INTERFACE_LOST, k_input, "interface-lost", k_error, "What came behind that is not judged.",
     "Look at why the interface went away.", ""},
    {ERule::INPUT_DIRECTORY, k_input, "input-directory", k_error, "Nothing is said of the broadcast.",
     "Name the files in the directory.", ""},
    {ERule::INPUT_EMPTY, k_input, "input-empty", k_error, "Nothing is said of the broadcast.",
     "Capture again, and look at why nothing was written.", ""},
    {ERule::INPUT_UNKNOWN, k_input, "input-unknown", k_error, "Nothing is said of the broadcast.",
     "Give a capture, a raw table, signalling, a message or a part of the guide.", ""},
    {ERule::INPUT_TOO_LARGE, k_input, "input-too-large", k_error, "Nothing is said of the broadcast.",
     "Give a raw file that holds one table, package, message or unit.", ""},
    {ERule::CAPTURE_DAMAGED, k_input, "capture-damaged", k_error, "What came behind the damage is not judged.",
     "Capture again, or repair the file; a capture that was cut off by its program ends like this.", ""},
    {ERule::LINK_TYPE, k_input, "link-type", k_error,
     "Nothing is said of the broadcast, or of what comes behind the packet that the message names.",
     "Capture on another interface, or convert the capture to Ethernet or raw IP; of several interfaces in one file, "
     "keep one.",
     ""},
    {ERule::PACKETS_CUT, k_input, "packets-cut", k_error,
     "Nothing: it is the capture that lacks what the packets carried.", "Capture whole packets (a snap length of 0).",
     ""},
    {ERule::PACKETS_DROPPED, k_input, "packets-dropped", k_warning,
     "Nothing: what is missing may be missing here only.",
     "Give the tool a machine with less to do, or larger buffers (net.core.rmem_max).", ""},
    {ERule::PACKETS_COMPRESSED, k_input, "packets-compressed", k_note,
     "Nothing: the tool does not read packets with compressed headers, and what they carry is not judged.",
     "Capture where the headers are not compressed, or no longer.", "ATSC A/330 5.1"},
    {ERule::NOT_JOINED, k_input, "not-joined", k_warning, "Nothing: the tool does not receive what is sent there.",
     "Mend what the message names.", ""},
    {ERule::PACKETS_MALFORMED, k_input, "packets-malformed", k_error,
     "Receivers drop these packets, and what is in them.", "Look at the sender's or the gateway's IP and UDP headers.",
     "RFC 791, RFC 768"},
    {ERule::ASSERTION, k_input, "assertion", k_error,
     "The receiver's library meets what it did not expect, and passes over it.",
     "Look at the value that the message names.", ""},
    {ERule::EXTRACT_LIMIT, k_input, "extract-limit", k_warning,
     "Nothing: it is what --extract writes that lacks what came later.",
     "Give more room with --extract-limit, or choose what is written with --service, --table or --session.", ""},

    {ERule::NO_LLS, k_lls, "no-lls", k_error, "Receivers find no channel at all.",
     "Send the LLS tables to 224.0.23.60:4937, or name their stream with --lls.", "ATSC A/331 6.1"},
    {ERule::NO_SLT, k_lls, "no-slt", k_error, "Receivers find no channel at all.",
     "Send a service list among the LLS tables.", "ATSC A/331 6.3"},
    {ERule::TABLE_TOO_SHORT, k_lls, "table-too-short", k_error, "Receivers drop the table.",
     "Look at what else sends to the LLS stream.", "ATSC A/331 6.2"},
    {ERule::TABLE_NOT_PARSED, k_lls, "table-not-parsed", k_error,
     "Receivers drop the table; without a service list that parses there is no channel.",
     "Mend what the message names.", "ATSC A/331 6.2"},
    {ERule::CHANGED_WITHOUT_VERSION, k_lls, "changed-without-version", k_error,
     "Receivers that have the last one do not look at the new one.",
     "Count the version (of an object, the TOI) up with every change.", "ATSC A/331 6.2"},
    {ERule::TOO_MANY_SERVICES, k_lls, "too-many-services", k_error, "Receivers run out of room for channels as well.",
     "Look at why so many services are announced.", ""},
    {ERule::SEVERAL_BROADCASTS, k_lls, "several-broadcasts", k_note,
     "Nothing: each is judged for itself. A receiver has one of them at a time.",
     "Nothing, where it was meant; else look for the other sender, which the message names.", "ATSC A/331 6.3"},

    {ERule::SERVICE_DROPPED, k_list, "service-dropped", k_error, "The channel is missing from the channel list.",
     "Mend the attribute that the message names.", "ATSC A/331 6.3"},
    {ERule::SERVICE_LEFT_OUT, k_list, "service-left-out", k_note,
     "Receivers with such a setting or rule do not list the channel.",
     "Nothing, if it is meant; else give the attribute that the message names.", "ATSC A/331 6.3"},
    {ERule::BAD_ADDRESS, k_list, "bad-address", k_error, "The channel is listed and shows nothing.",
     "Give an IPv4 address in dotted form.", "ATSC A/331 6.3"},

    {ERule::NOT_MULTICAST, k_list, "not-multicast", k_warning, "Receivers may not tune to the service's signalling.",
     "Send the signalling to a multicast address.", "ATSC A/331 6.3"},
    {ERule::SERVICE_ID_TWICE, k_list, "service-id-twice", k_error,
     "One of the two channels is missing, or plays the other's programme.",
     "Give every service of the broadcast a serviceId of its own.", "ATSC A/331 6.3"},
    {ERule::CHANNEL_TWICE, k_list, "channel-twice", k_warning,
     "The number leads to one of the two; which, depends on the receiver.",
     "Give every service a channel number of its own.", "ATSC A/331 6.3"},
    {ERule::SESSION_TWO_PROTOCOLS, k_list, "session-two-protocols", k_error,
     "Receivers read packets of one protocol as those of the other: one of the two shows nothing.",
     "Give each service a session of its own, or mend slsProtocol.", "ATSC A/331 6.3"},
    {ERule::SESSION_SHARED, k_list, "session-shared", k_warning,
     "Receivers may take the signalling of one service for that of the other.",
     "Give the signalling of each service a session of its own.", "ATSC A/331 6.3"},
    {ERule::CATEGORY_UNKNOWN, k_list, "category-unknown", k_warning, "Receivers may pass over the service.",
     "Give one of the categories that the standard has.", "ATSC A/331 6.3"},
    {ERule::PROTOCOL_UNKNOWN, k_list, "protocol-unknown", k_error, "The channel is listed and shows nothing.",
     "Give slsProtocol 1 (ROUTE) or 2 (MMTP).", "ATSC A/331 6.3"},
    {ERule::PROTOCOL_VERSION_UNKNOWN, k_list, "protocol-version-unknown", k_warning,
     "Receivers that do not know the version leave the channel out.", "Give version 1, unless another one is meant.",
     "ATSC A/331 6.3"},
    {ERule::URL_TYPE_UNKNOWN, k_list, "url-type-unknown", k_warning, "Receivers pass over the URL.",
     "Give one of the types that the standard has.", "ATSC A/331 6.3"},
    {ERule::BROADBAND_WITHOUT_URL, k_list, "broadband-without-url", k_note,
     "The service needs the internet, and the list does not say where to ask.",
     "Give an SvcInetUrl or SLTInetUrl, or leave broadbandAccessRequired out.", "ATSC A/331 6.3"},
    {ERule::NAME_TOO_LONG, k_list, "name-too-long", k_warning, "Receivers cut the name, or drop the service.",
     "Give a shortServiceName of up to 7 characters.", "ATSC A/331 6.3"},
    {ERule::HIDDEN_LINEAR, k_list, "hidden-linear", k_note, "People do not find the channel by browsing.",
     "Nothing, if it is a test; else leave hidden out.", "ATSC A/331 6.3"},
    {ERule::SEQUENCE_UNCHANGED, k_list, "sequence-unchanged", k_warning,
     "Receivers that go by the number keep the old entry.", "Count sltSvcSeqNum up when the service's entry changes.",
     "ATSC A/331 6.3"},
    {ERule::SEQUENCE_CHANGED, k_list, "sequence-changed", k_note, "Receivers read the entry again for nothing.",
     "Leave sltSvcSeqNum as it is while the service's entry does not change.", "ATSC A/331 6.3"},
    {ERule::TABLE_INTERVAL, k_list, "table-interval", k_warning, "Channels come late after tuning, or time out.",
     "Send the service list of each group at least every 5 seconds.", "ATSC A/331 6.3"},
    {ERule::TABLE_ONCE, k_list, "table-once", k_note, "Receivers that tune in later do not have the table.",
     "Send the table again and again while it holds.", ""},

    {ERule::SYSTEM_TIME, k_time, "system-time", k_error, "The receiver's clock is centuries off: nothing plays.",
     "Mend ptpPrepend.", "ATSC A/331 6.4"},
    {ERule::TAI_OFFSET, k_time, "tai-offset", k_warning,
     "The receiver's clock is off by the difference: programmes begin early or late.",
     "Give currentUtcOffset 37, unless a leap second has come since.", "ATSC A/331 6.4"},
    {ERule::UTC_OFFSET, k_time, "utc-offset", k_warning, "The receiver shows a wrong time of day.",
     "Give the offset of the zone, as a duration such as -PT5H.", "ATSC A/331 6.4"},
    {ERule::DAYLIGHT_SAVING, k_time, "daylight-saving", k_warning, "The receiver shows a wrong time of day.",
     "Change utcLocalOffset and dsStatus together.", "ATSC A/331 6.4"},

    {ERule::ALERT_EXPIRED, k_alerts, "alert-expired", k_warning,
     "Receivers that do not look at the time go on showing an alert that is over.",
     "Take the alert out of the table when it expires, or give it a later time.", "ATSC A/331 6.5"},
    {ERule::ALERT_MEDIA_MISSING, k_alerts, "alert-media-missing", k_warning,
     "The alert shows without its picture, sound or text.",
     "Send the file in a session whose files an S-TSID names, or mend the url.", "ATSC A/331 6.5"},
    {ERule::ALERT_WITHOUT_WAKEUP, k_alerts, "alert-without-wakeup", k_note,
     "Receivers in standby stay dark at an alert of the highest priority.",
     "Set wakeup, unless it is meant not to wake people.", "ATSC A/331 6.5"},
    {ERule::ALERT_REFERENCE_UNKNOWN, k_alerts, "alert-reference-unknown", k_note,
     "Receivers that missed the first alert do not know what is updated or cancelled.",
     "Nothing, if the alert was sent before the capture; else name an alert that was sent. The library reads the "
     "reference as retAEAId: of one in refAEAId, nothing is said.",
     "ATSC A/331 6.5"},

    {ERule::RATING_DIMENSION_UNKNOWN, k_ratings, "rating-dimension-unknown", k_warning,
     "Parental controls cannot weigh the rating: the programme is shown, or blocked, for everybody.",
     "Count dimensions from 0, in the order of the region's table.", ""},
    {ERule::RATING_REGION_UNKNOWN, k_ratings, "rating-region-unknown", k_note,
     "Parental controls of receivers that do not know the region pass over the rating.",
     "Send the rating region table of the region, or mend the region's number.", ""},

    {ERule::NO_SIGNALLING, k_signalling, "no-signalling", k_error, "The channel is listed and shows nothing.",
     "Send the signalling of the service to the address that the service list gives.", "ATSC A/331 7"},
    {ERule::NO_SESSIONS, k_signalling, "no-sessions", k_note, "Nothing can be said of it from this capture.",
     "Capture the sessions of the services as well.", ""},
    {ERule::LCT_MALFORMED, k_signalling, "lct-malformed", k_error, "Receivers drop these packets, and what is in them.",
     "Look at what else sends to the session, and at the packetiser.", "RFC 5651, RFC 9223"},
    {ERule::MMTP_MALFORMED, k_signalling, "mmtp-malformed", k_error,
     "Receivers drop these packets, and what is in them.",
     "Look at what else sends to the session, and at the packetiser.", "ISO/IEC 23008-1 9"},
    {ERule::MMTP_VERSION, k_signalling, "mmtp-version", k_note,
     "Receivers that know version 0 alone pass over these packets; so does the tool.",
     "Nothing, if it is meant for receivers that read the version; else send packets of version 0.",
     "ISO/IEC 23008-1 9.2"},
    {ERule::OBJECT_NOT_READ, k_signalling, "object-not-read", k_error,
     "Receivers cannot read it: if it is all that there is, the channel shows nothing.",
     "Send packages of signalling in TSI 0, gzip-compressed or not, and nothing else.", "ATSC A/331 7"},
    {ERule::OBJECT_PASSED_OVER, k_signalling, "object-passed-over", k_note,
     "The tool does not read this document; receivers may.", "Nothing.", ""},
    {ERule::DOCUMENT_NOT_PARSED, k_signalling, "document-not-parsed", k_error,
     "Receivers go on without the document: what it describes does not play.", "Mend what the message names.",
     "ATSC A/331 7"},
    {ERule::MESSAGE_NOT_PARSED, k_signalling, "message-not-parsed", k_error,
     "Receivers drop the message: what it describes does not play.", "Mend what the message names.",
     "ISO/IEC 23008-1 10"},
    {ERule::ITEM_WITHOUT_PART, k_signalling, "item-without-part", k_note,
     "Receivers that wait for the fragment wait in vain.",
     "Send the part with the item's metadataURI as its Content-Location, or leave the item out.", ""},
    {ERule::PART_WITHOUT_ITEM, k_signalling, "part-without-item", k_note,
     "Receivers that go by the envelope do not read the part.", "Give the part an item in the envelope.", ""},
    {ERule::GLOBAL_SERVICE_ID, k_signalling, "global-service-id", k_warning,
     "Receivers that go by globalServiceID do not join the guide, recordings or broadband content to the service.",
     "Give the service list and the USBD the same globalServiceID.", "ATSC A/331 7"},
    {ERule::NO_STSID, k_signalling, "no-s-tsid", k_error,
     "The channel is listed and shows nothing: receivers do not learn which sessions carry it.",
     "Send an S-TSID with the USBD.", "ATSC A/331 7"},
    {ERule::NO_MPD, k_signalling, "no-mpd", k_error,
     "The channel is listed and shows nothing: receivers do not learn what to play.",
     "Send an MPD with the USBD and the S-TSID.", "ATSC A/331 7"},
    {ERule::TSI_TWICE, k_signalling, "tsi-twice", k_warning,
     "Receivers may know what one of the two entries describes, and not the other.",
     "Describe each LCT session in one LS element.", ""},
    {ERule::REP_ID_UNKNOWN, k_signalling, "rep-id-unknown", k_warning,
     "Receivers do not find out what the LCT session is for.", "Give as repId the id of a Representation of the MPD.",
     "ATSC A/331 7"},
    {ERule::REPRESENTATION_NOT_CARRIED, k_signalling, "representation-not-carried", k_error,
     "A receiver that chooses the component waits for it in vain.",
     "Announce an LCT session with its repId in the S-TSID, or leave the Representation out of the MPD.",
     "ATSC A/331 7"},
    {ERule::BASE_PATTERN_UNMATCHED, k_signalling, "base-pattern-unmatched", k_note,
     "Receivers that go by the pattern may ask broadband for what is broadcast.",
     "Make the BasePattern a part of the names of the files.", "ATSC A/331 7"},
    {ERule::MEDIA_INFO_CONTRADICTS, k_signalling, "media-info-contradicts", k_warning,
     "Receivers that choose by the S-TSID take the wrong component.",
     "Say the same of the component in MediaInfo and in the MPD.", "ATSC A/331 7"},
    {ERule::PROTECTION_MISSING, k_signalling, "protection-missing", k_warning,
     "Receivers say that the channel is protected, or leave it out, though it is not; or it stays dark.",
     "Name the protection in the MPD, or leave protected out of the service list.", "ATSC A/331 6.3"},
    {ERule::PROTECTION_UNANNOUNCED, k_signalling, "protection-unannounced", k_warning,
     "Receivers list a channel that they may not be able to show.", "Give protected in the service list.",
     "ATSC A/331 6.3"},
    {ERule::MPD_IN_FUTURE, k_signalling, "mpd-in-future", k_warning, "Receivers wait until the time comes.",
     "Mend availabilityStartTime, or the clock that it comes from.", "ISO/IEC 23009-1 5.3"},
    {ERule::MPD_NOT_UPDATED, k_signalling, "mpd-not-updated", k_note,
     "Receivers look for a new MPD again and again and find the old one.",
     "Give minimumUpdatePeriod the time after which the MPD changes, or leave it out.", "ISO/IEC 23009-1 5.3"},
    {ERule::PUBLISH_TIME_BACK, k_signalling, "publish-time-back", k_warning,
     "Receivers may take the new MPD for an old one and pass over it.", "Let publishTime go on with every MPD.",
     "ISO/IEC 23009-1 5.3"},
    {ERule::SIGNALLING_INTERVAL, k_signalling, "signalling-interval", k_warning,
     "The channel comes late after tuning, or times out.",
     "Send the signalling of each service again at least every 5 seconds.", "ATSC A/331 7"},

    {ERule::SESSION_NOT_SENT, k_delivery, "session-not-sent", k_error,
     "A component of the channel stays away: no picture, no sound or no subtitles.",
     "Send what the S-TSID announces, or leave the LCT session out of it.", "ATSC A/331 7"},
    {ERule::FILES_NOT_SENT, k_delivery, "files-not-sent", k_note, "Receivers wait for the files.",
     "Send them within the capture, or announce when they come.", ""},
    {ERule::SESSION_NOT_ANNOUNCED, k_delivery, "session-not-announced", k_warning,
     "No receiver reads it: it takes up room on the air.", "Announce the TSI in an S-TSID, or do not send it.",
     "ATSC A/331 7"},
    {ERule::UNSIGNALLED_TRAFFIC, k_delivery, "unsignalled-traffic", k_note,
     "No receiver reads it: it takes up room on the air.", "Announce the session, or do not send it.", ""},
    {ERule::RATE_ABOVE_BANDWIDTH, k_delivery, "rate-above-bandwidth", k_warning,
     "Receivers that make their buffers by the bandwidth may lose data.",
     "Announce in bw, in kbit/s, the most that a second of the session can have.", "ATSC A/331 7"},
    {ERule::RATE_UNLIKE_MPD, k_delivery, "rate-unlike-mpd", k_note,
     "Receivers that choose by bandwidth choose by a wrong number.",
     "Give the Representation the bandwidth that it has.", "ISO/IEC 23009-1 5.3"},
    {ERule::SESSION_OUTSIDE_TIME, k_delivery, "session-outside-time", k_warning,
     "Receivers that go by startTime and endTime do not read the session.",
     "Announce the time in which the session is sent.", "ATSC A/331 7"},
    {ERule::NO_INITIALIZATION, k_delivery, "no-initialization", k_error,
     "Receivers that tune in cannot begin to decode: the component stays away.",
     "Send the initialization segment, whole, before the media segments, again and again.", ""},
    {ERule::OBJECTS_INCOMPLETE, k_delivery, "objects-incomplete", k_warning,
     "Picture or sound stop for a moment, or a file comes late.",
     "Look for loss on the way to the transmitter, and in the capture itself.", ""},
    {ERule::MANY_OBJECTS_INCOMPLETE, k_delivery, "many-objects-incomplete", k_error,
     "Picture or sound stop again and again, or files never come.",
     "Look for loss on the way to the transmitter, and in the capture itself.", ""},
    {ERule::EFDT_EXPIRED, k_delivery, "efdt-expired", k_warning,
     "Receivers drop the description of the files, and with it the files.",
     "Give Expires a time to come, in NTP seconds, and renew it in time, or give maxExpiresDelta.",
     "RFC 6726 3.3, RFC 9223"},

    {ERule::NO_MP_TABLE, k_mmt, "no-mp-table", k_error,
     "The channel is listed and shows nothing: receivers do not learn what carries it.",
     "Send an MP table of the package that the USBD names.", "ISO/IEC 23008-1 10"},
    {ERule::ASSET_NOT_SENT, k_mmt, "asset-not-sent", k_error,
     "A component of the channel stays away: no picture, no sound or no subtitles.",
     "Send the asset with the packet_id of the MP table, or leave it out of the table.", "ISO/IEC 23008-1 10"},
    {ERule::PACKET_ID_TWICE, k_mmt, "packet-id-twice", k_error, "Receivers mix up two assets: neither plays.",
     "Give every asset of the session a packet_id of its own.", "ISO/IEC 23008-1 9"},
    {ERule::COMPONENT_WITHOUT_ASSET, k_mmt, "component-without-asset", k_warning,
     "Receivers offer a component that does not come.", "Give as componentId the id of an asset of the package.",
     "ATSC A/331 7"},
    {ERule::PACKETS_LOST, k_mmt, "packets-lost", k_warning, "Picture or sound are disturbed for a moment.",
     "Look for loss on the way to the transmitter, and in the capture itself.", "ISO/IEC 23008-1 9"},
    {ERule::MANY_PACKETS_LOST, k_mmt, "many-packets-lost", k_error, "Picture and sound are disturbed all the time.",
     "Look for loss on the way to the transmitter, and in the capture itself.", "ISO/IEC 23008-1 9"},

    {ERule::BAD_CERTIFICATE, k_signatures, "bad-certificate", k_error,
     "Receivers that verify signatures can trust nothing that the certificate signed.",
     "Send the certificate as the base64 of its DER form.", "ATSC A/360 5"},
    {ERule::BAD_SIGNATURE, k_signatures, "bad-signature", k_error,
     "Receivers that verify signatures drop what is signed.", "Sign with CMS SignedData.", "ATSC A/360 5, RFC 5652"},
    {ERule::SIGNATURE_WRONG, k_signatures, "signature-wrong", k_error,
     "Receivers that verify signatures drop what is signed: it was changed, or signed by another key.",
     "Sign what is sent, byte for byte, behind everything that changes it.", "RFC 5652 5.6"},
    {ERule::CERTIFICATE_EXPIRED, k_signatures, "certificate-expired", k_error,
     "Receivers that verify signatures drop everything that is signed with it.",
     "Sign with a new certificate, and announce it.", "RFC 5280 4.1.2.5"},
    {ERule::CERTIFICATE_NOT_YET_VALID, k_signatures, "certificate-not-yet-valid", k_error,
     "Receivers that verify signatures drop everything that is signed with it.",
     "Sign with the certificate that holds now until this one does; look at the clock of the capture, too.",
     "RFC 5280 4.1.2.5"},
    {ERule::CERTIFICATE_ENDS_SOON, k_signatures, "certificate-ends-soon", k_note,
     "In 30 days or less, receivers that verify signatures drop everything that is signed with it.",
     "Announce the next certificate, and change to it in time.", ""},
    {ERule::CERTIFICATE_UNTRUSTED, k_signatures, "certificate-untrusted", k_warning,
     "Receivers with the same roots drop everything that is signed with it.",
     "Announce the certificates between it and a root, or sign with one that a root stands behind.", "RFC 5280 6"},
    {ERule::SIGNER_NOT_ANNOUNCED, k_signatures, "signer-not-announced", k_warning,
     "Receivers that take certificates from the table alone cannot verify the signature.",
     "Announce the certificates of all signers.", "ATSC A/360 5"},
    {ERule::UNSIGNED_SIBLING, k_signatures, "unsigned-sibling", k_warning,
     "Receivers that demand signatures drop what is not signed.", "Sign all, or none.", "ATSC A/360 5"},

    {ERule::GUIDE_NOT_PARSED, k_guide, "guide-not-parsed", k_error, "The guide lacks what is in the fragment.",
     "Mend what the message names.", ""},
    {ERule::GUIDE_INCOMPLETE, k_guide, "guide-incomplete", k_error, "The guide is empty, or has holes.",
     "Send the guide's sessions and fragments that the message names.", "ATSC A/332"},
    {ERule::GUIDE_TOO_LARGE, k_guide, "guide-too-large", k_error, "Receivers run out of room for the guide as well.",
     "Announce fewer fragments.", ""},
    {ERule::GUIDE_WITHOUT_CONTENT, k_guide, "guide-without-content", k_error,
     "The programme has a time, and neither title nor description.",
     "Send the content fragments that the schedules name.", "ATSC A/332"},
    {ERule::GUIDE_EXPIRED, k_guide, "guide-expired", k_warning,
     "Receivers drop the fragments: their programmes are missing from the guide.",
     "Send fragments whose validTo is still to come, or leave the old ones out.", "ATSC A/332"},
    {ERule::GUIDE_OVERLAP, k_guide, "guide-overlap", k_warning,
     "The guide shows two programmes for one time, or one of them not at all.",
     "Mend the presentation windows, or send no more of the schedule that is replaced.", ""},
    {ERule::GUIDE_HOLE, k_guide, "guide-hole", k_note, "The guide shows nothing for the time.",
     "Give a programme for every time, a filler at least.", ""},
    {ERule::GUIDE_ENDS_SOON, k_guide, "guide-ends-soon", k_note, "People see no programme of tomorrow.",
     "Send schedules for a day ahead at least.", ""},
    {ERule::GUIDE_TITLE_LANGUAGE, k_guide, "guide-title-language", k_note,
     "People who watch in the service's language see no title, or one in another language.",
     "Give the title in the first language of the service's name.", ""},
    {ERule::GUIDE_SERVICE_UNKNOWN, k_guide, "guide-service-unknown", k_note,
     "The programmes stand at no channel that receivers know.",
     "Nothing, if the service is of another broadcast; else give it the globalServiceID of the service list.",
     "ATSC A/332"},
}};

std::optional<ERule> FindRule(const std::string& name)
{
    const auto rule =
        std::find_if(k_ruleTable.begin(), k_ruleTable.end(), [&](const SRule& each) { return name == each.name; });
    return rule != k_ruleTable.end() ? std::optional<ERule>(rule->rule) : std::nullopt;
}

std::optional<ESeverity> FindSeverity(const std::string& name)
{
    const auto level = std::find(std::begin(k_severities), std::end(k_severities), name);
    return level != std::end(k_severities)
               ? std::optional<ESeverity>(static_cast<ESeverity>(level - std::begin(k_severities)))
               : std::nullopt;
}

bool IsInputRule(ERule rule)
{
    return rule <= ERule::INPUT_TOO_LARGE;
}

CSeverities::CSeverities()
{
    for (const SRule& rule : k_ruleTable) {
        Set(rule.rule, rule.severity);
    }
}

std::string RulesText(const CSeverities& severities)
{
    std::string text;
    const char* group = "";
    for (const SRule& rule : k_ruleTable) {
        if (std::strcmp(group, rule.group) != 0) {
            group = rule.group;
            text += (text.empty() ? "" : "\n") + std::string(group) + '\n';
        }
        const std::optional<ESeverity>& severity = severities.Of(rule.rule);
        text += std::string("  ") + rule.name + ": " + (severity ? SeverityName(*severity) : "ignored") + ". " +
                rule.means + ' ' + rule.remedy + (*rule.see ? std::string(" (") + rule.see + ')' : "") + '\n';
    }
    return text;
}

std::string RulesPage()
{
    std::string page =
        "# Rules\n\n"
        "What `vyr-atsc30-inspect` judges a broadcast by. Each finding names its rule; `--rules` prints this table,\n"
        "`--ignore RULE` leaves a rule out, `--severity RULE=LEVEL` gives it another weight, and `--fail-on LEVEL` "
        "says\n"
        "from which weight on the exit status is 1. An *error* is what receivers fail on, a *warning* is against the\n"
        "standard or fails on some receivers, a *note* is worth knowing.\n";
    const char* group = "";
    for (const SRule& rule : k_ruleTable) {
        if (std::strcmp(group, rule.group) != 0) {
            group = rule.group;
            page += std::string("\n## ") + group +
                    "\n\n| rule | severity | what it means for viewers | what to do | see |\n|---|---|---|---|---|\n";
        }
        page += std::string("| `") + rule.name + "` | " + SeverityName(rule.severity) + " | " + rule.means + " | " +
                rule.remedy + " | " + rule.see + " |\n";
    }
    return page;
}

}  // namespace vyr::inspect
