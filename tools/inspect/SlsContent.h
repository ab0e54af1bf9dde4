#pragma once

#include <string>

#include "Report.h"

class CROUTEUsbd;
class CRSAT;
class CSTSID;
struct SEFDTInfo;

namespace vyr::inspect {

// What the documents of the service-layer signalling say, in text and JSON.
SContent UsbdContent(const CROUTEUsbd& usbd);
SContent StsidContent(const CSTSID& stsid);
SContent EfdtContent(const SEFDTInfo& efdt);
SContent RsatContent(const CRSAT& rsat);
/// An application list or a HELD: the library hands on its text.
SContent AppDataContent(const std::string& text);

}  // namespace vyr::inspect
