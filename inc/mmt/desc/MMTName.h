#pragma once

#include <string>

#include "../../common/ParseXML.h"
#include "../../platform/Api.h"

/// Parser of a name element of the user service bundle description of an MMT service (ATSC A/331 7.2.1).
class VYR_API CMMTName : public XMLBase {
  public:
    /// A name.
    struct SName {
        std::string name;  ///< the element's text
        std::string lang;  ///< its language, BCP 47; empty: not given
    };

    CMMTName();
    ~CMMTName() override;

    bool Create() override;
    void Destroy() override;

    /// What was parsed; null before Create, good until Destroy.
    const SName* State() const { return m; }

  private:
    bool m_ProcessParse(void* root) override;

    SName* m;
};
