#pragma once

namespace vyr::inspect {

struct SFile;
struct SFinding;
struct SGuide;
struct SGuideObject;
struct SMessage;
struct SSignalling;
struct STable;

/// Is told of everything that comes, repeats as well.
class IWitness {
  public:
    virtual ~IWitness() = default;
    virtual void Table(const STable& table) = 0;
    virtual void Signalling(const SSignalling& signalling) = 0;
    virtual void Message(const SMessage& message) = 0;
    virtual void GuideObject(const SGuideObject& object) = 0;
    virtual void Guide(const SGuide& guide) = 0;
    /// What it finds itself among them; of a rule that is ignored, as a note.
    virtual void Finding(const SFinding&) {}
    /// A whole file, when files are followed.
    virtual void File(const SFile&) {}
};

}  // namespace vyr::inspect
