#pragma once

#include "esg/ESGFragmentBase.h"
#include "esg/SGResponse.h"

namespace vyr::inspect {

struct SContent;
struct SGuideFragment;

// What the guide's objects say, in text and JSON. A fragment has a headline alone; `held` is what
// GuideFragment made of it.
SContent FragmentContent(const SGuideFragment& held, const CESGFragmentBase& fragment);
SContent DescriptorContent(const CSGDDParse& descriptor);
SContent ResponseContent(const CSGResponse& response);

}  // namespace vyr::inspect
