#pragma once

#include <optional>
#include <string>

#include "base/JsonFwd.h"
#include "common/ServiceLinkage.h"

class CROUTEUsbd;
class CRSAT;
class CSTSID;
struct SEFDTInfo;

namespace vyr::inspect {

struct SContent;

// What the documents of the service-layer signalling say, in text and JSON.
SContent UsbdContent(const CROUTEUsbd& usbd);
SContent StsidContent(const CSTSID& stsid);
SContent EfdtContent(const SEFDTInfo& efdt);
SContent RsatContent(const CRSAT& rsat);
/// The linkage of a service to another one, which the USBD of either protocol can have.
TJson LinkageJson(const CServiceLinkage::SServiceLinkage& linkage);
std::string LinkageText(const CServiceLinkage::SServiceLinkage& linkage);
/// An application list or a HELD: the library hands on its text.
SContent AppDataContent(const std::string& text);

/// ", active" or ", off" of a service by its serviceStatus; nothing where it is not given. `receiver` is what a
/// receiver makes of it.
std::string ServiceStatusText(const std::optional<bool>& given, bool receiver);

}  // namespace vyr::inspect
