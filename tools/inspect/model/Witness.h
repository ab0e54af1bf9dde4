#pragma once

namespace vyr::inspect {

struct SFinding;
struct SGuide;
struct SGuideObject;
struct SMessage;
struct SSignalling;
struct STable;

/// Is told of everything that comes of one input, repeats as well, and judges it.
class IWitness {
  public:
    virtual ~IWitness() = default;
    virtual void Table(const STable& table) = 0;
    virtual void Signalling(const SSignalling& signalling) = 0;
    virtual void Message(const SMessage& message) = 0;
    virtual void GuideObject(const SGuideObject& object) = 0;
    virtual void Guide(const SGuide& guide) = 0;
    /// What it finds itself among them.
    virtual void Finding(const SFinding& finding) = 0;
};

}  // namespace vyr::inspect
