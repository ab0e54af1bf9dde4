#pragma once

#include "../common/Parse.h"
#include "../platform/Api.h"

/// Parser of the signed multi-table (LLS_table_id 0xFE; ATSC A/331): several LLS tables and a
/// signature over them. It splits them; the caller verifies the signature over the signed block and
/// hands each payload to its table's parser. There is no version check.
///
/// A parser that is not created is asserted ("m"), an index without a payload too ("smtPayload");
/// results are then false or 0 and outputs untouched.
class VYR_API CLLSSMTParser : public IParse {
  public:
    CLLSSMTParser() = default;
    /// Destroy comes first, else "!m" is asserted.
    ~CLLSSMTParser() override;

    /// Makes the parser ready; false when it is already (asserted).
    bool Create();
    /// Frees all that was parsed; the object can be created anew.
    void Destroy();

    /// Takes one table from the item's cursor on, which stands behind the LLS header. False when the
    /// table is shorter than it says; what was read before stays. The payloads of the table before are
    /// gone in any case. Required: the cursor ends behind the signed block, not behind the signature.
    bool Parse(IParse::SItem* item) override;

    /// Number of payloads that the last table said it has.
    int PayloadCount() const;
    /// Bytes of the index-th payload.
    bool GetPayloadLength(int index, unsigned int& length) const;
    /// LLS_table_id and bytes of the index-th payload; `buffer` has room for GetPayloadLength bytes.
    bool GetPayload(int index, unsigned int& tableId, unsigned char* buffer) const;

    /// Bytes of the signature, as the last table said.
    bool GetSignatureLength(unsigned int& length) const;
    /// Copies the signature (CMS SignedData, RFC 5652); `buffer` has room for GetSignatureLength bytes.
    bool GetSignatureData(unsigned char* buffer) const;
    /// Bytes from the payload count up to the signature length.
    bool GetSignedBlockLength(unsigned int& length) const;
    /// Copies them; `buffer` has room for GetSignedBlockLength bytes.
    bool GetSignedBlock(unsigned char* buffer) const;

  private:
    struct SParseSMT;

    SParseSMT* m = nullptr;
};
