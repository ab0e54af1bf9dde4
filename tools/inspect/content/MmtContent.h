#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/JsonFwd.h"
#include "mmt/desc/MMTDescLowDelay.h"

class CMMTMsgPayload;
class CMMTTbl;
class CMMTUsbd;

namespace vyr::inspect {

struct SContent;

// What the tables and messages of MMT signalling say, in text and JSON.

/// A table of any class.
SContent MmtTableContent(CMMTTbl& table);
/// "MP table 32", the title of a table.
std::string MmtTableTitle(unsigned tableId);
SContent MmtUsbdContent(const CMMTUsbd& usbd);
/// An AC, ADC, LS or LDC message.
SContent MmtPayloadContent(const CMMTMsgPayload& message);
/// A message or descriptor of low delay consumption.
void PutLowDelay(TJson& json, const CMMTDescLowDelay::SLowDelay& fields);
/// The id of an asset; as hex where it is no printable text, such as a UUID.
std::string AssetIdText(std::string_view id);
/// A 64-bit NTP timestamp as ISO 8601, UTC.
std::string NtpText(unsigned long long timestamp);

}  // namespace vyr::inspect
