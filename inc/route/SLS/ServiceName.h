#pragma once

#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

/// Parser of a name element of a user service description. Its text is not kept, only its language.
class VYR_API CServiceName : public CXmlElement {
  public:
    /// Language of the name, BCP 47; null: not given. Good until the next Parse or Destroy.
    const char* Lang() const;

  private:
    vyr::SXmlKind t_Kind() const override;
};
