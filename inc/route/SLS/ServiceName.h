#pragma once

#include "../../common/ParseXML.h"
#include "../../platform/Api.h"

/// Parser of a name element of a user service description. Its text is not kept, only its language.
class VYR_API CServiceName : public XMLBase {
  public:
    CServiceName();
    ~CServiceName() override;

    bool Create() override;
    void Destroy() override;
    /// Language of the name, BCP 47; null: not given. Good until the next Parse or Destroy.
    const char* Lang() const;

  private:
    struct SState;

    bool m_ProcessParse(void* root) override;

    SState* m;
};
