#pragma once

#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

/// Parser of a name element of a user service description (ATSC A/331 7.1.3).
class VYR_API CServiceName : public CXmlElement {
  public:
    /// Language of the name, BCP 47; null: not given. Good until the next Parse or Destroy.
    const char* Lang() const;
    /// Extension: the name itself, the element's text as it stands; null before Parse. Good until the next Parse or
    /// Destroy.
    const char* Text() const;

  private:
    vyr::SXmlKind t_Kind() const override;
};
